// Trading accounts known to the chart module, gathered from the host's deal interfaces.
#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <list>

#include "abi/records/dealing_records.h"

// A deal interface handle and a full copy of one 300-byte account record.
class OneHandleAccount {
public:
    OneHandleAccount(const fxdDealAccount& account, void* dealHandle);

    QString GetAccountName() const;
    int GetAccountId() const { return account_.accountId; }
    void* GetDealHandle() const { return dealHandle_; }
    const fxdDealAccount& GetAccount() const { return account_; }

private:
    void* dealHandle_;
    fxdDealAccount account_;
};

// Accounts identified by id, in insertion order, and the last selected deal interface.
class AccountList {
public:
    typedef std::list<boost::shared_ptr<OneHandleAccount> > Entries;

    // False, and nothing added, when an account with the same id is already listed.
    bool addToAccountList(const fxdDealAccount& account, void* dealHandle);
    // Removes the first entry with the same id; true if one was removed.
    bool delFromAccountList(const fxdDealAccount& account, void* dealHandle);
    void clearAccountList() { entries_.clear(); }
    bool empty() const { return entries_.empty(); }

    // Every entry whose name equals `name` sets the last-account handle (the last match wins).
    void setLastAccount(const QString& name);
    // The id of the first entry whose name equals `name`; 0 if none.
    int getActiveAccount(const QString& name) const;

    void* GetLastAccountHandle() const { return lastAccount_; }
    const Entries& GetEntries() const { return entries_; }

private:
    void* lastAccount_ = nullptr;
    Entries entries_;
};
