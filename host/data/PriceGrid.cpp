#include "host/data/PriceGrid.h"

#include <cmath>
#include <initializer_list>

namespace host {
namespace data {

namespace {
std::int64_t power10(int n) {
    std::int64_t p = 1;
    while (n-- > 0) p *= 10;
    return p;
}
}  // namespace

PriceGrid::PriceGrid(int digits)
    : digits_(digits < 0 ? 0 : digits > kMaxDigits ? int(kMaxDigits) : digits), scale_(power10(digits_)) {}

std::int64_t PriceGrid::ticks(double price) const { return std::llround(price * double(scale_)); }

int PriceGrid::decimalsOf(double value) {
    value = std::fabs(value);
    for (int d = 0; d < kMaxDigits; ++d) {
        const double scaled = value * double(power10(d));
        if (std::fabs(scaled - std::round(scaled)) <= 1e-9 * std::fmax(1.0, scaled)) return d;
    }
    return kMaxDigits;
}

double defaultBoxSize(double low, double high, int precision) {
    if (precision < 0) precision = 0;
    if (precision > PriceGrid::kMaxDigits) precision = PriceGrid::kMaxDigits;
    const double unit = 1.0 / double(power10(precision));
    const double target = (high - low) / 100.0;
    if (!(target > unit)) return unit;
    double decade = std::pow(10.0, std::floor(std::log10(target)));
    double best = unit;
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (m * decade <= target * (1 + 1e-12)) best = m * decade;
    // Keep it on the precision's grid: a whole number of units.
    const double units = std::round(best / unit);
    return (units < 1 ? 1 : units) * unit;
}

}  // namespace data
}  // namespace host
