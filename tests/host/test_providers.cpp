// The three chart-type providers: short price sequences worked out by hand, and invariants
// over the whole USD/CHF series.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/data/ChartTypeProvider.h"
#include "host/data/PriceGrid.h"

using host::data::ChartType;
using host::data::Figure;
using host::data::PriceGrid;
using host::data::ProviderSettings;

namespace {

// Feeds prices (already in ticks) at times 1, 2, 3 ... and returns the figures.
std::vector<Figure> Feed(ChartType type, std::int64_t box, int reversal, const std::vector<std::int64_t>& prices,
                        std::int64_t percentHundredths = 0) {
    ProviderSettings s;
    s.box = box;
    s.reversal = reversal;
    s.percentHundredths = percentHundredths;
    auto provider = host::data::makeProvider(type, s);
    for (std::size_t i = 0; i < prices.size(); ++i) provider->add(std::int32_t(i + 1), prices[i]);
    return provider->figures();
}

struct Expected {
    std::int32_t time;
    std::int64_t low;
    std::int64_t high;
    bool rising;
};

void ExpectFigures(const std::vector<Figure>& actual, const std::vector<Expected>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE("figure " + std::to_string(i));
        EXPECT_EQ(actual[i].time, expected[i].time);
        EXPECT_EQ(actual[i].low, expected[i].low);
        EXPECT_EQ(actual[i].high, expected[i].high);
        EXPECT_EQ(actual[i].rising, expected[i].rising);
    }
}

}  // namespace

TEST(PriceGridTest, ExactTicksAndDivisionTowardsEitherInfinity) {
    const PriceGrid grid(4);
    EXPECT_EQ(grid.ticks(1.1930), 11930);
    EXPECT_EQ(grid.ticks(0.0005), 5);
    EXPECT_EQ(grid.ticks(1.2345 - 0.0001), 12344);  // noise in the double does not leak
    EXPECT_EQ(PriceGrid::floorDiv(7, 5), 1);
    EXPECT_EQ(PriceGrid::floorDiv(-7, 5), -2);
    EXPECT_EQ(PriceGrid::ceilDiv(7, 5), 2);
    EXPECT_EQ(PriceGrid::ceilDiv(-7, 5), -1);
    EXPECT_EQ(PriceGrid::ceilDiv(10, 5), 2);
    EXPECT_EQ(PriceGrid::decimalsOf(0.0025), 4);
    EXPECT_EQ(PriceGrid::decimalsOf(2.0), 0);
}

TEST(PriceGridTest, DefaultBoxIsAOneTwoFiveStepOfARangeHundredth) {
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(1.1851, 1.8291, 4), 0.005);  // 0.00644 -> 0.005
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(3.08, 52.62, 2), 0.2);      // 0.4954 -> 0.2
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(1.0, 1.001, 4), 0.0001);    // never below one unit
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(5, 5, 2), 0.01);            // flat series
}

// Box 1, reversal 3, prices 10 11 13 12 10 9 11 12 14:
//   10  reference: a column of no height at box 10
//   11  up to box 11 is less than 3 boxes above 10, nothing
//   13  box 13 = 10 + 3: rising column, one box above the reference: boxes 11..13 (time 3)
//   12  no new box, and 12 is not 3 below 13
//   10  box 10 = 13 - 3: falling column one box below the top: 12..10 (time 5)
//    9  extends the falling column to 9
//   11  11 < 9 + 3, nothing
//   12  box 12 = 9 + 3: rising column one box above the bottom: 10..12 (time 8)
//   14  extends it to 14
TEST(PointFigureProvider, ColumnsReversalsAndExtensions) {
    ExpectFigures(Feed(ChartType::PointAndFigure, 1, 3, {10, 11, 13, 12, 10, 9, 11, 12, 14}),
                  {{3, 11, 13, true}, {5, 9, 12, false}, {8, 10, 14, true}});
}

// Box 5 ticks (0.5 with one decimal), reversal 3, prices 10.2 12.1 10.4 10.6 9.4:
//   10.2  reference between the boxes 10.0 and 10.5
//   12.1  a rise reaches box 12.0 (floor): 12.0 >= 10.5 + 3 boxes, column 11.0..12.0
//   10.4  a fall reaches box 10.5 (ceil): 10.5 <= 12.0 - 3 boxes, column 11.5 down to 10.5
//   10.6  nothing; 9.4 reaches box 9.5: the falling column now spans 9.5..11.5
TEST(PointFigureProvider, OffGridPricesFillOnlyTheBoxesTheyReach) {
    ExpectFigures(Feed(ChartType::PointAndFigure, 5, 3, {102, 121, 104, 106, 94}),
                  {{2, 110, 120, true}, {3, 95, 115, false}});
}

TEST(PointFigureProvider, FirstColumnCanFallAndOneBoxReversalAlternates) {
    // Reversal 1: every box against the column turns it. 10 -> 8 falls to 9..8 (one below the
    // reference), 9 rises one box above the bottom (9), 8 falls one below the top (8).
    ExpectFigures(Feed(ChartType::PointAndFigure, 1, 1, {10, 8, 9, 8}),
                  {{2, 8, 9, false}, {3, 9, 9, true}, {4, 8, 8, false}});
    EXPECT_TRUE(Feed(ChartType::PointAndFigure, 1, 3, {10, 12, 9, 11}).empty());
}

// Box 2, prices 10 11 12 15 13 12 11 9 14 21:
//   10  reference on the level 10
//   11  below the next level up (12) and above the next level down (8): nothing
//   12  brick 10..12 rising (time 3)
//   15  reaches 14: brick 12..14 rising (time 4)
//   13, 12, 11  one box or less under the top 14: a reversal needs two boxes, nothing
//    9  under 10 (two boxes below 14): brick 10..12 falling (time 8)
//   14  reaches 14, two boxes above the bottom 10: brick 12..14 rising (time 9)
//   21  three bricks at once, all with time 10: 14..16, 16..18, 18..20
TEST(RenkoProvider, BricksReversalNeedsTwoBoxesJumpsLayManyBricks) {
    ExpectFigures(Feed(ChartType::Renko, 2, 3, {10, 11, 12, 15, 13, 12, 11, 9, 14, 21}),
                  {{3, 10, 12, true},
                   {4, 12, 14, true},
                   {8, 10, 12, false},
                   {9, 12, 14, true},
                   {10, 14, 16, true},
                   {10, 16, 18, true},
                   {10, 18, 20, true}});
}

TEST(RenkoProvider, FallingStartFromAnOffGridReference) {
    // Box 2, reference 11: the first falling brick starts at the level at or below it (10),
    // so 8 lays 8..10; 7 does not reach 6; 5 lays 6..8.
    ExpectFigures(Feed(ChartType::Renko, 2, 3, {11, 8, 7, 5}), {{2, 8, 10, false}, {4, 6, 8, false}});
}

// Box 1, reversal 2 boxes, prices 10 11 13 12 11 12 14 13 10 11 13 15:
//   13  3 above the reference 10: rising stroke 10..13 (time 3), no shoulder before: SOLID 9
//   11  2 under the top: falling stroke 11..13 (time 5), no waist before: SOLID 14
//   14  3 over the bottom: rising 11..14 (time 7), shoulder 13 broken: thick at 13
//   10  4 under 14: falling 10..14 (time 9), waist 11 broken: thin at 11
//   13  rising 10..13 (time 11), shoulder 14 not reached; 15 extends it past 14
TEST(KagiProvider, StrokesShouldersAndWaists) {
    const auto figures = Feed(ChartType::Kagi, 1, 2, {10, 11, 13, 12, 11, 12, 14, 13, 10, 11, 13});
    ExpectFigures(figures, {{3, 10, 13, true}, {5, 11, 13, false}, {7, 11, 14, true}, {9, 10, 14, false},
                            {11, 10, 13, true}});
    const std::int64_t solids[] = {9, 14, 13, 11, 14};
    for (std::size_t i = 0; i < figures.size(); ++i) EXPECT_EQ(figures[i].solid, solids[i]) << i;
    const auto extended = Feed(ChartType::Kagi, 1, 2, {10, 11, 13, 12, 11, 12, 14, 13, 10, 11, 13, 15});
    EXPECT_EQ(extended.back().high, 15);
    EXPECT_EQ(extended.back().solid, 14);
}

TEST(KagiProvider, PercentReversalIsMeasuredFromTheExtreme) {
    // 5 %: 104 is 4 % above 100, 105 is 5 %: rising from 100; 110 extends it; 105 is 4.5 %
    // under 110, 104 is 5.45 %: falling 104..110.
    ExpectFigures(Feed(ChartType::Kagi, 1, 3, {100, 104, 105, 110, 105, 104}, 500),
                  {{3, 100, 110, true}, {6, 104, 110, false}});
}

// ---- whole series ----

namespace {

class UsdChf : public ::testing::Test {
protected:
    void SetUp() override {
        core.reset(new host::DataCore(hostObject));
        ASSERT_NE(core->instrument("USDCHF"), nullptr);
    }
    const host::data::ChartObject& Chart(ChartType type, double box = 0, int reversal = 0) {
        host::data::ChartSettings s;
        s.box = box;
        s.reversal = reversal;
        void* handle = core->createChart("USDCHF", type, s);
        EXPECT_NE(handle, nullptr);
        return *core->chart(handle);
    }
    host::Host hostObject;
    std::unique_ptr<host::DataCore> core;
};

}  // namespace

TEST_F(UsdChf, PointAndFigureColumnsStayOnTheGridAndReverseByTheRule) {
    for (int reversal : {1, 3, 5}) {
        const auto& chart = Chart(ChartType::PointAndFigure, 0.0020, reversal);
        const std::int64_t box = chart.provider().settings().box;
        const auto& f = chart.provider().figures();
        ASSERT_GT(f.size(), 100u);
        for (std::size_t i = 0; i < f.size(); ++i) {
            SCOPED_TRACE("reversal " + std::to_string(reversal) + " column " + std::to_string(i));
            ASSERT_EQ(f[i].low % box, 0);
            ASSERT_EQ(f[i].high % box, 0);
            ASSERT_GE((f[i].high - f[i].low) / box + 1, reversal);
            if (i == 0) continue;
            ASSERT_NE(f[i].rising, f[i - 1].rising);
            ASSERT_GE(f[i].time, f[i - 1].time);
            if (f[i].rising)
                ASSERT_EQ(f[i].low, f[i - 1].low + box);
            else
                ASSERT_EQ(f[i].high, f[i - 1].high - box);
        }
    }
}

TEST_F(UsdChf, RenkoBricksFollowOneAnotherOnTheGrid) {
    const auto& chart = Chart(ChartType::Renko, 0.0025);
    const std::int64_t box = chart.provider().settings().box;
    const auto& f = chart.provider().figures();
    ASSERT_GT(f.size(), 100u);
    for (std::size_t i = 0; i < f.size(); ++i) {
        ASSERT_EQ(f[i].low % box, 0);
        ASSERT_EQ(f[i].high, f[i].low + box);
        if (i == 0) continue;
        // Up: on top of the last brick; down: under it, continuing or reversing alike.
        if (f[i].rising)
            ASSERT_EQ(f[i].low, f[i - 1].high) << i;
        else
            ASSERT_EQ(f[i].high, f[i - 1].low) << i;
    }
}

TEST_F(UsdChf, KagiThicknessChangesOnlyWhereAStrokeBreaksOut) {
    const auto& chart = Chart(ChartType::Kagi, 0.0025, 2);
    const std::int64_t amount = 2 * chart.provider().settings().box;
    const auto& f = chart.provider().figures();
    const auto& r = chart.records();
    ASSERT_GT(f.size(), 100u);
    bool drawnThick = false;    // as the renderer follows SOLID
    bool classicThick = false;  // from shoulders and waists directly
    int changes = 0;
    for (std::size_t i = 0; i < f.size(); ++i) {
        SCOPED_TRACE("stroke " + std::to_string(i));
        ASSERT_LT(f[i].low, f[i].high);
        if (i + 1 < f.size()) {
            ASSERT_GE(f[i].high - f[i].low, amount);
        }
        if (i > 0) {
            ASSERT_NE(f[i].rising, f[i - 1].rising);
            // Each stroke starts at the extreme where the one before ended.
            ASSERT_EQ(f[i].rising ? f[i].low : f[i].high, f[i - 1].rising ? f[i - 1].high : f[i - 1].low);
        }
        if (i >= 2 && f[i].rising && f[i].high > f[i - 2].high) classicThick = true;
        if (i >= 2 && !f[i].rising && f[i].low < f[i - 2].low) classicThick = false;
        const bool crosses = r[i].value < r[i].solid && r[i].solid < r[i].end;
        if (crosses) {
            ASSERT_EQ(f[i].solid, f[i].rising ? f[i - 2].high : f[i - 2].low);
            changes += drawnThick != (r[i].type == 1);
            drawnThick = r[i].type == 1;
        }
        ASSERT_EQ(drawnThick, classicThick);
    }
    EXPECT_GT(changes, 10);
}

TEST_F(UsdChf, RecordsCarryTheFiguresAsFloats) {
    const auto& chart = Chart(ChartType::PointAndFigure);
    const auto& f = chart.provider().figures();
    const auto& r = chart.records();
    ASSERT_EQ(f.size(), r.size());
    for (std::size_t i = 0; i < r.size(); ++i) {
        EXPECT_EQ(r[i].time, f[i].time);
        EXPECT_FLOAT_EQ(r[i].step, 0.005f);
        EXPECT_FLOAT_EQ(r[i].value, float(f[i].low / 10000.0));
        EXPECT_FLOAT_EQ(r[i].end, float(f[i].high / 10000.0));
        EXPECT_EQ(r[i].type, f[i].rising ? 1 : 0);
        EXPECT_EQ(r[i].solid, 0.0f);
    }
}

TEST(ProviderReplay, QuoteByQuoteGivesExactlyTheBatchRecords) {
    host::Host h;
    host::DataCore core(h);
    host::InstrumentOptions live;
    live.name = "REPLAY";
    live.live = 10;
    ASSERT_NE(core.loadInstrument(host::DataCore::builtInPath("USDCHF"), live), nullptr);
    const host::data::ChartSettings box{0.0025, 3, 0};
    host::data::ChartSettings percent;
    percent.box = 0.0025;
    percent.percent = 0.5;
    struct Case {
        ChartType type;
        host::data::ChartSettings settings;
    } cases[] = {{ChartType::PointAndFigure, box}, {ChartType::Renko, box}, {ChartType::Kagi, box},
                 {ChartType::Kagi, percent}};
    std::vector<void*> replayed;
    for (const Case& c : cases) replayed.push_back(core.createChart("REPLAY", c.type, c.settings));
    EXPECT_EQ(core.replay("REPLAY", 1u << 30), core.instrument("USDCHF")->quotes().size() - 10);

    for (std::size_t k = 0; k < replayed.size(); ++k) {
        void* batch = core.createChart("USDCHF", cases[k].type, cases[k].settings);
        const auto& a = core.chart(replayed[k])->records();
        const auto& b = core.chart(batch)->records();
        ASSERT_EQ(a.size(), b.size()) << k;
        ASSERT_GT(a.size(), 50u);
        EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]), 0) << k;
    }
}
