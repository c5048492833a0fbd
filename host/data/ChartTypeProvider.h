// The common part of the three chart-type providers. A provider takes closing prices one
// at a time, as integer ticks of the chart's price grid, and keeps the figures they make:
// Point and Figure columns, Renko bricks or Kagi strokes. A new price changes at most the
// last figure and appends new ones, so each price costs constant work plus the figures it
// adds, and the provider remembers from which figure on anything changed, so that the
// caller can bring its records up to date without rebuilding them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/data/ChartType.h"

namespace host {
namespace data {

// One column, brick or stroke, prices in ticks.
struct Figure {
    std::int32_t time;   // time of the price that made the figure
    std::int64_t low;    // VALUE
    std::int64_t high;   // END
    bool rising;         // TYPE 1 rising, 0 falling
    std::int64_t solid;  // SOLID: Kagi's switching level; 0 for the other types
};

struct ProviderSettings {
    std::int64_t box = 1;                // box size in ticks, at least 1
    int reversal = kDefaultReversal;     // in boxes, at least 1
    std::int64_t percentHundredths = 0;  // Kagi: reversal in 1/100 per cent; 0: in boxes
};

class ChartTypeProvider {
public:
    virtual ~ChartTypeProvider();

    virtual ChartType type() const = 0;
    // The next closing price, in ticks, and its time.
    virtual void add(std::int32_t time, std::int64_t price) = 0;

    const ProviderSettings& settings() const { return settings_; }
    const std::vector<Figure>& figures() const { return figures_; }
    // Index of the first figure added or changed since the last markClean(); the figure
    // count when nothing changed.
    std::size_t dirtyFrom() const { return dirtyFrom_; }
    void markClean() { dirtyFrom_ = figures_.size(); }

protected:
    explicit ChartTypeProvider(const ProviderSettings& settings);

    bool empty() const { return figures_.empty(); }
    const Figure& back() const { return figures_.back(); }
    // The last figure, for changing it.
    Figure& changeBack();
    void push(const Figure& figure) { figures_.push_back(figure); }
    std::size_t count() const { return figures_.size(); }
    const Figure& at(std::size_t i) const { return figures_[i]; }

    const ProviderSettings settings_;

private:
    std::vector<Figure> figures_;
    std::size_t dirtyFrom_ = 0;
};

// The provider of `type`; box and reversal are raised to at least 1.
std::unique_ptr<ChartTypeProvider> makeProvider(ChartType type, ProviderSettings settings);

}  // namespace data
}  // namespace host
