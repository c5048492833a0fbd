// The data-to-pixel transform of one chart area: columns horizontally, prices vertically.
//
// One engine belongs to each area and is shared between the area, its lines and their
// renderers. The widget updates it whenever the area's rectangle, visible columns or price
// range change. Arithmetic is done in extended precision (long double) from the stored
// 32-bit floats and integers; the conversions to integer pixels are truncations toward zero
// and decide on which pixel a box edge falls, so they are kept exactly as they are.
#pragma once

#include <QRect>
#include <climits>
#include <cmath>

namespace pf {

// Pixel coordinates beyond this magnitude never reach a screen. A result outside it (an
// infinite or absurd factor, a NaN price from the host) is clamped to it, NaN to the lower
// bound, so that the small integer sums done on pixels afterwards cannot overflow.
constexpr int kPixelLimit = 1 << 28;

// Truncation toward zero of a pixel position, clamped to +-kPixelLimit.
inline int TruncToPixel(long double v) {
    if (!(v > -kPixelLimit)) return -kPixelLimit;
    if (v > kPixelLimit) return kPixelLimit;
    return static_cast<int>(v);
}

// Truncation toward zero of a count or an index. A value outside the 32-bit range (or NaN)
// gives INT_MIN, the value the terminal's x86 conversion produces for it.
inline int TruncToInt(long double v) {
    if (!(v > static_cast<long double>(INT_MIN) - 1) || !(v < static_cast<long double>(INT_MAX) + 1))
        return INT_MIN;
    return static_cast<int>(v);
}

class ScaleEngine {
public:
    // Rectangle (0, 0, -1, -1), every value 0.
    ScaleEngine() = default;
    ScaleEngine(const QRect& rect, float x0, float x1, float minPrice, float maxPrice) {
        Update(rect, x0, x1, minPrice, maxPrice);
    }

    // Stores the rectangle moved 2 pixels inwards on the left and on the right, the two x
    // values and the price range, then computes the two factors.
    void Update(const QRect& rect, float x0, float x1, float minPrice, float maxPrice);

    // The width of the stored rectangle divided by n; 0 when |n| < 1e-6.
    float GetXStep(float n) const {
        const long double ln = n;
        if (std::fabs(ln) < 1e-6L) return 0.0f;
        return static_cast<float>(GetWidth() / ln);
    }

    // Column to pixel offset from the stored left edge. The difference (x factor - x0) is
    // used as it stands; callers pass x0 = 0 for plain columns times the factor.
    int TranslateX(int column) const {
        const long double d = static_cast<long double>(xFactor_) - x0_;
        return TruncToPixel(column * d + 0.5L);
    }
    // Pixel offset from the stored left edge to the column whose centre lies nearest.
    int UnTranslateX(int pixel) const;

    // Price to pixel row: minPrice maps to bottom + 1, higher prices to smaller rows.
    int TranslateY(float price) const {
        const long double scaled =
            (static_cast<long double>(price) - minPrice_) * static_cast<long double>(yFactor_);
        return TruncToPixel((bottom_ + 1.0L) - std::floor(scaled + 0.5L));
    }
    // Pixel row to price. A zero y factor (equal minimum and maximum) gives an infinite result.
    double UnTranslateY(int row) const {
        return static_cast<double>((bottom_ + 1.0L - row) / static_cast<long double>(yFactor_) +
                                   minPrice_);
    }

    // Zoom selection from mouse x positions in widget pixels: start on press, middle while
    // dragging, end on release (which also orders the selection).
    void SetZoomStartPos(int x) { zoomStart_ = UnTranslateX(x - left_) - 1; }
    void SetZoomMiddlePos(int x) { zoomMiddle_ = UnTranslateX(x - left_) - 1; }
    void SetZoomEndPos(int x) {
        zoomEnd_ = UnTranslateX(x - left_);
        SwapSelectPos();
    }
    // While the selection is dragged its end follows the mouse, unordered until release.
    void SetZoomDragEndPos(int x) { zoomEnd_ = UnTranslateX(x - left_); }
    // A selection made from right to left becomes start = end - 1 (not below 0) and
    // end = old start + 1, one column wider on each side.
    void SwapSelectPos();
    // True when the selection is wider than 6 columns.
    bool GetEqualsPos() const { return zoomEnd_ - zoomStart_ > 6; }

    int GetZoomStartPos() const { return zoomStart_; }
    int GetZoomMiddlePos() const { return zoomMiddle_; }
    int GetZoomEndPos() const { return zoomEnd_; }

    // The stored rectangle (insets applied) and its size.
    int GetLeft() const { return left_; }
    int GetTop() const { return top_; }
    int GetRight() const { return right_; }
    int GetBottom() const { return bottom_; }
    QRect GetRect() const { return QRect(QPoint(left_, top_), QPoint(right_, bottom_)); }
    long double GetWidth() const { return static_cast<long double>(right_) - left_ + 1; }
    long double GetHeight() const { return static_cast<long double>(bottom_) - top_ + 1; }

    float GetX0() const { return x0_; }
    float GetX1() const { return x1_; }
    float GetMinPrice() const { return minPrice_; }
    float GetMaxPrice() const { return maxPrice_; }
    float GetXFactor() const { return xFactor_; }
    float GetYFactor() const { return yFactor_; }

    // Set by the area's owner: number of visible columns, index of the leftmost one in the
    // chart-type array, and the owner's flag.
    int GetColumnCount() const { return columnCount_; }
    void SetColumnCount(int count) { columnCount_ = count; }
    int GetFirstColumn() const { return firstColumn_; }
    void SetFirstColumn(int index) { firstColumn_ = index; }
    bool GetFlag() const { return flag_; }
    void SetFlag(bool flag) { flag_ = flag; }

    // The index of the last column a renderer may draw: the second x value, truncated.
    int GetLastDrawable() const { return TruncToInt(x1_); }

private:
    int left_ = 0;
    int top_ = 0;
    int right_ = -1;
    int bottom_ = -1;
    float x0_ = 0.0f;
    float x1_ = 0.0f;
    float minPrice_ = 0.0f;
    float maxPrice_ = 0.0f;
    float xFactor_ = 0.0f;
    float yFactor_ = 0.0f;
    int columnCount_ = 0;
    int firstColumn_ = 0;
    bool flag_ = false;
    int zoomStart_ = 0;
    int zoomEnd_ = 0;
    int zoomMiddle_ = 0;
};

}  // namespace pf
