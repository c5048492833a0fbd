#include "host/data/RenkoProvider.h"

#include "host/data/PriceGrid.h"

namespace host {
namespace data {

RenkoProvider::RenkoProvider(const ProviderSettings& settings) : ChartTypeProvider(settings) {}

void RenkoProvider::add(std::int32_t time, std::int64_t price) {
    const std::int64_t box = settings_.box;
    const std::int64_t upBox = PriceGrid::floorDiv(price, box);
    const std::int64_t downBox = PriceGrid::ceilDiv(price, box);
    if (!started_) {
        started_ = true;
        firstUp_ = downBox;
        firstDown_ = upBox;
        return;
    }
    // Lower edges of the next brick up and of the next brick down.
    std::int64_t nextUp = empty() ? firstUp_ : lastBox_ + 1;
    std::int64_t nextDown = empty() ? firstDown_ - 1 : lastBox_ - 1;
    if (upBox >= nextUp + 1) {
        for (; nextUp + 1 <= upBox; ++nextUp) push(Figure{time, nextUp * box, (nextUp + 1) * box, true, 0});
        lastBox_ = nextUp - 1;
    } else if (downBox <= nextDown) {
        for (; nextDown >= downBox; --nextDown) push(Figure{time, nextDown * box, (nextDown + 1) * box, false, 0});
        lastBox_ = nextDown + 1;
    }
}

}  // namespace data
}  // namespace host
