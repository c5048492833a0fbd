// The Point and Figure, Renko and Kagi renderers through the recording paint device: exact
// boxes, bricks and strokes, pens, the column walk and its clamping, hit areas, the factory
// and the tooltip text. Kagi: the thick/thin switch at crossings, the state carried over
// from records left of the view, rounding and the two hit strips.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPainter>
#include <QRgb>
#include <QTranslator>
#include <algorithm>
#include <boost/shared_ptr.hpp>
#include <cstring>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <vector>

#include "RecordingPaintDevice.h"
#include "abi/records/dpa_records.h"
#include "data/KagiData.h"
#include "data/PFData.h"
#include "data/PointDataFactory.h"
#include "data/RenkoData.h"
#include "gx/Line.h"
#include "module/CModule.h"

namespace {

// Chart-type arrays of 24-byte records (TIME, STEP, VALUE, TYPE, END, SOLID). The data block
// holds exactly the records, so the address sanitizer reports any read past it.
constexpr QRgb kColour0 = 0xff112233u;
constexpr QRgb kColour1 = 0xff445566u;

fxChartTypeRecord ChartRecord(float value, float end, float step, int type, float solid = 0.0f, int time = 0) {
    return fxChartTypeRecord{time, step, value, type, end, solid};
}

struct ChartRecordArray {
    std::unique_ptr<unsigned char[]> block;
    fxDataPointArray header{};

    explicit ChartRecordArray(const std::vector<fxChartTypeRecord>& records, int precision = 4)
        : block(new unsigned char[records.size() * sizeof(fxChartTypeRecord) + (records.empty() ? 1 : 0)]) {
        if (!records.empty()) std::memcpy(block.get(), records.data(), records.size() * sizeof(fxChartTypeRecord));
        header.points = block.get();
        header.pointCount = static_cast<std::int32_t>(records.size());
        header.pointSize = sizeof(fxChartTypeRecord);
        header.precision = precision;
        header.typeShow.color0 = static_cast<std::int32_t>(kColour0);
        header.typeShow.color1 = static_cast<std::int32_t>(kColour1);
    }
    fxDataPointArray* get() { return &header; }
};

// A scale engine, the owning line, the three renderers and a recording device.
struct RendererTest : ::testing::Test {
    boost::shared_ptr<pf::ScaleEngine> engine{new pf::ScaleEngine};
    gx::Line line;
    RecordingPaintDevice device;
    pf::PFData pfData{&line, engine};
    pf::RenkoData renko{&line, engine};
    pf::KagiData kagi{&line, engine};

    // Unless a test says otherwise: 10 columns of 10 pixels from x 0, columns 0..9 drawable,
    // rows 0..99 with 10 rows per price unit (price 0 on row 100).
    void SetUp() override { Frame(10, 0, 9.0f, 100, 0.0f, 10.0f); }

    void Frame(int columns, int first, float last, int height, float minPrice, float maxPrice, int width = -1) {
        if (width < 0) width = columns > 0 ? columns * 10 : 100;
        engine->SetColumnCount(columns);
        engine->SetFirstColumn(first);
        engine->Update(QRect(QPoint(-2, 0), QPoint(width + 1, height - 1)), 0.0f, last, minPrice, maxPrice);
    }

    void Paint(pf::PointData& renderer, fxDataPointArray* array) {
        device.clear();
        QPainter painter(&device);
        renderer.Draw(painter, array);
    }

    // The pen of each Kagi line drawn: 't' thin, 'T' thick.
    std::string KagiPens() const {
        std::string s;
        for (const auto& p : device.primitives())
            s += SamePen(p.pen, kColour1, 1.0) ? 't' : SamePen(p.pen, kColour0, 2.0) ? 'T' : '?';
        return s;
    }

    static bool SamePen(const QPen& pen, QRgb colour, qreal width, Qt::PenStyle style = Qt::SolidLine) {
        return pen.color().rgb() == colour && pen.widthF() == width && pen.style() == style &&
               pen.capStyle() == Qt::SquareCap && pen.joinStyle() == Qt::BevelJoin &&
               pen.brush().style() == Qt::SolidPattern;
    }
};

using Prim = RecordingPaintDevice::Primitive;
using Lines = QVector<QLine>;

const unsigned short* W(const char16_t* name) { return reinterpret_cast<const unsigned short*>(name); }

}  // namespace

TEST_F(RendererTest, PFColumnsStackBoxesUpFromValue) {
    // X: 2.5 boxes of difference make 3 boxes; O: 1 box of difference makes 2; equal ends make 1.
    ChartRecordArray a({ChartRecord(2, 4, 1, 1), ChartRecord(2, 3, 1, 0), ChartRecord(2, 2, 1, 1)});
    Paint(pfData, a.get());
    // Crossed boxes between rows 80, 70, 60 and 50, from x to x + 1 + step.
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 11, 70), QLine(0, 70, 11, 80), QLine(0, 70, 11, 60),
                                     QLine(0, 60, 11, 70), QLine(0, 60, 11, 50), QLine(0, 50, 11, 60),
                                     QLine(20, 80, 31, 70), QLine(20, 70, 31, 80)}));
    EXPECT_TRUE(SamePen(device.primitives().front().pen, kColour0, 1.0));
    // Each O is inscribed between the corners (x, lower row) and (x + step, upper row - 1),
    // one pixel narrower than an X.
    const std::vector<Prim> ellipses = device.of(Prim::Ellipse);
    ASSERT_EQ(ellipses.size(), 2u);
    EXPECT_EQ(ellipses[0].rects.at(0), QRect(QPoint(10, 69), QPoint(20, 80)));
    EXPECT_EQ(ellipses[1].rects.at(0), QRect(QPoint(10, 59), QPoint(20, 70)));
    EXPECT_TRUE(SamePen(ellipses[0].pen, kColour1, 1.0));
    EXPECT_EQ(pfData.GetStepX(), 10.0f);
    EXPECT_EQ(pfData.GetXPos(), 30.0f);

    Frame(10, 0, 9.0f, 200, 1.19f, 1.21f);
    ChartRecordArray prices({ChartRecord(1.2f, 1.203f, 0.001f, 0)});
    Paint(pfData, prices.get());
    ASSERT_EQ(device.primitives().size(), 4u);  // 1.2000 up to 1.2040
    EXPECT_EQ(device.primitives()[3].rects.at(0).top(), engine->TranslateY(1.204f) - 1);
}

TEST_F(RendererTest, HostileBoxSizesCannotStallThePaint) {
    // A million boxes too small to move the float: each after the first would be the same one.
    ChartRecordArray absorbed({ChartRecord(1.0f, 1.001f, 1e-9f, 0)});
    Paint(pfData, absorbed.get());
    EXPECT_EQ(device.primitives().size(), 1u);

    // Four million boxes of a millionth (rows 0..99 hold prices 0 to 0.001 here): every row
    // of the area gets its boxes, each box that repeats the one before it is left out, and
    // nothing is drawn above the area, where the walk stops.
    Frame(10, 0, 9.0f, 100, 0.0f, 0.001f);
    ChartRecordArray tiny({ChartRecord(0.0f, 4.0f, 1e-6f, 1)});
    Paint(pfData, tiny.get());
    const QVector<QLine> lines = device.lines();
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_EQ(lines.front(), QLine(0, 100, 11, 100));
    int top = 100;
    for (const QLine& l : lines) top = std::min({top, l.y1(), l.y2()});
    EXPECT_GE(top, -4);  // a box whose pen could still reach row 0
    EXPECT_LE(top, 0);
    EXPECT_LT(lines.size() / 2, 400);  // two boxes a row: from a row to the next and on a row
}

TEST_F(RendererTest, PFFractionalColumnWidthsTruncateEachEdge) {
    Frame(8, 0, 7.0f, 100, 0.0f, 10.0f, 100);  // 12.5 pixels per column: x 0, 12.5, 25
    ChartRecordArray a({ChartRecord(2, 2, 1, 1), ChartRecord(2, 2, 1, 0), ChartRecord(2, 2, 1, 1)});
    Paint(pfData, a.get());
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 13, 70), QLine(0, 70, 13, 80), QLine(25, 80, 38, 70),
                                     QLine(25, 70, 38, 80)}));
    EXPECT_EQ(device.of(Prim::Ellipse).at(0).rects.at(0), QRect(QPoint(13, 69), QPoint(25, 80)));
}

TEST_F(RendererTest, RenkoDrawsOneHollowBrickPerRecordWhateverItsEnd) {
    ChartRecordArray a({ChartRecord(2, 7, 1, 1), ChartRecord(2, 2, 1, 0)});
    Paint(renko, a.get());
    ASSERT_EQ(device.of(Prim::Lines).size(), 8u);
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 0, 70), QLine(0, 80, 10, 80), QLine(0, 70, 10, 70),
                                     QLine(10, 80, 10, 70), QLine(10, 80, 10, 70), QLine(10, 80, 20, 80),
                                     QLine(10, 70, 20, 70), QLine(20, 80, 20, 70)}));
    EXPECT_TRUE(SamePen(device.primitives()[0].pen, kColour0, 1.0));
    EXPECT_TRUE(SamePen(device.primitives()[4].pen, kColour1, 1.0));

    // 12.5 pixels per column: the brick's right side is x + step + 0.5 truncated, without
    // the X box's extra pixel.
    Frame(8, 0, 7.0f, 100, 0.0f, 10.0f, 100);
    Paint(renko, a.get());
    EXPECT_EQ(device.lines().mid(4, 4), Lines({QLine(13, 80, 13, 70), QLine(13, 80, 25, 80),
                                               QLine(13, 70, 25, 70), QLine(25, 80, 25, 70)}));
}

TEST_F(RendererTest, SelectedLinesAlternateDashPatternsBetweenDraws) {
    ChartRecordArray a({ChartRecord(2, 4, 1, 1, 3)});
    for (const char16_t* name : {u"Point and Figure", u"Renko", u"Kagi"}) {
        auto renderer = pf::PointDataFactory::Instance().Create(W(name), engine, &line);
        line.Select(true);
        for (Qt::PenStyle style : {Qt::DotLine, Qt::DashDotLine, Qt::DotLine}) {
            Paint(*renderer, a.get());
            ASSERT_FALSE(device.primitives().empty());
            for (const Prim& p : device.primitives()) EXPECT_EQ(p.pen.style(), style);
        }
        line.Select(false);
        Paint(*renderer, a.get());
        EXPECT_EQ(device.primitives().at(0).pen.style(), Qt::SolidLine);
    }
}

TEST_F(RendererTest, ColumnWalkIsClampedToEngineAndArray) {
    ChartRecordArray a({ChartRecord(2, 2, 1, 1), ChartRecord(3, 3, 1, 1), ChartRecord(4, 4, 1, 1)});
    const auto columns = [&] {
        Paint(pfData, a.get());
        return int(device.primitives().size()) / 2;
    };
    // Visible columns, first visible index, last drawable index: columns drawn.
    const struct {
        int columns, first;
        float last;
        int drawn;
    } frames[] = {{10, 0, 9.0f, 3},   // 10 visible, 3 in the array
                  {10, 0, 1.9f, 2},   // last drawable index 1
                  {2, 2, 9.0f, 1},    // record 2 in the first column
                  {10, 3, 60.0f, 0}, {10, 50, 60.0f, 0}, {10, -1, 60.0f, 0},
                  {10, 2, 1.0f, 0},   // first past the last drawable
                  {0, 0, 9.0f, 0}};
    for (const auto& f : frames) {
        Frame(f.columns, f.first, f.last, 100, 0, 10);
        EXPECT_EQ(columns(), f.drawn) << f.columns << " from " << f.first << " to " << f.last;
    }
    Frame(2, 2, 9.0f, 100, 0, 10);
    columns();
    EXPECT_EQ(device.lines().at(0), QLine(0, 60, 11, 50));
    Frame(10, 0, 9.0f, 100, 0, 10);
    a.header.pointSize = 20;
    EXPECT_EQ(columns(), 0);
    a.header.pointSize = 24;
    a.header.points = nullptr;
    EXPECT_EQ(columns(), 0);
    Paint(pfData, nullptr);
    EXPECT_TRUE(device.primitives().empty());
}

TEST_F(RendererTest, PFAndRenkoHitRectangles) {
    ChartRecordArray a({ChartRecord(2, 4, 1, 1), ChartRecord(6, 7, 1, 0)}, 2);
    QString text;
    const auto pfHit = [&](int x, int y) { return pfData.IsUnderMouse(QPoint(x, y), a.get(), "L", text); };
    // Column 0: x 0..9, rows TranslateY(4 + 1) = 50 down to TranslateY(2) - 1 = 79.
    EXPECT_TRUE(pfHit(0, 79) && pfHit(9, 50));
    EXPECT_FALSE(pfHit(5, 80) || pfHit(5, 49));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_TRUE(pfHit(10, 20));  // column 1: x 10..19, rows 20..39
    EXPECT_TRUE(text.startsWith("L\nPF0017: 6.00\n")) << text.toStdString();
    Frame(10, 1, 9.0f, 100, 0, 10);  // the second visible column is past the array
    EXPECT_FALSE(pfHit(15, 30));
    Frame(10, -1, 9.0f, 100, 0, 10);
    EXPECT_FALSE(pfHit(15, 30));

    // Renko: END + STEP = 10 on row 100, VALUE 6.9 on row 131; only rows 115..129 hit.
    Frame(10, 0, 9.0f, 200, 0.0f, 20.0f);
    ChartRecordArray bricks({ChartRecord(6.9f, 9, 1, 1), ChartRecord(11, 10, 1, 0)});
    const auto renkoHit = [&](int x, int y) { return renko.IsUnderMouse(QPoint(x, y), bricks.get(), "R", text); };
    EXPECT_TRUE(renkoHit(0, 115) && renkoHit(9, 129));
    EXPECT_FALSE(renkoHit(5, 114) || renkoHit(5, 130) || renkoHit(10, 115));
    for (int y = 85; y <= 95; ++y) EXPECT_FALSE(renkoHit(15, y));  // VALUE = END + STEP: empty
}

TEST(PointDataFactory, MakesTheRendererOfEachExactName) {
    const boost::shared_ptr<pf::ScaleEngine> engine(new pf::ScaleEngine);
    pf::PointDataFactory& factory = pf::PointDataFactory::Instance();
    EXPECT_NE(dynamic_cast<pf::PFData*>(factory.Create(W(u"Point and Figure"), engine, nullptr).get()), nullptr);
    EXPECT_NE(dynamic_cast<pf::RenkoData*>(factory.Create(W(u"Renko"), engine, nullptr).get()), nullptr);
    EXPECT_NE(dynamic_cast<pf::KagiData*>(factory.Create(W(u"Kagi"), engine, nullptr).get()), nullptr);
    for (const char16_t* bad : {u"point and figure", u"Ren", u"Kagis", static_cast<const char16_t*>(nullptr)}) {
        try {
            factory.Create(W(bad), engine, nullptr);
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "Unexpected name of data point");
        }
    }
}

namespace {

// English texts of the two tooltip keys, in the module's translation context only.
class TooltipTranslator : public QTranslator {
public:
    QString translate(const char* context, const char* key, const char*, int) const override {
        if (qstrcmp(context, "CTranslatePFgraph") != 0) return QString();
        return qstrcmp(key, "PF0017") == 0 ? "First value" : qstrcmp(key, "PF0018") == 0 ? "Last value" : QString();
    }
    bool isEmpty() const override { return false; }
};

}  // namespace

TEST(PointDataTooltip, NameValuesAndLocalTimeThroughTheModuleTranslation) {
    const QByteArray zone = qgetenv("TZ");
    qputenv("TZ", "GST0");  // the module's own zone
    tzset();
    TooltipTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const fxChartTypeRecord r = ChartRecord(1.2f, 1.205f, 0.0005f, 1, 0, 1700000000);
    const QString expected = "EURUSD\nFirst value: 1.2000\nLast value: 1.2050\n14.11.2023 22:13:20";
    EXPECT_EQ(pf::PointData::ToolTipText("EURUSD", r, 4), expected);  // no module alive
    {
        CModule module("Test module", 1, 1, 9, "TestLog", "CTranslatePFgraph");
        EXPECT_EQ(pf::PointData::ToolTipText("EURUSD", r, 4), expected);
    }
    QCoreApplication::removeTranslator(&translator);
    EXPECT_EQ(pf::PointData::ToolTipText("X", r, 5), "X\nPF0017: 1.20000\nPF0018: 1.20500\n14.11.2023 22:13:20");
    EXPECT_TRUE(pf::PointData::ToolTipText("X", r, -3).startsWith("X\nPF0017: 1\nPF0018: 1\n"));
    if (zone.isNull()) qunsetenv("TZ"); else qputenv("TZ", zone);
    tzset();
}

// ---- Kagi ----

TEST_F(RendererTest, KagiCrossingsSwitchThicknessAndRecordsLeftOfTheViewSetTheStartingPen) {
    // Rising through 1.5, falling beside it without crossing, falling through 1.5, rising
    // without crossing.
    ChartRecordArray a({ChartRecord(1, 2, 0.5f, 1, 1.5f), ChartRecord(2, 3, 0.5f, 0, 5),
                        ChartRecord(1, 2.5f, 0.5f, 0, 1.5f), ChartRecord(1, 2, 0.5f, 1, 0)});
    Paint(kagi, a.get());
    EXPECT_EQ(device.lines(), Lines({QLine(1, 90, 11, 90), QLine(11, 90, 11, 85), QLine(11, 86, 11, 80),
                                     QLine(11, 70, 21, 70), QLine(21, 80, 21, 70), QLine(21, 75, 31, 75),
                                     QLine(31, 86, 31, 75), QLine(31, 90, 31, 85), QLine(31, 90, 41, 90),
                                     QLine(41, 90, 41, 80)}));
    EXPECT_EQ(KagiPens(), "ttTTTTTttt");
    Frame(10, 1, 9.0f, 100, 0, 10);  // after the thick crossing
    Paint(kagi, a.get());
    EXPECT_EQ(KagiPens(), "TTTTttt");
    Frame(10, 3, 9.0f, 100, 0, 10);  // after the thin crossing
    Paint(kagi, a.get());
    EXPECT_EQ(KagiPens(), "tt");

    // The carry-over translates prices as they are, drawing rounds them first: with no
    // decimals SOLID 1.4 lies between 1 and 2 but rounds onto VALUE.
    ChartRecordArray unrounded({ChartRecord(1, 2, 0.5f, 1, 1.4f), ChartRecord(2, 3, 0.5f, 0, 9)}, 0);
    Frame(10, 0, 9.0f, 100, 0, 10);
    Paint(kagi, unrounded.get());
    EXPECT_EQ(KagiPens(), "tttt");
    Frame(10, 1, 9.0f, 100, 0, 10);
    Paint(kagi, unrounded.get());
    EXPECT_EQ(KagiPens(), "TT");
}

TEST_F(RendererTest, KagiPricesAreRoundedHalfAwayFromZeroBeforeTranslation) {
    EXPECT_EQ(std::vector<float>({pf::roundFloat(1.006f, 2), pf::roundFloat(1.004f, 2), pf::roundFloat(-1.006f, 2),
                                  pf::roundFloat(-2.5f, 0), pf::roundFloat(1234.5f, -2)}),
              std::vector<float>({1.01f, 1.0f, -1.01f, -3.0f, 1200.0f}));

    Frame(10, 0, 9.0f, 1000, 0, 2);  // 500 rows per unit: a thousandth is half a row
    ChartRecordArray a({ChartRecord(1.006f, 1.004f, 0.5f, 1, 0)}, 2);
    Paint(kagi, a.get());
    const int y101 = engine->TranslateY(1.01f);
    const int y100 = engine->TranslateY(1.0f);
    ASSERT_NE(y101, engine->TranslateY(1.006f));
    ASSERT_NE(y100, engine->TranslateY(1.004f));
    EXPECT_EQ(device.lines(), Lines({QLine(1, y101, 11, y101), QLine(11, y101, 11, y100)}));
}

TEST_F(RendererTest, KagiShoulderAndStrokeStripsAreHit) {
    // Column 0: END + STEP on row 75, VALUE on row 90; column 1: rows 35 and 50.
    ChartRecordArray a({ChartRecord(1, 2, 0.5f, 1, 0), ChartRecord(5, 6, 0.5f, 0, 0)}, 1);
    QString text;
    const auto hit = [&](int x, int y) { return kagi.IsUnderMouse(QPoint(x, y), a.get(), "K", text); };
    // Even column: shoulder rows 74..76 over x 0..9; stroke x 9..11 over rows 75..89.
    EXPECT_TRUE(hit(0, 74) && hit(5, 76) && hit(9, 80) && hit(11, 89));
    EXPECT_FALSE(hit(5, 73) || hit(5, 77) || hit(11, 90) || hit(8, 80) || hit(12, 80));
    // Odd column: the shoulder is on the VALUE row, 49..51 over x 10..19.
    EXPECT_TRUE(hit(15, 51));
    EXPECT_TRUE(text.startsWith("K\nPF0017: 5.0\n")) << text.toStdString();
    EXPECT_FALSE(hit(15, 36) || hit(15, 75));
    EXPECT_TRUE(hit(20, 40));
}
