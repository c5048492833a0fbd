// Hit tests of segments (every orientation, the tolerance at its edge) and of rectangles
// given corner to corner in any order.
#include <gtest/gtest.h>

#include "gx/Menu.h"

using gx::util::PtInLine;

TEST(PtInLine, SlantedSegmentsCompareTheDistanceStrictly) {
    // (0, 0) to (3, 2): extents 4 and 3, so a point is d away when |3x - 4y| = 5d.
    const QPoint a(0, 0), b(3, 2);
    EXPECT_FALSE(PtInLine(a, b, QPoint(2, -1), 2));  // exactly 2 away
    EXPECT_TRUE(PtInLine(a, b, QPoint(2, -1), 3));
    EXPECT_TRUE(PtInLine(QRect(a, b), QPoint(2, 0), 2));  // 1.2 away
    EXPECT_FALSE(PtInLine(QRect(a, b), QPoint(0, 3), 2));  // 2.4 away
    // Beyond the columns or rows widened by the tolerance, whatever the distance.
    EXPECT_TRUE(PtInLine(QPoint(0, 0), QPoint(10, 10), QPoint(11, 11), 2));
    EXPECT_FALSE(PtInLine(QPoint(0, 0), QPoint(10, 10), QPoint(13, 13), 2));
    EXPECT_FALSE(PtInLine(QPoint(0, 0), QPoint(10, 1), QPoint(5, 4), 2));
}

TEST(PtInLine, StraightSegmentsIncludeTheToleranceInBothOrders) {
    for (bool reversed : {false, true}) {
        auto vertical = [&](QPoint p) { return reversed ? PtInLine({5, 10}, {5, 0}, p, 2) : PtInLine({5, 0}, {5, 10}, p, 2); };
        auto horizontal = [&](QPoint p) { return reversed ? PtInLine({10, 5}, {0, 5}, p, 2) : PtInLine({0, 5}, {10, 5}, p, 2); };
        EXPECT_TRUE(vertical({7, 12}) && vertical({3, -2}));
        EXPECT_FALSE(vertical({8, 5}) || vertical({5, 13}) || vertical({5, -3}));
        EXPECT_TRUE(horizontal({12, 7}) && horizontal({-2, 3}));
        EXPECT_FALSE(horizontal({13, 5}) || horizontal({5, 8}));
    }
    EXPECT_FALSE(PtInLine({2147483647, 0}, {2147483647, 9}, {-2147483647 - 1, 5}, 2));  // no overflow
}

TEST(PtInRect, ContainmentInTheNormalizedRectangle) {
    const QRect backwards(QPoint(10, 10), QPoint(0, 0));
    EXPECT_TRUE(gx::util::PtInRect(backwards, {5, 5}) && gx::util::PtInRect(backwards, {0, 10}));
    EXPECT_FALSE(gx::util::PtInRect(backwards, {11, 5}) || gx::util::PtInRect(backwards, {5, -1}));
}
