// Drag and drop onto the chart window: an instrument ("kovar/symbol-indicator") or a
// primitive ("kovar/primitive") dragged from the host. The drag data is the host's own; the
// host core describes what it names (3119, 3048) and the head node of its data (3012), and
// the chart adds the instrument as a new area, after asking whether it replaces the one
// already shown.
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <cstring>

#include "abi/messages.h"
#include "abi/records/interface_records.h"
#include "abi/records/workdata_records.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Menu.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "module/PFChartModule.h"
#include "util/QtCompat.h"

namespace {

const QString kSymbolIndicatorType = QStringLiteral("kovar/symbol-indicator");
const QString kPrimitiveType = QStringLiteral("kovar/primitive");

// Only instruments are offered as drop targets while dragging.
void AcceptInstrumentDrag(QDragMoveEvent* event) {
    if (gx::MimeData::Provides(event->mimeData(), kSymbolIndicatorType)) event->acceptProposedAction();
    else event->ignore();
}

}  // namespace

void PFChartWidget::dragEnterEvent(QDragEnterEvent* event) { AcceptInstrumentDrag(event); }

void PFChartWidget::dragMoveEvent(QDragMoveEvent* event) { AcceptInstrumentDrag(event); }

void PFChartWidget::dropEvent(QDropEvent* event) {
    const QMimeData* data = event->mimeData();
    QString type;
    unsigned int message = 0;
    if (gx::MimeData::Provides(data, kSymbolIndicatorType)) {
        type = kSymbolIndicatorType;
        message = MSG_DESCRIBE_DRAG;
    } else if (gx::MimeData::Provides(data, kPrimitiveType)) {
        type = kPrimitiveType;
        message = MSG_DESCRIBE_PRIMITIVE;
    } else {
        event->ignore();
        return;
    }
    setFocus(Qt::OtherFocusReason);
    if (!module_ || !module_->sendToHost) {
        event->ignore();
        return;
    }

    // The host reads its drag data and fills in the instrument it names.
    const QByteArray bytes = data->data(type);
    coreDragData drag;
    drag.bytes = bytes.constData();
    drag.length = bytes.size();
    fxwcDropInstrument record;
    std::memset(&record, 0, sizeof record);
    if (module_->sendToHost(module_->hostHandle, message, reinterpret_cast<std::intptr_t>(&drag),
                            reinterpret_cast<std::intptr_t>(&record)) != 0) {
        event->ignore();
        return;
    }
    // The texts are the host's: cut at their field's end whether terminated or not.
    record.symbol[sizeof record.symbol - 1] = 0;
    record.providerName[sizeof record.providerName - 1] = 0;
    record.instrumentType[sizeof record.instrumentType - 1] = 0;
    if (type == kPrimitiveType && std::strcmp(record.instrumentType, LS_PRIMITIVE_KIND) == 0) {
        // A line study: made at the drop point with every point there.
        void* const provider = record.baseHandle;
        const std::int32_t color = record.style;
        event->acceptProposedAction();
        StartLineStudy(pf::EventPos(event), provider, QString::fromLocal8Bit(record.symbol),
                       static_cast<std::uint32_t>(color), true);
        repaint();
        return;
    }
    void* const baseHandle = record.baseHandle;  // packed: fields are read by value
    coreHeadNodeInfo head;
    std::memset(&head, 0, sizeof head);
    module_->sendToHost(module_->hostHandle, MSG_HEAD_NODE_INFO, reinterpret_cast<std::intptr_t>(baseHandle),
                        reinterpret_cast<std::intptr_t>(&head));
    event->acceptProposedAction();

    // The question runs an event loop of its own, in which the host may close the window.
    const QPointer<PFChartWidget> self(this);
    const bool add = IsReplaceInstrument();
    if (!self) return;
    if (add)
        AddSecondaryPrimitive(baseHandle, record.symbol, record.providerName, record.periodType,
                              record.periodLength, record.startTime, &head, record.style);
    toolBar_->ResetStateButtonList(false);
    repaint();
}

bool PFChartWidget::IsReplaceInstrument() {
    const gx::FindAllIndicators shown =
        gx::WidgetWalker<gx::FindAllIndicators>(chart_.get(), gx::FindAllIndicators()).Walk();
    if (shown.indicators.empty()) return true;

    const QPointer<PFChartWidget> self(this);
    replacePending_ = true;
    // Two plain buttons, Yes the default and No the Escape button (the box Qt's static
    // question with button texts made). The box goes with the window if the window goes
    // while it is open.
    const QPointer<QMessageBox> question(new QMessageBox(QMessageBox::Question, DataTypeShow2StringLocale(chartType_),
        module_ ? module_->tr("C0111Message") : QStringLiteral("Replace instrument?"), QMessageBox::NoButton, this));
    QPushButton* yes = question->addButton(module_ ? module_->tr("C0078") : QStringLiteral("Yes"), QMessageBox::ActionRole);
    question->setEscapeButton(question->addButton(module_ ? module_->tr("C0077") : QStringLiteral("No"), QMessageBox::ActionRole));
    question->setDefaultButton(yes);
    question->exec();
    const bool replace = question && question->clickedButton() == yes;
    delete question.data();
    if (!self) return false;  // the window went while the question was open
    replacePending_ = false;
    if (replace) {
        // Replacing: every line of the chart goes, the new instrument takes its place.
        for (const boost::shared_ptr<gx::Area>& area : std::vector<boost::shared_ptr<gx::Area> >(chart_->GetAreas()))
            gx::WidgetWalker<gx::SelectAreaLines>(chart_.get(), gx::SelectAreaLines(area.get())).Walk();
        chart_->RePlaceInstrument();
    }
    // With No the new instrument is added as an area of its own.
    return true;
}
