#include "module/AccountList.h"

#include <cstring>

OneHandleAccount::OneHandleAccount(const fxdDealAccount& account, void* dealHandle)
    : dealHandle_(dealHandle), account_(account) {}

QString OneHandleAccount::GetAccountName() const {
    // The name is NUL-terminated inside the record; read no further than the record's end.
    const int capacity = int(sizeof account_.name / sizeof account_.name[0]);
    int n = 0;
    while (n < capacity && account_.name[n]) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(account_.name), n);
}

bool AccountList::addToAccountList(const fxdDealAccount& account, void* dealHandle) {
    for (const auto& entry : entries_)
        if (entry->GetAccountId() == account.accountId) return false;
    entries_.push_back(boost::shared_ptr<OneHandleAccount>(new OneHandleAccount(account, dealHandle)));
    if (entries_.size() == 1) setLastAccount(entries_.back()->GetAccountName());
    return true;
}

bool AccountList::delFromAccountList(const fxdDealAccount& account, void*) {
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if ((*it)->GetAccountId() == account.accountId) {
            entries_.erase(it);
            return true;
        }
    }
    return false;
}

void AccountList::setLastAccount(const QString& name) {
    for (const auto& entry : entries_)
        if (entry->GetAccountName() == name) lastAccount_ = entry->GetDealHandle();
}

int AccountList::getActiveAccount(const QString& name) const {
    for (const auto& entry : entries_)
        if (entry->GetAccountName() == name) return entry->GetAccountId();
    return 0;
}
