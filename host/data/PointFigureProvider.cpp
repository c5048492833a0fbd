#include "host/data/PointFigureProvider.h"

#include "host/data/PriceGrid.h"

namespace host {
namespace data {

PointFigureProvider::PointFigureProvider(const ProviderSettings& settings) : ChartTypeProvider(settings) {}

void PointFigureProvider::open(std::int32_t time, std::int64_t lowBox, std::int64_t highBox, bool rising) {
    lowBox_ = lowBox;
    highBox_ = highBox;
    push(Figure{time, lowBox * settings_.box, highBox * settings_.box, rising, 0});
}

void PointFigureProvider::add(std::int32_t time, std::int64_t price) {
    const std::int64_t box = settings_.box;
    const std::int64_t upBox = PriceGrid::floorDiv(price, box);    // highest box a rise reaches
    const std::int64_t downBox = PriceGrid::ceilDiv(price, box);   // lowest box a fall reaches
    if (!started_) {
        started_ = true;
        lowBox_ = downBox;
        highBox_ = upBox;
        return;
    }
    const int r = settings_.reversal;
    if (empty()) {
        if (upBox >= lowBox_ + r)
            open(time, lowBox_ + 1, upBox, true);
        else if (downBox <= highBox_ - r)
            open(time, downBox, highBox_ - 1, false);
        return;
    }
    if (back().rising) {
        if (upBox > highBox_) {
            highBox_ = upBox;
            changeBack().high = upBox * box;
        } else if (downBox <= highBox_ - r) {
            open(time, downBox, highBox_ - 1, false);
        }
    } else {
        if (downBox < lowBox_) {
            lowBox_ = downBox;
            changeBack().low = downBox * box;
        } else if (upBox >= lowBox_ + r) {
            open(time, lowBox_ + 1, upBox, true);
        }
    }
}

}  // namespace data
}  // namespace host
