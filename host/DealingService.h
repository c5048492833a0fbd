// The emulated terminal's dealing interfaces ("DEALING", "TELVIX", any name): their
// accounts (16000/16001), the day-off states of each account's symbols (16026/16027), and
// the dealing events the terminal raises to the module when accounts come and go (16002,
// 16003) or day-off states change (16048).
#pragma once

#include <QString>
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

    Host& host_;
    CoreServices& core_;
    std::map<void*, Dealing> dealings_;
};

}  // namespace host
