// The terminal's ticket for a deal or an order asked for from a chart: the request names the
// instrument, the account and (for an order) the price at the menu point; the person chooses
// the side (buy or sell), the amount, the account and, for an order, the price, then books
// it or cancels. A deal is booked at the market: the instrument's latest price when booked.
// Nothing is preset that would trade by itself: the side must be chosen before Book is
// possible. The amount starts at the last one booked.
#pragma once

#include <QDialog>
#include <functional>

#include "host/DealingService.h"

class QButtonGroup;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;

namespace host {
namespace terminal {

class TradeTicket : public QDialog {
    Q_OBJECT
public:
    // `market` gives the instrument's latest price (NaN when there is none); `decimals` is
    // the instrument's precision.
    TradeTicket(DealingService& dealing, const DealingService::Trade& request, std::function<double()> market,
                int decimals, QWidget* parent = nullptr);

    // The trade as the ticket stands (side None until one is chosen).
    DealingService::Trade trade() const;
    QPushButton* bookButton() const { return book_; }

    // The amount a new ticket starts with.
    static double lastAmount();

signals:
    // Booked into the dealing service's blotter.
    void booked(const DealingService::Trade& trade);

private:
    void update();
    void bookIt();

    DealingService& dealing_;
    DealingService::Trade request_;
    std::function<double()> market_;
    QButtonGroup* side_;
    QDoubleSpinBox* amount_;
    QDoubleSpinBox* price_ = nullptr;  // orders only
    QLabel* marketPrice_ = nullptr;    // deals only
    QComboBox* account_;
    QLabel* hint_;
    QPushButton* book_;
    int decimals_;
};

}  // namespace terminal
}  // namespace host
