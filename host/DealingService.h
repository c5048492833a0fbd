// The emulated terminal's dealing interfaces ("DEALING", "TELVIX", any name): their
// accounts (16000/16001), the day-off states of each account's symbols (16026/16027), the
// dealing events the terminal raises to the module when accounts come and go (16002,
// 16003) or day-off states change (16048), and the deals (16015) and orders (16014) placed
// from a chart.
//
// A deal or order is sent to the deal interface of its account with p1 = fxdTradeRequest.
// The emulator books it into a blotter at once; a terminal that sets a ticket (setTicket)
// gets the request instead and books what the person confirms (book). A request is
// refused (answer 1, nothing booked, the reason in the journal) when the target is no
// dealing of this service, the record is null, the instrument is empty, the account is not
// one of that dealing's, or the price is not finite (an order's must also be above 0).
// The record is packed and read by value; the instrument is read up to its terminator or
// the field's 21 bytes, whichever comes first.
#pragma once

#include <QDateTime>
#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/Host.h"

namespace host {

class CoreServices;

class DealingService {
public:
    DealingService(Host& host, CoreServices& core);

    // Adds a deal interface the module finds with 3001/3002; returns its handle.
    void* addDealing(const std::string& name);

    // An account record as the terminal hands it out: the first word is the dealing's
    // handle, the second the id, then the name.
    static fxdDealAccount makeAccount(void* dealing, int id, const QString& name);
    // Accounts 16000/16001 report, in order. False for an unknown dealing.
    bool addAccount(void* dealing, int id, const QString& name);
    bool removeAccount(void* dealing, int id);
    std::vector<fxdDealAccount> accounts(void* dealing) const;

    // The day-off state of a symbol of one account (16026/16027). The symbol fills at most
    // the record's 19 bytes; one of exactly 19 characters is sent without a terminator.
    bool setDayOff(void* dealing, int accountId, const std::string& symbol, bool dayOff);

    // The dealing events, delivered through 3114 to every subscriber of "DealingEvent"
    // with the subscriber's id as sender. Each returns the number of deliveries.
    // Adds the account, then raises 16002 with it.
    int raiseAccountAdded(void* dealing, int id, const QString& name);
    // Removes the account, then raises 16003 with it.
    int raiseAccountRemoved(void* dealing, int id);
    // Raises 16048 with {dealing, account id}.
    int raiseDayOff(void* dealing, int accountId);

    static const char* eventName() { return "DealingEvent"; }

    // The name a dealing was added with; empty for an unknown handle.
    std::string dealingName(void* dealing) const;

    // Adds `count` accounts for a terminal set up on the command line: account k (from 1)
    // has id 1000 + k and is named "Demo account" (k = 1) or "Demo account k"; odd accounts
    // belong to "Demo dealing", even ones to "Second dealing" (made only when needed).
    // Every account trades USDCHF. Returns the dealings made, in order.
    std::vector<void*> addDemoAccounts(int count);
    static QString demoAccountName(int k);

    enum class TradeKind { Deal, Order };
    // Requests from a chart carry no side and no amount; a ticket adds them.
    enum class Side { None, Buy, Sell };
    struct Trade {
        QDateTime received;  // UTC
        void* dealing = nullptr;  // the deal interface the request was sent to; null when gone
        std::int32_t accountId = 0;
        std::string instrument;
        TradeKind kind = TradeKind::Deal;
        double price = 0;    // orders: the price asked; deals: as sent (0: at the market)
        std::string dealingName;  // kept as booked: the blotter outlives accounts and dealings
        QString accountName;
        Side side = Side::None;
        double amount = 0;
    };
    // Deals and orders booked, oldest first.
    const std::vector<Trade>& blotter() const { return blotter_; }
    void clearBlotter() { setBlotter(std::vector<Trade>()); }
    // Replaces the blotter (a workspace's); trades whose dealing is known by name get its
    // handle, the others none.
    void setBlotter(std::vector<Trade> trades);
    // Changes whenever the blotter is replaced rather than added to.
    unsigned blotterGeneration() const { return generation_; }
    // One line per trade: time, dealing, account, kind, instrument, price (side and amount
    // when a ticket gave them).
    std::string describeBlotter() const;
    static const char* kindName(TradeKind kind) { return kind == TradeKind::Deal ? "deal" : "order"; }
    static const char* sideName(Side side) { return side == Side::Buy ? "buy" : side == Side::Sell ? "sell" : ""; }

    // With a ticket, an acceptable request is handed to it (answer 0) instead of booked; the
    // ticket books what the person confirms. An empty function books at once again.
    using Ticket = std::function<void(const Trade& request)>;
    void setTicket(Ticket ticket) { ticket_ = std::move(ticket); }
    // Books a trade confirmed on a ticket: stamped now, with the names of its dealing and
    // account as they are now. False (nothing booked) for an account that is not one of
    // that dealing's, or a price or amount that cannot be traded.
    bool book(Trade trade);
    // The name of an account of a dealing; empty when there is none.
    QString accountName(void* dealing, std::int32_t accountId) const;
    // Every dealing's handle, in the order they were added.
    std::vector<void*> dealings() const { return order_; }

private:
    struct Dealing {
        std::string name;
        std::vector<fxdDealAccount> accounts;
        std::map<int, std::vector<fxdDayOff> > dayOff;  // by account id
    };
    Dealing* find(void* handle);
    const Dealing* find(void* handle) const;

    int countAccounts(void* target, fxdAccountRequest* request, bool fill, std::string& detail);
    int countDayOff(void* target, int accountId, fxdDayOffRequest* request, bool fill,
                    std::string& detail);
    int trade(void* target, const fxdTradeRequest* request, TradeKind kind, std::string& detail);

    Host& host_;
    CoreServices& core_;
    std::map<void*, Dealing> dealings_;
    std::vector<void*> order_;
    std::vector<Trade> blotter_;
    unsigned generation_ = 0;
    Ticket ticket_;
};

}  // namespace host
