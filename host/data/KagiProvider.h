// Kagi strokes from closing prices.
//
// One figure per vertical stroke: VALUE its lower price, END its upper price, TYPE 1 for
// a rising and 0 for a falling stroke. A stroke extends while prices go its way and
// reverses when the price moves back from its extreme by the reversal amount (`reversal`
// boxes, or a per cent of the extreme); the new stroke starts at that extreme. Before the
// first stroke the first price is the reference.
//
// Thickness: the line turns thick where a rising stroke climbs above the previous
// shoulder (the top of the rising stroke before it) and thin where a falling stroke drops
// below the previous waist (the bottom of the falling stroke before it). SOLID holds that
// shoulder or waist. A stroke that does not break through it leaves SOLID outside its
// VALUE..END span, and so does a stroke with no shoulder or waist before it (one box
// below a rising stroke, one box above a falling one), which never changes thickness.
#pragma once

#include "host/data/ChartTypeProvider.h"

namespace host {
namespace data {

class KagiProvider : public ChartTypeProvider {
public:
    explicit KagiProvider(const ProviderSettings& settings);

    ChartType type() const override { return ChartType::Kagi; }
    void add(std::int32_t time, std::int64_t price) override;

private:
    // True when moving from `extreme` to `price` reverses the line.
    bool reverses(std::int64_t extreme, std::int64_t price) const;
    void open(std::int32_t time, std::int64_t from, std::int64_t to);

    bool started_ = false;
    std::int64_t first_ = 0;
};

}  // namespace data
}  // namespace host
