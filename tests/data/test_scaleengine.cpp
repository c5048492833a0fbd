// The data-to-pixel transform: rectangle insets, factors, the rounding of each conversion
// and the zoom selection.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "data/ScaleEngine.h"

using pf::ScaleEngine;

namespace {

// An engine whose stored rectangle starts at x 0 and is `width` wide and `height` tall.
ScaleEngine Engine(int columns, int width, int height, float x0, float minPrice, float maxPrice) {
    ScaleEngine e;
    e.SetColumnCount(columns);
    e.Update(QRect(QPoint(-2, 0), QPoint(width + 1, height - 1)), x0, 0.0f, minPrice, maxPrice);
    return e;
}

}  // namespace

TEST(ScaleEngine, ConstructionAndUpdateStoreTheInsetRectangle) {
    ScaleEngine blank;
    EXPECT_EQ(blank.GetRect(), QRect(0, 0, 0, 0));
    EXPECT_EQ(blank.GetRight(), -1);
    EXPECT_EQ(blank.GetBottom(), -1);
    EXPECT_EQ(blank.GetXFactor(), 0.0f);
    EXPECT_EQ(blank.GetColumnCount(), 0);

    ScaleEngine e(QRect(0, 0, 100, 200), 1.0f, 7.5f, 1.0f, 2.0f);
    EXPECT_EQ(e.GetLeft(), 2);
    EXPECT_EQ(e.GetRight(), 97);
    EXPECT_EQ(e.GetTop(), 0);
    EXPECT_EQ(e.GetBottom(), 199);
    EXPECT_EQ(e.GetWidth(), 96);
    EXPECT_EQ(e.GetHeight(), 200);
    EXPECT_EQ(e.GetX1(), 7.5f);
    EXPECT_EQ(e.GetLastDrawable(), 7);
    EXPECT_FLOAT_EQ(e.GetYFactor(), 200.0f);

    EXPECT_EQ(e.GetXStep(0.0000005f), 0.0f);
    EXPECT_EQ(e.GetXStep(4.0f), 24.0f);
}

TEST(ScaleEngine, FactorsAreZeroForEmptyOrInfiniteSpans) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Engine(10, 100, 100, 10.0f, 1, 2).GetXFactor(), 0.0f);  // count - x0 = 0
    EXPECT_EQ(Engine(10, 100, 100, -inf, 1, 2).GetXFactor(), 0.0f);
    EXPECT_TRUE(std::isnan(Engine(10, 100, 100, std::nanf(""), 1, 2).GetXFactor()));
    EXPECT_EQ(Engine(10, 100, 100, 0, 1, 1).GetYFactor(), 0.0f);
    EXPECT_EQ(Engine(10, 100, 100, 0, -inf, 1).GetYFactor(), 0.0f);
    EXPECT_FLOAT_EQ(Engine(8, 96, 100, 0, 0, 4).GetXFactor(), 12.0f);
    EXPECT_FLOAT_EQ(Engine(8, 96, 100, 0, 0, 4).GetYFactor(), 25.0f);
}

TEST(ScaleEngine, TranslateXUsesFactorMinusX0AndRoundsHalfUp) {
    // 10 columns, x0 2: factor 100 / 8 = 12.5; the step per column is 12.5 - 2 = 10.5.
    const ScaleEngine e = Engine(10, 100, 100, 2.0f, 0, 1);
    EXPECT_EQ(e.TranslateX(0), 0);
    EXPECT_EQ(e.TranslateX(1), 11);  // 10.5 + 0.5
    EXPECT_EQ(e.TranslateX(3), 32);  // 31.5 + 0.5
    EXPECT_EQ(e.TranslateX(-1), -10);  // -10.5 + 0.5 truncated toward zero

    // A pixel maps back to the column whose centre is nearest.
    const ScaleEngine plain = Engine(10, 100, 100, 0, 0, 1);  // 10 pixels per column
    EXPECT_EQ(plain.UnTranslateX(-5), 0);
    EXPECT_EQ(plain.UnTranslateX(4), 1);
    EXPECT_EQ(plain.UnTranslateX(5), 1);
    EXPECT_EQ(plain.UnTranslateX(15), 2);
    EXPECT_EQ(Engine(0, 100, 100, 0, 0, 1).UnTranslateX(57), 0);
}

TEST(ScaleEngine, TranslateYFloorsHalfUpFromTheBottom) {
    const ScaleEngine e = Engine(10, 100, 100, 0, 0, 100);  // one row per price unit
    EXPECT_EQ(e.TranslateY(0.0f), 100);  // minimum on bottom + 1
    EXPECT_EQ(e.TranslateY(100.0f), 0);
    EXPECT_EQ(e.TranslateY(10.5f), 89);
    EXPECT_EQ(e.TranslateY(10.49f), 90);
    EXPECT_EQ(e.TranslateY(-0.5f), 100);
    EXPECT_EQ(e.TranslateY(-0.51f), 101);  // floor, not truncation
    EXPECT_DOUBLE_EQ(e.UnTranslateY(90), 10.0);
    EXPECT_DOUBLE_EQ(e.UnTranslateY(101), -1.0);

    const ScaleEngine flat = Engine(10, 100, 100, 0, 5, 5);
    EXPECT_EQ(flat.TranslateY(123.0f), 100);
    EXPECT_TRUE(std::isinf(flat.UnTranslateY(40)));
}

TEST(ScaleEngine, ConversionsOfAbsurdValuesStayBounded) {
    const ScaleEngine e = Engine(10, 100, 100, 0, 0, 100);
    EXPECT_EQ(e.TranslateY(std::nanf("")), -pf::kPixelLimit);
    EXPECT_EQ(e.TranslateY(3e38f), -pf::kPixelLimit);
    EXPECT_EQ(e.TranslateY(-3e38f), pf::kPixelLimit);
    EXPECT_EQ(pf::TruncToInt(1e12L), INT_MIN);
    EXPECT_EQ(pf::TruncToInt(-2.9L), -2);
    const ScaleEngine wild = Engine(10, 100, 100, std::nanf(""), 0, 1);
    EXPECT_EQ(wild.TranslateX(3), -pf::kPixelLimit);
}

TEST(ScaleEngine, ZoomSelectionIsOrderedAndWidenedFromRightToLeft) {
    // 10 pixels per column from x 2: widget x 2 + 10c - 5 is column c.
    ScaleEngine e;
    e.SetColumnCount(10);
    e.Update(QRect(QPoint(0, 0), QPoint(103, 99)), 0.0f, 9.0f, 0, 1);
    const auto at = [](int column) { return 2 + 10 * column - 5; };

    e.SetZoomStartPos(at(4));
    e.SetZoomMiddlePos(at(7));
    EXPECT_EQ(e.GetZoomStartPos(), 3);
    EXPECT_EQ(e.GetZoomMiddlePos(), 6);
    e.SetZoomEndPos(at(9));
    EXPECT_EQ(e.GetZoomEndPos(), 9);
    EXPECT_FALSE(e.GetEqualsPos());  // 3..9
    e.SetZoomEndPos(at(10));
    EXPECT_TRUE(e.GetEqualsPos());  // 3..10

    e.SetZoomStartPos(at(11));
    e.SetZoomEndPos(at(4));
    EXPECT_EQ(e.GetZoomStartPos(), 3);
    EXPECT_EQ(e.GetZoomEndPos(), 11);

    e.SetZoomStartPos(at(11));
    e.SetZoomEndPos(at(0));
    EXPECT_EQ(e.GetZoomStartPos(), 0);
    EXPECT_EQ(e.GetZoomEndPos(), 11);
}
