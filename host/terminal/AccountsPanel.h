// The terminal's Accounts and day-off panel: the trading accounts of the dealing interfaces,
// with Add and Remove (the terminal raises the dealing events 16002 and 16003 to the module),
// and per account the day-off switch of each instrument (16048), so that a person sees how
// the charts answer: an instrument in a day off is marked in its window's caption.
#pragma once

#include <QWidget>
#include <vector>

class QListWidget;
class QTreeWidget;

namespace host {

class DataCore;
class DealingService;

namespace terminal {

class AccountsPanel : public QWidget {
    Q_OBJECT
public:
    AccountsPanel(DealingService& dealing, DataCore& data, const std::vector<void*>& dealings,
                  QWidget* parent = nullptr);

    void refresh();
    // A new account in the first dealing (16002); its id.
    int addAccount();
    // Removes the selected account (16003); false when none is selected.
    bool removeSelected();
    // The day-off state of `symbol` for the selected account (16048); false without one.
    bool setDayOff(const QString& symbol, bool dayOff);

signals:
    void message(const QString& text);

private:
    bool selected(void** dealing, int* id) const;
    void showDayOff();

    DealingService& dealing_;
    DataCore& data_;
    std::vector<void*> dealings_;
    QTreeWidget* accounts_;
    QListWidget* dayOff_;
    int nextId_ = 2000;
    bool filling_ = false;
    // Day-off switches set here, by (dealing, account id), as symbols.
    std::vector<std::pair<std::pair<void*, int>, QString> > off_;
};

}  // namespace terminal
}  // namespace host
