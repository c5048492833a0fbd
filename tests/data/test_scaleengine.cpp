// The data-to-pixel transform: insets, factors, the rounding of each conversion and the
// zoom selection.
#include <gtest/gtest.h>

#include <cmath>

#include "data/ScaleEngine.h"

namespace {

// A stored rectangle from x 0, `width` wide and `height` tall.
pf::ScaleEngine Engine(int columns, int width, int height, float x0, float minPrice, float maxPrice) {
    pf::ScaleEngine e;
    e.SetColumnCount(columns);
    e.Update(QRect(QPoint(-2, 0), QPoint(width + 1, height - 1)), x0, 0.0f, minPrice, maxPrice);
    return e;
}

}  // namespace

TEST(ScaleEngine, UpdateInsetsTheRectangleAndComputesFactors) {
    pf::ScaleEngine e(QRect(0, 0, 100, 200), 1.0f, 7.5f, 1.0f, 2.0f);
    EXPECT_EQ(e.GetRect(), QRect(QPoint(2, 0), QPoint(97, 199)));
    EXPECT_EQ(e.GetWidth(), 96);
    EXPECT_EQ(e.GetLastDrawable(), 7);
    EXPECT_FLOAT_EQ(e.GetYFactor(), 200.0f);
    EXPECT_EQ(e.GetXStep(0.0000005f), 0.0f);
    EXPECT_EQ(e.GetXStep(4.0f), 24.0f);

    const float inf = INFINITY;
    EXPECT_EQ(Engine(10, 100, 100, 10.0f, 1, 2).GetXFactor(), 0.0f);  // no columns beyond x0
    EXPECT_EQ(Engine(10, 100, 100, -inf, 1, 2).GetXFactor(), 0.0f);
    EXPECT_TRUE(std::isnan(Engine(10, 100, 100, NAN, 1, 2).GetXFactor()));
    EXPECT_EQ(Engine(10, 100, 100, 0, -inf, 1).GetYFactor(), 0.0f);
}

TEST(ScaleEngine, ColumnsUseFactorMinusX0AndMapBackToTheNearestCentre) {
    // 10 columns and x0 2: factor 100 / 8 = 12.5, so a column advances 12.5 - 2 = 10.5.
    const pf::ScaleEngine e = Engine(10, 100, 100, 2.0f, 0, 1);
    EXPECT_EQ(e.TranslateX(1), 11);
    EXPECT_EQ(e.TranslateX(3), 32);
    EXPECT_EQ(e.TranslateX(-1), -10);  // truncated toward zero

    const pf::ScaleEngine plain = Engine(10, 100, 100, 0, 0, 1);  // 10 pixels per column
    EXPECT_EQ(plain.UnTranslateX(-5), 0);
    EXPECT_EQ(plain.UnTranslateX(4), 1);
    EXPECT_EQ(plain.UnTranslateX(15), 2);
    EXPECT_EQ(Engine(0, 100, 100, 0, 0, 1).UnTranslateX(57), 0);
}

TEST(ScaleEngine, RowsAreFlooredHalfUpFromBottomPlusOne) {
    const pf::ScaleEngine e = Engine(10, 100, 100, 0, 0, 100);  // one row per price unit
    EXPECT_EQ(e.TranslateY(0.0f), 100);
    EXPECT_EQ(e.TranslateY(10.5f), 89);
    EXPECT_EQ(e.TranslateY(10.49f), 90);
    EXPECT_EQ(e.TranslateY(-0.51f), 101);  // floor, not truncation
    EXPECT_DOUBLE_EQ(e.UnTranslateY(101), -1.0);

    const pf::ScaleEngine flat = Engine(10, 100, 100, 0, 5, 5);
    EXPECT_EQ(flat.TranslateY(123.0f), 100);
    EXPECT_TRUE(std::isinf(flat.UnTranslateY(40)));

    // Absurd prices and factors stay on bounded pixels.
    EXPECT_EQ(e.TranslateY(NAN), -pf::kPixelLimit);
    EXPECT_EQ(e.TranslateY(-3e38f), pf::kPixelLimit);
    EXPECT_EQ(Engine(10, 100, 100, NAN, 0, 1).TranslateX(3), -pf::kPixelLimit);
    EXPECT_EQ(pf::TruncToInt(1e12L), INT_MIN);
}

TEST(ScaleEngine, ZoomSelectionIsOrderedAndWidenedFromRightToLeft) {
    pf::ScaleEngine e;  // 10 pixels per column from x 2: widget x 10c - 3 is column c
    e.SetColumnCount(10);
    e.Update(QRect(QPoint(0, 0), QPoint(103, 99)), 0.0f, 9.0f, 0, 1);
    const auto at = [](int column) { return 10 * column - 3; };

    e.SetZoomStartPos(at(4));
    e.SetZoomMiddlePos(at(7));
    e.SetZoomEndPos(at(9));
    EXPECT_EQ(e.GetZoomStartPos(), 3);
    EXPECT_EQ(e.GetZoomMiddlePos(), 6);
    EXPECT_FALSE(e.GetEqualsPos());  // 3..9
    e.SetZoomEndPos(at(10));
    EXPECT_TRUE(e.GetEqualsPos());  // 3..10

    e.SetZoomStartPos(at(11));
    e.SetZoomEndPos(at(4));
    EXPECT_EQ(std::make_pair(e.GetZoomStartPos(), e.GetZoomEndPos()), std::make_pair(3, 11));
    e.SetZoomStartPos(at(11));
    e.SetZoomEndPos(at(0));
    EXPECT_EQ(std::make_pair(e.GetZoomStartPos(), e.GetZoomEndPos()), std::make_pair(0, 11));
}
