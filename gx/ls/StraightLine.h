// A straight line through two points, for the geometry of the arcs of line studies.
//
// Two values are equal when they differ by less than the tolerance. A line whose points
// coincide, whose coordinates are not finite, or a question the line cannot answer (the y
// of a vertical line) throws StraightLine<T>::Error; the shapes catch it and draw nothing.
#pragma once

#include <cmath>
#include <stdexcept>

template <class T>
class StraightLine {
public:
    struct Error : std::runtime_error {
        Error() : std::runtime_error("Degenerate straight line") {}
    };

    StraightLine(T x0, T y0, T x1, T y1, T tolerance = T(1e-6))
        : x0_(x0), y0_(y0), x1_(x1), y1_(y1), tolerance_(tolerance) {
        if (!std::isfinite(x0) || !std::isfinite(y0) || !std::isfinite(x1) || !std::isfinite(y1)) throw Error();
    }

    bool Equal(T a, T b) const { return tolerance_ > std::fabs(a - b); }
    bool IsVertical() const { return Equal(x0_, x1_); }
    bool IsHorizontal() const { return Equal(y0_, y1_); }

    // The distance between the two points, in the line's precision.
    T Length() const {
        const T dx = x1_ - x0_;
        const T dy = y1_ - y0_;
        const T length = std::sqrt(dx * dx + dy * dy);
        if (!std::isfinite(length)) throw Error();
        return length;
    }
    T YAt(T x) const {
        if (IsVertical()) throw Error();
        return y0_ + (y1_ - y0_) * (x - x0_) / (x1_ - x0_);
    }
    T XAt(T y) const {
        if (IsHorizontal()) throw Error();
        return x0_ + (x1_ - x0_) * (y - y0_) / (y1_ - y0_);
    }

private:
    T x0_, y0_, x1_, y1_;
    T tolerance_;
};
