#include "host/data/KagiProvider.h"

namespace host {
namespace data {

namespace {
std::int64_t magnitude(std::int64_t v) { return v < 0 ? -v : v; }

// An unsigned 128-bit product as two 64-bit words. The terminal is a 32-bit process, where
// the compiler has no 128-bit integer type, so the product is put together from 32-bit halves.
struct WideProduct {
    std::uint64_t high;
    std::uint64_t low;
};

WideProduct multiply(std::uint64_t a, std::uint64_t b) {
    const std::uint64_t mask = 0xffffffffu;
    const std::uint64_t ll = (a & mask) * (b & mask), lh = (a & mask) * (b >> 32);
    const std::uint64_t hl = (a >> 32) * (b & mask), hh = (a >> 32) * (b >> 32);
    // Sum of the three terms at bit 32; each is below 2^32, so the sum cannot overflow.
    const std::uint64_t middle = (ll >> 32) + (lh & mask) + (hl & mask);
    return {hh + (lh >> 32) + (hl >> 32) + (middle >> 32), (middle << 32) | (ll & mask)};
}

// a * b >= c * d for non-negative a, b, c, d, exactly.
bool productNotLess(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) {
    const WideProduct left = multiply(std::uint64_t(a), std::uint64_t(b));
    const WideProduct right = multiply(std::uint64_t(c), std::uint64_t(d));
    return left.high != right.high ? left.high > right.high : left.low >= right.low;
}
}  // namespace

KagiProvider::KagiProvider(const ProviderSettings& settings) : ChartTypeProvider(settings) {}

bool KagiProvider::reverses(std::int64_t extreme, std::int64_t price) const {
    const std::int64_t move = magnitude(price - extreme);
    if (move == 0) return false;
    // Wide products: ticks reach 10^18, the percentage 10^4.
    if (settings_.percentHundredths > 0)
        return productNotLess(move, 10000, settings_.percentHundredths, magnitude(extreme));
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
