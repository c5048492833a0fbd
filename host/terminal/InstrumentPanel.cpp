#include "host/terminal/InstrumentPanel.h"

#include <QMimeData>

#include "host/DataCore.h"
#include "host/DragData.h"
#include "host/data/Instrument.h"

namespace host {
namespace terminal {

namespace {

const int kNameRole = Qt::UserRole;

QString periodText(const namePeriod& p) {
    switch (p.type) {
    case 'I': return p.length == 0 ? QStringLiteral("ticks") : QStringLiteral("%1 min").arg(p.length);
    case 'D': return QStringLiteral("daily");
    case 'W': return QStringLiteral("weekly");
    case 'M': return QStringLiteral("monthly");
    default: return QStringLiteral("yearly");
    }
}

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
    const QString keep = current();
    clear();
    for (const std::string& name : data_.instrumentNames()) {
        const data::Instrument* i = data_.loaded(name);
        if (!i) continue;
        const QString n = QString::fromStdString(name);
        QListWidgetItem* item = new QListWidgetItem(
            QStringLiteral("%1  %2, %3 quotes, %4 to replay")
                .arg(n, periodText(i->period()))
                .arg(i->quotes().size())
                .arg(i->pendingCount()),
            this);
        item->setData(kNameRole, n);
        item->setToolTip(QString::fromStdString(i->source()));
    }
    if (!select(keep) && count() > 0) setCurrentRow(0);
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

QMimeData* InstrumentPanel::mimeData(const QList<QListWidgetItem*> items) const {
    if (items.isEmpty()) return nullptr;
    return drag::instrumentDrag(items.first()->data(kNameRole).toString().toStdString()).release();
}

}  // namespace terminal
}  // namespace host
