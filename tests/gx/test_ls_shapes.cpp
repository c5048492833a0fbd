// The shapes of line studies on their own: hit tolerances, the vertical line's unplaced and
// off-screen cases, an extended vertical straight line, a segment on the area's bottom row,
// a text drawn as one line on its baseline, the title's vertical placement, an arc of 0
// percent, and the factory's type table.
#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

#include "RecordingPaintDevice.h"
#include "data/ScaleEngine.h"
#include "gx/ls/LsArch.h"
#include "gx/ls/LsFactory.h"
#include "gx/ls/LsHLine.h"
#include "gx/ls/LsUtil.h"
#include "gx/ls/StraightLine.h"

namespace {

// One shape with its data block, 40 columns over (0, 0)-(401, 300), prices 1 to 2.
struct Shape {
    QRect area{QPoint(0, 0), QPoint(401, 300)};
    boost::shared_ptr<pf::ScaleEngine> engine;
    lsShape shape;
    std::vector<char> block;
    std::vector<lsPointShape> in, out;
    lsControlPointsShapes cps;

    Shape(int type, std::size_t size) : block(size, 0) {
        engine.reset(new pf::ScaleEngine);
        engine->SetColumnCount(40);
        engine->Update(area, 0, 40, 1.0f, 2.0f);
        std::memset(&shape, 0, sizeof shape);
        shape.type = type;
        shape.visible = 1;
        shape.penWidth = 1;
        void* data = block.data();
        std::memcpy(reinterpret_cast<char*>(&shape) + offsetof(lsShape, data), &data, sizeof data);
        std::memset(&cps, 0, sizeof cps);
        cps.shapeCount = 1;
        cps.shapes = &shape;
    }
    template <class T>
    T& Data() { return *reinterpret_cast<T*>(block.data()); }
    void Points(const std::vector<std::pair<int, float> >& points) {
        for (const auto& p : points) {
            lsPointShape s{};
            s.m_typePoint = 1;
            s.m_xTime = 1;
            s.index = p.first;
            s.value = p.second;
            in.push_back(s);
        }
        out = in;
        cps.inCount = cps.outCount = std::int32_t(in.size());
        cps.in = in.data();
        cps.out = out.data();
    }
    boost::shared_ptr<gx::LsBase> Make() const {
        return gx::LsFactory::Instance().Create(shape.type, engine, area, cps, 0, nullptr);
    }
    int X(int index) const { return gx::util::LsBase::CalcX(engine, index); }
    int Y(float price) const { return engine->TranslateY(price); }
    QVector<QLine> Drawn() const {
        RecordingPaintDevice device;
        QPainter painter(&device);
        Make()->Draw(painter);
        painter.end();
        return device.lines();
    }
};

TEST(LsShapes, HorizontalLineIsHitFourPixelsAwayButNotFive) {
    Shape s(LS_SHAPE_HLINE, sizeof(lsShapeHLine));
    s.Data<lsShapeHLine>().price = 1.5f;
    const int y = s.Y(1.5f);
    for (int d : {-4, 0, 4}) EXPECT_TRUE(s.Make()->PtInLS(QPoint(200, y + d))) << d;
    for (int d : {-5, 5}) EXPECT_FALSE(s.Make()->PtInLS(QPoint(200, y + d))) << d;
    ASSERT_EQ(s.Drawn().size(), 1);
    EXPECT_EQ(s.Drawn()[0], QLine(s.engine->GetLeft(), y, s.engine->GetRight() + 1, y));
    s.shape.visible = 0;  // hidden: neither drawn nor hit
    EXPECT_TRUE(s.Drawn().isEmpty());
    EXPECT_FALSE(s.Make()->PtInLS(QPoint(200, y)));
}

TEST(LsShapes, VerticalLineUnplacedOrLeftOfTheAreaIsNotDrawn) {
    Shape s(LS_SHAPE_VLINE, sizeof(lsShapeVLine));
    s.Data<lsShapeVLine>().index = 10;
    const int x = s.X(10);
    ASSERT_EQ(s.Drawn().size(), 1);
    // It ends at bottom - top of the engine's rectangle.
    EXPECT_EQ(s.Drawn()[0], QLine(x, s.engine->GetTop(), x, s.engine->GetBottom() - s.engine->GetTop()));
    EXPECT_TRUE(s.Make()->PtInLS(QPoint(x + 4, 100)));
    EXPECT_FALSE(s.Make()->PtInLS(QPoint(x + 5, 100)));
    s.Data<lsShapeVLine>().placed = -1;
    EXPECT_TRUE(s.Drawn().isEmpty());
    EXPECT_FALSE(s.Make()->PtInLS(QPoint(x, 100)));
    s.Data<lsShapeVLine>().placed = 0;
    s.Data<lsShapeVLine>().index = -3;  // left of the engine's left edge
    EXPECT_TRUE(s.Drawn().isEmpty());
}

TEST(LsShapes, VerticalStraightLineExtendedRightIsHitFromTheTopToItsSecondPoint) {
    Shape s(LS_SHAPE_LINE, sizeof(lsShapeLine));
    lsShapeLine& line = s.Data<lsShapeLine>();
    line.points[0] = lsPointShape{1, 1, 20, 1.2f, 0};
    line.points[1] = lsPointShape{1, 1, 20, 1.5f, 0};
    const int x = s.X(20);
    const QPoint aboveBoth(x, (s.area.top() + s.Y(1.5f)) / 2);
    EXPECT_FALSE(s.Make()->PtInLS(aboveBoth));
    EXPECT_TRUE(s.Make()->PtInLS(QPoint(x, s.Y(1.3f))));
    line.extendRight = 1;
    EXPECT_TRUE(s.Make()->PtInLS(aboveBoth));
    EXPECT_TRUE(s.Make()->PtInLS(QPoint(x, s.area.top())));
    EXPECT_FALSE(s.Make()->PtInLS(QPoint(x, s.Y(1.1f))));  // below the first point: not extended
    // Drawn, its slope counts as 0: the extension runs level from the second point to the
    // area's right edge (and, extended left, from the first point to the left edge).
    const QPoint first(x, s.Y(1.2f)), second(x, s.Y(1.5f));
    EXPECT_EQ(s.Drawn(), QVector<QLine>({QLine(first, second), QLine(second, QPoint(s.area.right(), second.y()))}));
    line.extendRight = 0;
    line.extendLeft = 1;  // hit from the upper point down to the bottom
    EXPECT_TRUE(s.Make()->PtInLS(QPoint(x, s.Y(1.1f))));
    EXPECT_FALSE(s.Make()->PtInLS(aboveBoth));
    EXPECT_EQ(s.Drawn(), QVector<QLine>({QLine(first, second), QLine(QPoint(s.area.left(), first.y()), first)}));
    line.extendLeft = 0;
    line.extendRight = 1;
    // A slanted one extended right reaches the area's edge.
    line.points[1] = lsPointShape{1, 1, 30, 1.2f, 0};
    EXPECT_TRUE(s.Make()->PtInLS(QPoint(s.area.right() - 1, s.Y(1.2f))));
    line.points[1].m_xTime = -1;  // an unplaced point: nothing
    EXPECT_FALSE(s.Make()->PtInLS(QPoint(x, s.Y(1.2f))));
}

TEST(LsShapes, StraightLineWhollyBesideTheAreaIsNotDrawnEvenWhenExtended) {
    Shape s(LS_SHAPE_LINE, sizeof(lsShapeLine));
    lsShapeLine& line = s.Data<lsShapeLine>();
    line.extendLeft = line.extendRight = 1;
    for (int first : {-12, 45}) {  // both points left of the area, then both right of it
        line.points[0] = lsPointShape{1, 1, first, 1.2f, 0};
        line.points[1] = lsPointShape{1, 1, first + 3, 1.6f, 0};
        EXPECT_TRUE(s.Drawn().isEmpty()) << first;
    }
    line.points[0].index = 10;  // one point inside: drawn, extended to both edges
    ASSERT_EQ(s.Drawn().size(), 1);
    EXPECT_LE(s.Drawn()[0].x1(), s.area.left() + 1);
}

TEST(LsShapes, SegmentOnTheAreasBottomRowIsDrawn) {
    Shape s(LS_SHAPE_LINE, sizeof(lsShapeLine));
    float price = 1.0f;
    while (s.Y(price) < s.area.bottom() && price > 0.5f) price -= 0.0005f;
    while (s.Y(price) > s.area.bottom()) price += 0.0001f;
    ASSERT_EQ(s.Y(price), s.area.bottom());
    lsShapeLine& line = s.Data<lsShapeLine>();
    line.points[0] = lsPointShape{1, 1, 5, price, 0};
    line.points[1] = lsPointShape{1, 1, 15, price, 0};
    ASSERT_EQ(s.Drawn().size(), 1);
    EXPECT_EQ(s.Drawn()[0], QLine(s.X(5), s.area.bottom(), s.X(15), s.area.bottom()));
    line.points[0].value = line.points[1].value = price - 0.01f;  // below the area
    EXPECT_TRUE(s.Drawn().isEmpty());
}

// A text too long for the area's width is still one line, its baseline at the anchor's y
// plus the height measured with word wrap (so below the anchor by more than one line).
TEST(LsShapes, TextIsOneLineOnItsBaseline) {
    Shape s(LS_SHAPE_TEXT, sizeof(lsShapeText));
    lsShapeText& text = s.Data<lsShapeText>();
    text.anchor = lsPointShape{1, 1, 2, 1.5f, 0};
    const QString words = QStringLiteral("support holds while the price stays above this level ").repeated(4);
    for (int i = 0; i < words.size(); ++i) text.text[i] = words.utf16()[i];
    std::strcpy(text.family, "DejaVu Sans");
    text.pointSize = 9;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(9);
    const QFontMetrics metrics(font);
    const QRect measured = metrics.boundingRect(QRect(0, 0, s.area.width(), s.area.height()),
                                                Qt::TextWordWrap | Qt::AlignTop | Qt::AlignLeft, words);
    ASSERT_GT(measured.height(), 2 * metrics.height());  // wrapped when measured
    QImage image(s.area.size() + QSize(1, 1), QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    s.Make()->Draw(painter);
    painter.end();
    int top = image.height(), bottom = -1;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != qRgb(255, 255, 255)) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    const int baseline = s.Y(1.5f) + measured.height();
    ASSERT_GE(bottom, 0);
    EXPECT_GE(top, baseline - metrics.ascent() - 1);
    EXPECT_LE(bottom, baseline + metrics.descent() + 1);
}

TEST(LsShapes, TitleWithOnlyTheVerticalCentreBitSitsOnTheLineAbove) {
    // A horizontal line's title at the left edge; the text's lowest pixel decides.
    auto lowestInk = [](int alignment) {
        Shape s(LS_SHAPE_HLINE, sizeof(lsShapeHLine));
        s.Data<lsShapeHLine>().price = 1.5f;
        s.shape.titlePosition = 2;
        s.shape.titleAlignment = alignment;
        s.shape.penStyle = 0;
        std::strcpy(s.shape.title, "Level");
        QImage image(402, 301, QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setPen(Qt::black);
        s.Make()->Draw(painter);
        painter.end();
        // The lowest row with ink, the line's own row left out.
        const int line = s.Y(1.5f);
        int lowest = -1;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (y != line && image.pixel(x, y) != QColor(Qt::white).rgb()) lowest = y;
        return std::make_pair(lowest, line);
    };
    const auto centre = lowestInk(0x80);
    ASSERT_GE(centre.first, 0);
    EXPECT_LT(centre.first, centre.second - 1);  // clipped above the baseline at y - 1
    const auto bottom = lowestInk(0x20);
    EXPECT_GT(bottom.first, bottom.second);  // 0x20 puts the text below the line
}

TEST(LsShapes, ArcOfZeroPercentHasNoSideAndIsHitNowhere) {
    Shape s(LS_SHAPE_ARC, sizeof(lsShapeArc));
    s.Points({{10, 1.2f}, {20, 1.5f}});
    const gx::LsArch arc(s.engine, s.area, s.cps, 0, nullptr);
    s.Data<lsShapeArc>().percent = 0.0f;
    EXPECT_EQ(arc.CalcArcRect().width(), 0);
    for (int x = 0; x <= 400; x += 4)
        for (int y = 0; y <= 300; y += 4) ASSERT_FALSE(arc.PtInLS(QPoint(x, y))) << x << "," << y;
    // At 100 percent the upper half passes through control point 0's height above the centre.
    s.Data<lsShapeArc>().percent = 100.0f;
    const QRect box = arc.CalcArcRect();
    EXPECT_TRUE(arc.PtInLS(QPoint(box.center().x(), box.top())));
    EXPECT_FALSE(arc.PtInLS(QPoint(box.center().x(), box.bottom())));  // the lower half is not drawn
    s.Data<lsShapeArc>().lowerHalf = 1;
    EXPECT_TRUE(arc.PtInLS(QPoint(box.center().x(), box.bottom())));
    // Points that give no distance: no geometry, caught by the shape.
    s.out[1].value = std::numeric_limits<float>::infinity();
    EXPECT_THROW(arc.CalcArcRect(), StraightLine<float>::Error);
    EXPECT_FALSE(arc.PtInLS(QPoint(box.center().x(), box.bottom())));
    QImage image(402, 301, QImage::Format_ARGB32);
    QPainter painter(&image);
    gx::LsArch(s.engine, s.area, s.cps, 0, nullptr).Draw(painter);
}

TEST(LsShapes, FactoryKnowsTypesZeroAndTwoToFiveOnly) {
    Shape s(LS_SHAPE_LINE, sizeof(lsShapeText));
    for (int type : {0, 2, 3, 4, 5}) EXPECT_TRUE(gx::LsFactory::Instance().Create(type, s.engine, s.area, s.cps, 0, nullptr));
    for (int type : {1, 6, -1, 1000}) {
        try {
            gx::LsFactory::Instance().Create(type, s.engine, s.area, s.cps, 0, nullptr);
            ADD_FAILURE() << type;
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "Unexpected type of line study");
        }
    }
    // A shape index outside the record reads nothing.
    EXPECT_FALSE(gx::LsFactory::Instance().Create(3, s.engine, s.area, s.cps, 5, nullptr)->PtInLS(QPoint(1, 1)));
}

TEST(LsShapes, SegmentHitIsStrictlyWithinFivePixelsInEveryDirection) {
    using gx::util::LsBase::PtInShapeLine;
    // (0, 0) to (40, 30): a point about 5 pixels off the line along its normal is off it.
    EXPECT_FALSE(PtInShapeLine({0, 0}, {40, 30}, {23, 11}));
    EXPECT_TRUE(PtInShapeLine({0, 0}, {40, 30}, {23, 12}));
    EXPECT_FALSE(PtInShapeLine({0, 0}, {40, 30}, {46, 30}));  // beyond the end
    // Straight segments: 4 pixels off (or past an end) hit, 5 do not.
    for (int d : {-4, 4}) {
        EXPECT_TRUE(PtInShapeLine({0, 50}, {100, 50}, {50, 50 + d})) << d;
        EXPECT_TRUE(PtInShapeLine({50, 0}, {50, 100}, {50 + d, 50})) << d;
        EXPECT_TRUE(PtInShapeLine({50, 0}, {50, 100}, {50, d < 0 ? d : 100 + d})) << d;
    }
    for (int d : {-5, 5}) {
        EXPECT_FALSE(PtInShapeLine({0, 50}, {100, 50}, {50, 50 + d})) << d;
        EXPECT_FALSE(PtInShapeLine({50, 0}, {50, 100}, {50 + d, 50})) << d;
        EXPECT_FALSE(PtInShapeLine({100, 50}, {0, 50}, {d < 0 ? d : 100 + d, 50})) << d;
    }
}

}  // namespace
