// The data object of an instrument's own quotes: one array named after the instrument with
// the fields TIME, OPEN, HIGH, LOW, CLOSE, VOLUME (or TIME, CLOSE for a series of closes).
// The module reads its name as the base series' name.
#pragma once

#include <vector>

#include "host/data/DataObject.h"
#include "host/data/DataPointArray.h"

namespace host {
namespace data {

class BaseSeries : public DataObject {
public:
    BaseSeries(void* handle, Instrument& instrument);

    fxDataPointArray* array() override { return array_.header(); }
    HeadNode headNode() const override;
    bool takeQuote(const Quote& quote) override;

private:
    void put(const Quote& quote);

    DataPointArray array_;
    std::vector<unsigned char> points_;
};

}  // namespace data
}  // namespace host
