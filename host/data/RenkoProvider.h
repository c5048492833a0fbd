// Renko bricks from closing prices.
//
// Bricks lie on the grid of the box size, one box high, each one record: VALUE its lower
// edge, END = VALUE + box. A new brick is laid above the last one when the price reaches
// one box above the last brick's top, below it when the price falls one box under the
// last brick's bottom; a price that moves several boxes lays several bricks with its
// time. Measured from the last brick's close (the top of a rising brick, the bottom of a
// falling one), continuing takes one box of movement and reversing takes two. Before the
// first brick the first price is the reference: the first bricks start at the grid level
// at or above it (rising) or at or below it (falling).
#pragma once

#include "host/data/ChartTypeProvider.h"

namespace host {
namespace data {

class RenkoProvider : public ChartTypeProvider {
public:
    explicit RenkoProvider(const ProviderSettings& settings);

    ChartType type() const override { return ChartType::Renko; }
    void add(std::int32_t time, std::int64_t price) override;

private:
    bool started_ = false;
    // Before the first brick: the levels at or above and at or below the first price.
    std::int64_t firstUp_ = 0;
    std::int64_t firstDown_ = 0;
    // Box index of the last brick's lower edge.
    std::int64_t lastBox_ = 0;
};

}  // namespace data
}  // namespace host
