#include "host/terminal/InstrumentPanel.h"

#include <QMimeData>
#include <vector>

#include "host/DataCore.h"
#include "host/DragData.h"
#include "host/data/ChartObject.h"
#include "host/data/Instrument.h"
#include "host/terminal/ChartDescription.h"

namespace host {
namespace terminal {

namespace {

const int kNameRole = Qt::UserRole;

}  // namespace

InstrumentPanel::InstrumentPanel(DataCore& data, QWidget* parent) : QListWidget(parent), data_(data) {
    setObjectName(QStringLiteral("instrumentPanel"));
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { emit chosen(item->data(kNameRole).toString()); });
}

void InstrumentPanel::refresh() {
    std::vector<const data::Instrument*> all;
    for (const std::string& name : data_.instrumentNames())
        if (const data::Instrument* i = data_.loaded(name)) all.push_back(i);
    // The same instruments: only their counts change (a replay), and the lines stay put,
    // so that a drag or a selection in progress is not disturbed.
    bool same = int(all.size()) == count();
    for (int row = 0; same && row < count(); ++row)
        same = item(row)->data(kNameRole).toString() == QString::fromStdString(all[std::size_t(row)]->name());
    const QString keep = current();
    if (!same) clear();
    for (std::size_t row = 0; row < all.size(); ++row) {
        const data::Instrument* i = all[row];
        const QString n = QString::fromStdString(i->name());
        QString text = QStringLiteral("%1  %2, %3 quotes, %4 to replay")
                           .arg(n, periodText(i->period()))
                           .arg(i->quotes().size())
                           .arg(i->pendingCount());
        // The charts a window shows of it, each with its box size and reversal.
        for (const data::ChartObject* c : data_.chartObjects())
            if (&c->instrument() == i && !c->subscriptions().empty())
                text += QStringLiteral("\n    ") + chartTitle(*c);
        if (same) {
            if (item(int(row))->text() != text) item(int(row))->setText(text);
            continue;
        }
        QListWidgetItem* line = new QListWidgetItem(text, this);
        line->setData(kNameRole, n);
        line->setToolTip(QString::fromStdString(i->source()));
    }
    if (!same && !select(keep) && count() > 0) setCurrentRow(0);
}

QString InstrumentPanel::current() const {
    const QListWidgetItem* item = currentItem();
    return item ? item->data(kNameRole).toString() : QString();
}

bool InstrumentPanel::select(const QString& name) {
    for (int row = 0; row < count(); ++row)
        if (item(row)->data(kNameRole).toString() == name) {
            setCurrentRow(row);
            return true;
        }
    return false;
}

QStringList InstrumentPanel::mimeTypes() const { return QStringList(QString::fromLatin1(drag::kInstrumentType)); }

QMimeData* InstrumentPanel::mimeData(pf::ListWidgetItems items) const {
    if (items.isEmpty()) return nullptr;
    return drag::instrumentDrag(items.first()->data(kNameRole).toString().toStdString()).release();
}

}  // namespace terminal
}  // namespace host
