#include "host/terminal/BlotterPanel.h"

#include <QHeaderView>
#include <cmath>

#include "host/DealingService.h"

namespace host {
namespace terminal {

BlotterPanel::BlotterPanel(DealingService& dealing, QWidget* parent)
    : QTableWidget(0, 6, parent), dealing_(dealing) {
    setObjectName(QStringLiteral("blotter"));
    setHorizontalHeaderLabels({tr("Time"), tr("Instrument"), tr("Account"), tr("Kind"), tr("Price"), tr("Dealing")});
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    verticalHeader()->hide();
    horizontalHeader()->setStretchLastSection(true);
}

bool BlotterPanel::refresh() {
    const auto& book = dealing_.blotter();
    if (book.size() < shown_) {
        setRowCount(0);
        shown_ = 0;
    }
    if (book.size() == shown_) return false;
    for (; shown_ < book.size(); ++shown_) {
        const DealingService::Trade& t = book[shown_];
        const int row = rowCount();
        insertRow(row);
        // A deal is sent at the market (price 0); an order at the price the person chose.
        const QString price = t.kind == DealingService::TradeKind::Deal && t.price == 0
                                  ? tr("market")
                                  : QString::number(t.price, 'f', 4);
        const QStringList cells = {t.received.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                                   QString::fromStdString(t.instrument),
                                   QString::number(t.accountId),
                                   t.kind == DealingService::TradeKind::Deal ? tr("deal") : tr("order"),
                                   price,
                                   QString::fromStdString(dealing_.dealingName(t.dealing))};
        for (int c = 0; c < cells.size(); ++c) setItem(row, c, new QTableWidgetItem(cells[c]));
    }
    scrollToBottom();
    return true;
}

}  // namespace terminal
}  // namespace host
