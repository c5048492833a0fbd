// A computed chart-type data object: one instrument, one chart type, its own box size and
// reversal. Its array is named after the chart type and holds one 24-byte record per
// column, brick or stroke (TIME, STEP, VALUE, TYPE, END, SOLID). New quotes update the
// records incrementally; only records from the first changed one on are rewritten.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/data/ChartType.h"
#include "host/data/ChartTypeProvider.h"
#include "host/data/DataObject.h"
#include "host/data/DataPointArray.h"
#include "host/data/PriceGrid.h"

namespace host {
namespace data {

class ChartObject : public DataObject {
public:
    // `settings` must have been resolved (resolveSettings).
    ChartObject(void* handle, Instrument& instrument, ChartType type, const ChartSettings& settings);

    // Fills in the defaults of `requested` for `instrument` and checks the result: a box
    // that is positive, on a grid of at most nine decimals and not so small that the prices
    // travel more than twenty million boxes (a Renko brick each); a reversal of 1 to 1000
    // boxes; a percentage from 0 to 100. False with `error` set otherwise.
    static bool resolveSettings(const Instrument& instrument, const ChartSettings& requested,
                                ChartSettings* resolved, std::string* error);

    ChartType type() const { return type_; }
    const ChartSettings& settings() const { return settings_; }
    const PriceGrid& grid() const { return grid_; }
    const ChartTypeProvider& provider() const { return *provider_; }
    const std::vector<fxChartTypeRecord>& records() const { return records_; }

    fxDataPointArray* array() override { return array_.header(); }
    HeadNode headNode() const override;
    bool takeQuote(const Quote& quote) override;

    // Recomputes everything from the instrument's live quotes with new (resolved) settings.
    void reset(const ChartSettings& settings);

private:
    void sync();
    fxChartTypeRecord record(const Figure& figure) const;
    // The quote's price the settings build the figures from.
    double price(const Quote& quote) const;

    ChartType type_;
    ChartSettings settings_;
    PriceGrid grid_;
    std::unique_ptr<ChartTypeProvider> provider_;
    std::vector<fxChartTypeRecord> records_;
    DataPointArray array_;
};

}  // namespace data
}  // namespace host
