#include "host/terminal/BlotterPanel.h"

#include <QHeaderView>
#include <QLocale>
#include <cmath>

#include "host/DealingService.h"

namespace host {
namespace terminal {

BlotterPanel::BlotterPanel(DealingService& dealing, QWidget* parent)
    : QTableWidget(0, kColumns, parent), dealing_(dealing), generation_(dealing.blotterGeneration()) {
    setObjectName(QStringLiteral("blotter"));
    setHorizontalHeaderLabels({tr("Time (UTC)"), tr("Instrument"), tr("Side"), tr("Amount"), tr("Kind"), tr("Price"),
                               tr("Account"), tr("Dealing")});
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    verticalHeader()->hide();
    horizontalHeader()->setStretchLastSection(true);
}

bool BlotterPanel::refresh() {
    const auto& book = dealing_.blotter();
    if (book.size() < shown_ || generation_ != dealing_.blotterGeneration()) {
        setRowCount(0);
        shown_ = 0;
        generation_ = dealing_.blotterGeneration();
    }
    if (book.size() == shown_) return false;
    using Trade = DealingService::Trade;
    for (; shown_ < book.size(); ++shown_) {
        const Trade& t = book[shown_];
        const int row = rowCount();
        insertRow(row);
        // A deal sent at the market has price 0; one booked on a ticket the market price then.
        const QString price = t.kind == DealingService::TradeKind::Deal && t.price == 0
                                  ? tr("market")
                                  : QString::number(t.price, 'f', 4);
        const QString side = t.side == DealingService::Side::Buy    ? tr("buy")
                             : t.side == DealingService::Side::Sell ? tr("sell")
                                                                    : QString();
        const QStringList cells = {t.received.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                                   QString::fromStdString(t.instrument),
                                   side,
                                   t.amount > 0 ? QLocale(QLocale::English, QLocale::UnitedStates).toString(t.amount, 'f', 0) : QString(),
                                   t.kind == DealingService::TradeKind::Deal ? tr("deal") : tr("order"),
                                   price,
                                   t.accountName.isEmpty() ? QString::number(t.accountId) : t.accountName,
                                   QString::fromStdString(t.dealingName)};
        for (int c = 0; c < cells.size(); ++c) {
            QTableWidgetItem* item = new QTableWidgetItem(cells[c]);
            if (c == kAmount || c == kPrice) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            setItem(row, c, item);
        }
    }
    // Every column as wide as its widest text: the time is never cut.
    resizeColumnsToContents();
    scrollToBottom();
    return true;
}

}  // namespace terminal
}  // namespace host
