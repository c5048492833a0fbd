#include "data/ScaleEngine.h"

#include <cfloat>

namespace pf {

namespace {

// width / span, or 0 when the span is 0 or infinite. A NaN span passes the test and gives
// a NaN factor.
float Factor(long double size, long double span) {
    const long double magnitude = std::fabs(span);
    if (span == 0 || magnitude * static_cast<long double>(FLT_EPSILON) >= magnitude) return 0.0f;
    return static_cast<float>(size / span);
}

}  // namespace

void ScaleEngine::Update(const QRect& rect, float x0, float x1, float minPrice, float maxPrice) {
    left_ = rect.left() + 2;
    top_ = rect.top();
    right_ = rect.right() - 2;
    bottom_ = rect.bottom();
    x0_ = x0;
    x1_ = x1;
    minPrice_ = minPrice;
    maxPrice_ = maxPrice;
    xFactor_ = Factor(GetWidth(), static_cast<long double>(columnCount_) - x0_);
    yFactor_ = Factor(GetHeight(), static_cast<long double>(maxPrice_) - minPrice_);
}

int ScaleEngine::UnTranslateX(int pixel) const {
    if (columnCount_ == 0) return 0;
    const long double w = GetWidth() / columnCount_;
    const long double d = static_cast<long double>(xFactor_) - x0_;
    // Column numbers share the pixel clamp: the zoom positions add and subtract one.
    return TruncToPixel((pixel + 0.5L * w) / d + 0.5L);
}

void ScaleEngine::SwapSelectPos() {
    if (zoomStart_ <= zoomEnd_) return;
    const int oldStart = zoomStart_;
    zoomStart_ = zoomEnd_ - 1 < 0 ? 0 : zoomEnd_ - 1;
    zoomEnd_ = oldStart + 1;
}

}  // namespace pf
