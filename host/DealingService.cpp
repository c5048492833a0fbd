#include "host/DealingService.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/CoreServices.h"

namespace host {

DealingService::DealingService(Host& host, CoreServices& core) : host_(host), core_(core) {
    host_.on(MSG_DEAL_ACCOUNT_COUNT, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return countAccounts(target, reinterpret_cast<fxdAccountRequest*>(p1), false, d);
    });
    host_.on(MSG_DEAL_ACCOUNT_LIST, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return countAccounts(target, reinterpret_cast<fxdAccountRequest*>(p1), true, d);
    });
    host_.on(MSG_DEAL_DAYOFF_COUNT, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return countDayOff(target, int(p1), reinterpret_cast<fxdDayOffRequest*>(p2), false, d);
    });
    host_.on(MSG_DEAL_DAYOFF_LIST, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return countDayOff(target, int(p1), reinterpret_cast<fxdDayOffRequest*>(p2), true, d);
    });
    host_.on(MSG_DEAL_DEAL, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return trade(target, reinterpret_cast<const fxdTradeRequest*>(p1), TradeKind::Deal, d);
    });
    host_.on(MSG_DEAL_ORDER, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return trade(target, reinterpret_cast<const fxdTradeRequest*>(p1), TradeKind::Order, d);
    });
}

void* DealingService::addDealing(const std::string& name) {
    void* handle = host_.newHandle();
    dealings_[handle].name = name;
    order_.push_back(handle);
    host_.addInterface({"DEALING", "TELVIX", name, handle});
    return handle;
}

DealingService::Dealing* DealingService::find(void* handle) {
    auto it = dealings_.find(handle);
    return it == dealings_.end() ? nullptr : &it->second;
}

const DealingService::Dealing* DealingService::find(void* handle) const {
    auto it = dealings_.find(handle);
    return it == dealings_.end() ? nullptr : &it->second;
}

fxdDealAccount DealingService::makeAccount(void* dealing, int id, const QString& name) {
    fxdDealAccount account;
    std::memset(&account, 0, sizeof account);
    // Handles of this host fit the record's 32-bit word.
    account.dealHandle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(dealing));
    account.accountId = id;
    const int n = std::min(int(name.size()), int(sizeof account.name / sizeof account.name[0]) - 1);
    std::memcpy(account.name, name.utf16(), std::size_t(n) * sizeof(coreWChar));
    return account;
}

bool DealingService::addAccount(void* dealing, int id, const QString& name) {
    Dealing* d = find(dealing);
    if (!d) return false;
    d->accounts.push_back(makeAccount(dealing, id, name));
    return true;
}

bool DealingService::removeAccount(void* dealing, int id) {
    Dealing* d = find(dealing);
    if (!d) return false;
    auto it = std::find_if(d->accounts.begin(), d->accounts.end(),
                           [id](const fxdDealAccount& a) { return a.accountId == id; });
    if (it == d->accounts.end()) return false;
    d->accounts.erase(it);
    return true;
}

std::vector<fxdDealAccount> DealingService::accounts(void* dealing) const {
    const Dealing* d = find(dealing);
    return d ? d->accounts : std::vector<fxdDealAccount>();
}

bool DealingService::setDayOff(void* dealing, int accountId, const std::string& symbol, bool dayOff) {
    Dealing* d = find(dealing);
    if (!d) return false;
    std::vector<fxdDayOff>& table = d->dayOff[accountId];
    for (fxdDayOff& r : table) {
        if (std::string(r.symbol, strnlen(r.symbol, sizeof r.symbol)) == symbol.substr(0, sizeof r.symbol)) {
            r.dayOff = dayOff ? 1 : 0;
            return true;
        }
    }
    fxdDayOff r;
    std::memset(&r, 0, sizeof r);
    std::memcpy(r.symbol, symbol.data(), std::min(symbol.size(), sizeof r.symbol));
    r.dayOff = dayOff ? 1 : 0;
    table.push_back(r);
    return true;
}

int DealingService::countAccounts(void* target, fxdAccountRequest* request, bool fill,
                                  std::string& detail) {
    const Dealing* d = find(target);
    if (!d || !request) return 1;
    const std::int32_t available = std::int32_t(d->accounts.size());
    if (!fill) {
        request->count = available;
        detail = "accounts=" + std::to_string(available);
        return 0;
    }
    if (!request->accounts || request->count < 1) return 1;
    const std::int32_t n = std::min(request->count, available);
    for (std::int32_t i = 0; i < n; ++i) request->accounts[i] = d->accounts[std::size_t(i)];
    detail = "accounts=" + std::to_string(n);
    return 0;
}

int DealingService::countDayOff(void* target, int accountId, fxdDayOffRequest* request, bool fill,
                                std::string& detail) {
    const Dealing* d = find(target);
    if (!d || !request) return 1;
    auto it = d->dayOff.find(accountId);
    const std::int32_t available = it == d->dayOff.end() ? 0 : std::int32_t(it->second.size());
    detail = "account=" + std::to_string(accountId) + " ";
    if (!fill) {
        request->count = available;
        detail += "symbols=" + std::to_string(available);
        return 0;
    }
    if (!request->records || request->count < 1) return 1;
    // Never more than the module made room for.
    const std::int32_t n = std::min(request->count, available);
    int closed = 0;
    for (std::int32_t i = 0; i < n; ++i) {
        request->records[i] = it->second[std::size_t(i)];
        closed += request->records[i].dayOff ? 1 : 0;
    }
    detail += "symbols=" + std::to_string(n) + " dayoff=" + std::to_string(closed);
    return 0;
}

std::string DealingService::dealingName(void* dealing) const {
    const Dealing* d = find(dealing);
    return d ? d->name : std::string();
}

std::vector<void*> DealingService::addDemoAccounts(int count) {
    std::vector<void*> made;
    for (int k = 1; k <= count; ++k) {
        const std::size_t which = std::size_t((k - 1) % 2);
        if (made.size() <= which) made.push_back(addDealing(which == 0 ? "Demo dealing" : "Second dealing"));
        const int id = 1000 + k;
        addAccount(made[which], id, demoAccountName(k));
        setDayOff(made[which], id, "USDCHF", false);
    }
    return made;
}

QString DealingService::demoAccountName(int k) {
    return k == 1 ? QStringLiteral("Demo account") : QStringLiteral("Demo account %1").arg(k);
}

int DealingService::trade(void* target, const fxdTradeRequest* request, TradeKind kind, std::string& detail) {
    const Dealing* d = find(target);
    if (!d || !request) {
        detail = d ? "no request" : "not a dealing";
        return 1;
    }
    fxdTradeRequest r;
    std::memcpy(&r, request, sizeof r);
    Trade t;
    t.received = QDateTime::currentDateTimeUtc();
    t.dealing = target;
    t.accountId = r.accountId;
    t.instrument.assign(r.instrument, strnlen(r.instrument, sizeof r.instrument));
    t.kind = kind;
    t.price = r.price;
    t.dealingName = d->name;
    t.accountName = accountName(target, t.accountId);
    detail = std::string(kindName(kind)) + " " + t.instrument + " account=" + std::to_string(t.accountId);
    if (kind == TradeKind::Order) detail += " price=" + std::to_string(t.price);
    const bool known = std::any_of(d->accounts.begin(), d->accounts.end(),
                                   [&t](const fxdDealAccount& a) { return a.accountId == t.accountId; });
    const char* refused = nullptr;
    if (t.instrument.empty())
        refused = "no instrument";
    else if (!known)
        refused = "no such account at this dealing";
    else if (!std::isfinite(t.price) || (kind == TradeKind::Order && t.price <= 0))
        refused = "bad price";
    if (refused) {
        detail += std::string(": refused, ") + refused;
        return 1;
    }
    if (ticket_) {
        detail += ": to the ticket";
        ticket_(t);
        return 0;
    }
    blotter_.push_back(t);
    return 0;
}

QString DealingService::accountName(void* dealing, std::int32_t accountId) const {
    const Dealing* d = find(dealing);
    if (!d) return QString();
    for (const fxdDealAccount& a : d->accounts)
        if (a.accountId == accountId) {
            std::size_t n = 0;
            while (n < sizeof a.name / sizeof a.name[0] && a.name[n]) ++n;
            return QString::fromUtf16(reinterpret_cast<const char16_t*>(a.name), int(n));
        }
    return QString();
}

bool DealingService::book(Trade trade) {
    const Dealing* d = find(trade.dealing);
    if (!d || accountName(trade.dealing, trade.accountId).isEmpty() || trade.instrument.empty() ||
        !std::isfinite(trade.price) || trade.price < 0 || (trade.kind == TradeKind::Order && trade.price <= 0) ||
        !std::isfinite(trade.amount) || trade.amount <= 0 || trade.side == Side::None)
        return false;
    trade.received = QDateTime::currentDateTimeUtc();
    trade.dealingName = d->name;
    trade.accountName = accountName(trade.dealing, trade.accountId);
    blotter_.push_back(trade);
    return true;
}

void DealingService::setBlotter(std::vector<Trade> trades) {
    for (Trade& t : trades) {
        t.dealing = nullptr;
        for (void* h : order_)
            if (dealings_.at(h).name == t.dealingName) {
                t.dealing = h;
                break;
            }
    }
    blotter_ = std::move(trades);
    ++generation_;
}

std::string DealingService::describeBlotter() const {
    std::string out;
    char line[512];
    for (const Trade& t : blotter_) {
        std::snprintf(line, sizeof line, "%s  %-16s %8d  %-5s  %-20s %.10g",
                      t.received.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")).toUtf8().constData(),
                      t.dealingName.c_str(), int(t.accountId), kindName(t.kind), t.instrument.c_str(), t.price);
        out += line;
        if (t.side != Side::None) {
            std::snprintf(line, sizeof line, "  %s %.10g", sideName(t.side), t.amount);
            out += line;
        }
        out += '\n';
    }
    return out;
}

int DealingService::raiseAccountAdded(void* dealing, int id, const QString& name) {
    if (!addAccount(dealing, id, name)) return 0;
    fxdDealAccount account = makeAccount(dealing, id, name);
    return core_.raiseEvent(eventName(), EVENT_ACCOUNT_ADDED, &account, 1);
}

int DealingService::raiseAccountRemoved(void* dealing, int id) {
    for (fxdDealAccount account : accounts(dealing)) {
        if (account.accountId != id) continue;
        removeAccount(dealing, id);
        return core_.raiseEvent(eventName(), EVENT_ACCOUNT_REMOVED, &account, 1);
    }
    return 0;
}

int DealingService::raiseDayOff(void* dealing, int accountId) {
    fxdDayOffEventPayload payload;
    payload.dealHandle = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(dealing));
    payload.accountId = accountId;
    return core_.raiseEvent(eventName(), EVENT_DAYOFF_CHANGED, &payload, 1);
}

}  // namespace host
