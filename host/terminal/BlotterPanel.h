// The terminal's Blotter: every deal and order the charts placed through the dealing
// interfaces, newest last, with time, instrument, account, kind (a deal at the market or an
// order at a price) and price. The request the module sends carries no buy or sell side; the
// terminal's dealing dialog would ask for it. The panel follows the dealing service's book.
#pragma once

#include <QTableWidget>
#include <cstddef>

namespace host {

class DealingService;

namespace terminal {

class BlotterPanel : public QTableWidget {
    Q_OBJECT
public:
    explicit BlotterPanel(DealingService& dealing, QWidget* parent = nullptr);
    // Adds the lines booked since the last call; true when there were any.
    bool refresh();

private:
    DealingService& dealing_;
    std::size_t shown_ = 0;
};

}  // namespace terminal
}  // namespace host
