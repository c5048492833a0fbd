// Exact price arithmetic. Prices become integer ticks of 10^-digits, so that box indexes,
// reversal distances and comparisons never depend on binary floating-point noise: 1.2345
// with four digits is the tick 12345, and a box of 0.0005 is 5 ticks.
#pragma once

#include <cstdint>

namespace host {
namespace data {

class PriceGrid {
public:
    // Digits are clamped to 0..kMaxDigits.
    explicit PriceGrid(int digits = 4);

    enum { kMaxDigits = 9 };

    int digits() const { return digits_; }
    std::int64_t scale() const { return scale_; }
    std::int64_t ticks(double price) const;
    double price(std::int64_t ticks) const { return double(ticks) / double(scale_); }

    // Number of decimals needed to write `value` (up to kMaxDigits), e.g. 0.0025 -> 4.
    static int decimalsOf(double value);

    // Division rounding toward minus and plus infinity, for any signs (divisor > 0).
    static std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
        const std::int64_t q = a / b;
        return (a % b != 0 && a < 0) ? q - 1 : q;
    }
    static std::int64_t ceilDiv(std::int64_t a, std::int64_t b) {
        const std::int64_t q = a / b;
        return (a % b != 0 && a > 0) ? q + 1 : q;
    }

private:
    int digits_;
    std::int64_t scale_;
};

// A default box size for prices between `low` and `high` shown with `precision` decimals:
// the largest of 1, 2 or 5 times a power of ten that fits a hundred times into the range,
// and never less than one unit of the last decimal.
double defaultBoxSize(double low, double high, int precision);

}  // namespace data
}  // namespace host
