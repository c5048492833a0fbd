// A data object of the data core: something the module holds by handle, reads through
// one data point array, and subscribes to. Chart objects (the computed chart types) and
// base series (an instrument's own quotes) are the two kinds.
#pragma once

#include <string>
#include <vector>

#include "abi/records/dpa_records.h"
#include "host/data/Instrument.h"

namespace host {
namespace data {

// What 3012 tells about an object's provider.
struct HeadNode {
    std::string interfaceName;
    std::string provider;
    std::string name;
};

// A subscriber as 3013 gives it: the interface target notices go to, and the widget.
struct Subscription {
    void* first;
    void* subscriber;
    bool operator==(const Subscription& o) const { return first == o.first && subscriber == o.subscriber; }
};

class DataObject {
public:
    DataObject(void* handle, Instrument& instrument);
    virtual ~DataObject();
    DataObject(const DataObject&) = delete;
    DataObject& operator=(const DataObject&) = delete;

    void* handle() const { return handle_; }
    Instrument& instrument() const { return instrument_; }

    // The object's array; its points stay valid until the object takes the next quote.
    virtual fxDataPointArray* array() = 0;
    virtual HeadNode headNode() const = 0;
    // Takes the instrument's newest live quote; true when the array changed.
    virtual bool takeQuote(const Quote& quote) = 0;

    // False when the pair is already subscribed / was not subscribed.
    bool subscribe(const Subscription& s);
    bool unsubscribe(const Subscription& s);
    const std::vector<Subscription>& subscriptions() const { return subscriptions_; }

private:
    void* handle_;
    Instrument& instrument_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace data
}  // namespace host
