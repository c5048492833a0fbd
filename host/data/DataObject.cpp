#include "host/data/DataObject.h"

#include <algorithm>

namespace host {
namespace data {

DataObject::DataObject(void* handle, Instrument& instrument) : handle_(handle), instrument_(instrument) {}

DataObject::~DataObject() = default;

bool DataObject::subscribe(const Subscription& s) {
    if (std::find(subscriptions_.begin(), subscriptions_.end(), s) != subscriptions_.end()) return false;
    subscriptions_.push_back(s);
    return true;
}

bool DataObject::unsubscribe(const Subscription& s) {
    auto it = std::find(subscriptions_.begin(), subscriptions_.end(), s);
    if (it == subscriptions_.end()) return false;
    subscriptions_.erase(it);
    return true;
}

}  // namespace data
}  // namespace host
