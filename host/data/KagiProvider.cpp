#include "host/data/KagiProvider.h"

namespace host {
namespace data {

namespace {
std::int64_t magnitude(std::int64_t v) { return v < 0 ? -v : v; }
}  // namespace

KagiProvider::KagiProvider(const ProviderSettings& settings) : ChartTypeProvider(settings) {}

bool KagiProvider::reverses(std::int64_t extreme, std::int64_t price) const {
    const std::int64_t move = magnitude(price - extreme);
    if (move == 0) return false;
    // Wide products: ticks reach 10^18, the percentage 10^4.
    if (settings_.percentHundredths > 0)
        return __int128(move) * 10000 >= __int128(settings_.percentHundredths) * magnitude(extreme);
    return move >= settings_.reversal * settings_.box;
}

void KagiProvider::open(std::int32_t time, std::int64_t from, std::int64_t to) {
    const bool rising = to > from;
    Figure f{time, rising ? from : to, rising ? to : from, rising, 0};
    // The stroke two before is the previous one of the same direction.
    if (count() >= 2)
        f.solid = rising ? at(count() - 2).high : at(count() - 2).low;
    else
        f.solid = rising ? f.low - settings_.box : f.high + settings_.box;
    push(f);
}

void KagiProvider::add(std::int32_t time, std::int64_t price) {
    if (!started_) {
        started_ = true;
        first_ = price;
        return;
    }
    if (empty()) {
        if (reverses(first_, price)) open(time, first_, price);
        return;
    }
    if (back().rising) {
        if (price > back().high)
            changeBack().high = price;
        else if (reverses(back().high, price))
            open(time, back().high, price);
    } else {
        if (price < back().low)
            changeBack().low = price;
        else if (reverses(back().low, price))
            open(time, back().low, price);
    }
}

}  // namespace data
}  // namespace host
