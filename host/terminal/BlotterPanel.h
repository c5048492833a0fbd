// The terminal's Blotter: every deal and order booked through the dealing interfaces, newest
// last: the whole time (UTC), instrument, side, amount, kind (a deal at the market or an
// order at a price), price, the account's name and the dealing. The side and amount come
// from the terminal's ticket (TradeTicket); a request booked without one shows neither.
// The panel follows the dealing service's book, and starts over when the book is replaced
// (a workspace opened).
#pragma once

#include <QTableWidget>
#include <cstddef>

namespace host {

class DealingService;

namespace terminal {

class BlotterPanel : public QTableWidget {
    Q_OBJECT
public:
    enum Column { kTime, kInstrument, kSide, kAmount, kKind, kPrice, kAccount, kDealing, kColumns };

    explicit BlotterPanel(DealingService& dealing, QWidget* parent = nullptr);
    // Adds the lines booked since the last call; true when there were any.
    bool refresh();

private:
    DealingService& dealing_;
    std::size_t shown_ = 0;
    unsigned generation_ = 0;
};

}  // namespace terminal
}  // namespace host
