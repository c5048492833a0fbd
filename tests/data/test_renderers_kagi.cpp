// Kagi renderer: shoulders and strokes, the thick/thin switch at crossings, the line's state
// carried over from records left of the view, rounding and the two hit strips.
#include "data/KagiData.h"
#include "renderer_fixture.h"

namespace {

struct KagiTest : RendererTest {
    pf::KagiData kagi{&line, engine};

    // The pen of each line drawn: 't' thin, 'T' thick.
    std::string Pens() const {
        std::string s;
        for (const auto& p : device.primitives())
            s += SamePen(p.pen, kColour1, 1.0) ? 't' : SamePen(p.pen, kColour0, 2.0) ? 'T' : '?';
        return s;
    }
};

// Rising through 1.5, falling beside it without crossing, falling through 1.5, rising
// without crossing.
const std::vector<fxChartTypeRecord> kSwitching = {ChartRecord(1, 2, 0.5f, 1, 1.5f), ChartRecord(2, 3, 0.5f, 0, 5),
                                                   ChartRecord(1, 2.5f, 0.5f, 0, 1.5f), ChartRecord(1, 2, 0.5f, 1, 0)};

}  // namespace

TEST_F(KagiTest, CrossingsSwitchThicknessAndTheStateCarriesOn) {
    ChartRecordArray a(kSwitching);
    Paint(kagi, a.get());
    EXPECT_EQ(device.lines(), QVector<QLine>({QLine(1, 90, 11, 90), QLine(11, 90, 11, 85), QLine(11, 86, 11, 80),
                                              QLine(11, 70, 21, 70), QLine(21, 80, 21, 70),
                                              QLine(21, 75, 31, 75), QLine(31, 86, 31, 75), QLine(31, 90, 31, 85),
                                              QLine(31, 90, 41, 90), QLine(41, 90, 41, 80)}));
    EXPECT_EQ(Pens(), "ttTTTTTttt");
}

TEST_F(KagiTest, RecordsLeftOfTheViewSetTheStartingPen) {
    ChartRecordArray a(kSwitching);
    Frame(10, 1, 9.0f, 100, 0, 10);  // after the thick crossing
    Paint(kagi, a.get());
    EXPECT_EQ(Pens(), "TTTTttt");
    Frame(10, 3, 9.0f, 100, 0, 10);  // after the thin crossing
    Paint(kagi, a.get());
    EXPECT_EQ(Pens(), "tt");

    // The carry-over translates prices as they are, drawing rounds them first: with no
    // decimals SOLID 1.4 lies between 1 and 2 but rounds onto VALUE.
    ChartRecordArray unrounded({ChartRecord(1, 2, 0.5f, 1, 1.4f), ChartRecord(2, 3, 0.5f, 0, 9)}, 0);
    Frame(10, 0, 9.0f, 100, 0, 10);
    Paint(kagi, unrounded.get());
    EXPECT_EQ(Pens(), "tttt");
    Frame(10, 1, 9.0f, 100, 0, 10);
    Paint(kagi, unrounded.get());
    EXPECT_EQ(Pens(), "TT");
}

TEST_F(KagiTest, PricesAreRoundedHalfAwayFromZeroBeforeTranslation) {
    EXPECT_EQ(pf::roundFloat(1.006f, 2), 1.01f);
    EXPECT_EQ(pf::roundFloat(1.004f, 2), 1.0f);
    EXPECT_EQ(pf::roundFloat(-1.006f, 2), -1.01f);
    EXPECT_EQ(pf::roundFloat(-2.5f, 0), -3.0f);
    EXPECT_EQ(pf::roundFloat(1234.5f, -2), 1200.0f);

    Frame(10, 0, 9.0f, 1000, 0, 2);  // 500 rows per unit: a thousandth is half a row
    ChartRecordArray a({ChartRecord(1.006f, 1.004f, 0.5f, 1, 0)}, 2);
    Paint(kagi, a.get());
    const int y101 = engine->TranslateY(1.01f);
    const int y100 = engine->TranslateY(1.0f);
    ASSERT_NE(y101, engine->TranslateY(1.006f));
    ASSERT_NE(y100, engine->TranslateY(1.004f));
    EXPECT_EQ(device.lines(), QVector<QLine>({QLine(1, y101, 11, y101), QLine(11, y101, 11, y100)}));
}

TEST_F(KagiTest, ShoulderAndStrokeStripsAreHit) {
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
