// Point and Figure columns from closing prices.
//
// Boxes lie on the grid of the box size; box k spans k*box .. (k+1)*box and is named by
// its lower edge. A rising column (X) holds every box whose lower edge the price reached,
// up to floor(price / box); a falling column (O) every box down to ceil(price / box). A
// column's VALUE is the lower edge of its lowest box and END that of its highest box.
//
// A rising column extends while prices make new boxes. It reverses when the price falls
// `reversal` boxes below its highest box: the falling column begins one box below that
// highest box and so holds at least `reversal` boxes. A falling column reverses the same
// way upwards, beginning one box above its lowest box. The first price acts as a column
// of no height in either direction, so the first column follows the same rule.
#pragma once

#include "host/data/ChartTypeProvider.h"

namespace host {
namespace data {

class PointFigureProvider : public ChartTypeProvider {
public:
    explicit PointFigureProvider(const ProviderSettings& settings);

    ChartType type() const override { return ChartType::PointAndFigure; }
    void add(std::int32_t time, std::int64_t price) override;

private:
    void open(std::int32_t time, std::int64_t lowBox, std::int64_t highBox, bool rising);

    bool started_ = false;
    // Box indexes of the current column (of the first price before any column).
    std::int64_t lowBox_ = 0;
    std::int64_t highBox_ = 0;
};

}  // namespace data
}  // namespace host
