// The three chart-type providers: short price sequences worked out by hand, and invariants
// over the whole USD/CHF series.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
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

struct Expected {
    std::int32_t time;
    std::int64_t low;
    std::int64_t high;
    bool rising;
};

}  // namespace

TEST(PriceGridTest, ExactTicksDivisionTowardsEitherInfinityAndTheDefaultBox) {
    const PriceGrid grid(4);
    EXPECT_EQ(grid.ticks(1.1930), 11930);
    EXPECT_EQ(grid.ticks(0.0005), 5);
    EXPECT_EQ(grid.ticks(1.2345 - 0.0001), 12344);  // noise in the double does not leak
    EXPECT_EQ(std::vector<std::int64_t>({PriceGrid::floorDiv(7, 5), PriceGrid::floorDiv(-7, 5), PriceGrid::ceilDiv(7, 5),
                                         PriceGrid::ceilDiv(-7, 5), PriceGrid::ceilDiv(10, 5)}),
              std::vector<std::int64_t>({1, -2, 2, -1, 2}));
    EXPECT_EQ(std::make_pair(PriceGrid::decimalsOf(0.0025), PriceGrid::decimalsOf(2.0)), std::make_pair(4, 0));
    // The default box is a 1-2-5 step of a hundredth of the range.
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(1.1851, 1.8291, 4), 0.005);  // 0.00644 -> 0.005
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(3.08, 52.62, 2), 0.2);      // 0.4954 -> 0.2
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(1.0, 1.001, 4), 0.0001);    // never below one unit
    EXPECT_DOUBLE_EQ(host::data::defaultBoxSize(5, 5, 2), 0.01);            // flat series
}

// Short price sequences (in ticks, at times 1, 2, 3 ...) worked out by hand.
TEST(Providers, HandWorkedSequences) {
    struct Case {
        const char* what;
        ChartType type;
        std::int64_t box;
        int reversal;
        std::int64_t percentHundredths;
        std::vector<std::int64_t> prices;
        std::vector<Expected> figures;
        std::vector<std::int64_t> solids;  // Kagi only
    } cases[] = {
        // Box 1, reversal 3: 10 is the reference; 11 is not 3 boxes above it; 13 is: rising
        // column one box above the reference, 11..13 (time 3); 12 changes nothing; 10 = 13 - 3:
        // falling column one box below the top, 12..10 (time 5); 9 extends it; 11 < 9 + 3;
        // 12 = 9 + 3: rising column one box above the bottom, 10..12 (time 8); 14 extends it.
        {"P&F columns, reversals, extensions", ChartType::PointAndFigure, 1, 3, 0, {10, 11, 13, 12, 10, 9, 11, 12, 14},
         {{3, 11, 13, true}, {5, 9, 12, false}, {8, 10, 14, true}}, {}},
        // Box 0.5 (5 ticks of 0.1), reversal 3: reference 10.2 between boxes 10.0 and 10.5;
        // 12.1 rises to box 12.0 (floor) >= 10.5 + 3 boxes: column 11.0..12.0; 10.4 falls to
        // box 10.5 (ceil) <= 12.0 - 3 boxes: column 11.5..10.5; 10.6 nothing; 9.4 reaches 9.5.
        {"P&F off-grid prices fill only the boxes they reach", ChartType::PointAndFigure, 5, 3, 0,
         {102, 121, 104, 106, 94}, {{2, 110, 120, true}, {3, 95, 115, false}}, {}},
        // Reversal 1: every box against the column turns it. 10 -> 8 falls to 9..8 (one below the
        // reference), 9 rises one box above the bottom (9), 8 falls one below the top (8).
        {"P&F first column falls, one-box reversal alternates", ChartType::PointAndFigure, 1, 1, 0, {10, 8, 9, 8},
         {{2, 8, 9, false}, {3, 9, 9, true}, {4, 8, 8, false}}, {}},
        {"P&F no column yet", ChartType::PointAndFigure, 1, 3, 0, {10, 12, 9, 11}, {}, {}},
        // Box 2: reference level 10; 11 reaches no level; 12: brick 10..12 (time 3); 15 reaches
        // 14: 12..14 (time 4); 13, 12, 11 are within a box of the top, a reversal needs two;
        // 9 is under 10: falling 10..12 (time 8); 14: rising 12..14 (time 9); 21 lays three
        // bricks with time 10: 14..16, 16..18, 18..20.
        {"Renko bricks, two-box reversal, jumps", ChartType::Renko, 2, 3, 0, {10, 11, 12, 15, 13, 12, 11, 9, 14, 21},
         {{3, 10, 12, true}, {4, 12, 14, true}, {8, 10, 12, false}, {9, 12, 14, true}, {10, 14, 16, true},
          {10, 16, 18, true}, {10, 18, 20, true}}, {}},
        // Box 2, reference 11: the first falling brick starts at the level at or below it (10),
        // so 8 lays 8..10; 7 does not reach 6; 5 lays 6..8.
        {"Renko falling start off the grid", ChartType::Renko, 2, 3, 0, {11, 8, 7, 5},
         {{2, 8, 10, false}, {4, 6, 8, false}}, {}},
        // Box 1, reversal 2: 13 rises 10..13 (time 3), no shoulder before: SOLID 9; 11 falls
        // 11..13 (time 5), no waist before: SOLID 14; 14 rises 11..14 (time 7) through shoulder
        // 13: thick at 13; 10 falls 10..14 (time 9) through waist 11: thin at 11; 13 rises
        // 10..13 (time 11) short of shoulder 14; 15 extends it past 14.
        {"Kagi strokes, shoulders, waists", ChartType::Kagi, 1, 2, 0, {10, 11, 13, 12, 11, 12, 14, 13, 10, 11, 13},
         {{3, 10, 13, true}, {5, 11, 13, false}, {7, 11, 14, true}, {9, 10, 14, false}, {11, 10, 13, true}},
         {9, 14, 13, 11, 14}},
        {"Kagi stroke extended past the shoulder", ChartType::Kagi, 1, 2, 0,
         {10, 11, 13, 12, 11, 12, 14, 13, 10, 11, 13, 15},
         {{3, 10, 13, true}, {5, 11, 13, false}, {7, 11, 14, true}, {9, 10, 14, false}, {11, 10, 15, true}},
         {9, 14, 13, 11, 14}},
        // 5 %: 104 is 4 % above 100, 105 is 5 %: rising from 100; 110 extends it; 105 is 4.5 %
        // under 110, 104 is 5.45 %: falling 104..110.
        {"Kagi percent reversal from the extreme", ChartType::Kagi, 1, 3, 500, {100, 104, 105, 110, 105, 104},
         {{3, 100, 110, true}, {6, 104, 110, false}}, {}},
        // 5 % of prices near 10^18 ticks: the products of the comparison pass 2^64. One tick
        // short of 5 % above 10^18 is no reversal, 5 % is; the same under 1.05 * 10^18.
        {"Kagi percent reversal with products past 64 bits", ChartType::Kagi, 1, 3, 500,
         {1000000000000000000, 1049999999999999999, 1050000000000000000, 997500000000000001, 997500000000000000},
         {{3, 1000000000000000000, 1050000000000000000, true}, {5, 997500000000000000, 1050000000000000000, false}},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ProviderSettings s;
        s.box = c.box;
        s.reversal = c.reversal;
        s.percentHundredths = c.percentHundredths;
        auto provider = host::data::makeProvider(c.type, s);
        for (std::size_t i = 0; i < c.prices.size(); ++i) provider->add(std::int32_t(i + 1), c.prices[i]);
        const std::vector<Figure>& actual = provider->figures();
        ASSERT_EQ(actual.size(), c.figures.size());
        for (std::size_t i = 0; i < actual.size(); ++i) {
            SCOPED_TRACE("figure " + std::to_string(i));
            const Expected& e = c.figures[i];
            EXPECT_EQ(std::make_tuple(actual[i].time, actual[i].low, actual[i].high, actual[i].rising),
                      std::make_tuple(e.time, e.low, e.high, e.rising));
            if (!c.solids.empty()) { EXPECT_EQ(actual[i].solid, c.solids[i]); }
        }
    }
}

// ---- whole series ----

namespace {

class UsdChf : public ::testing::Test {
protected:
    const host::data::ChartObject& Chart(ChartType type, double box = 0, int reversal = 0) {
        void* handle = core.createChart("USDCHF", type, {box, reversal, 0});
        EXPECT_NE(handle, nullptr);
        return *core.chart(handle);
    }
    host::Host hostObject;
    host::DataCore core{hostObject};
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
        if (i + 1 < f.size()) { ASSERT_GE(f[i].high - f[i].low, amount); }
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
        SCOPED_TRACE(i);
        ASSERT_EQ(std::make_tuple(int(r[i].time), float(r[i].step), int(r[i].type), float(r[i].solid)),
                  std::make_tuple(int(f[i].time), 0.005f, f[i].rising ? 1 : 0, 0.0f));
        ASSERT_FLOAT_EQ(r[i].value, float(f[i].low / 10000.0));
        ASSERT_FLOAT_EQ(r[i].end, float(f[i].high / 10000.0));
    }
}

TEST(ProviderReplay, QuoteByQuoteGivesExactlyTheBatchRecords) {
    host::Host h;
    host::DataCore core(h);
    ASSERT_NE(core.loadInstrument(host::DataCore::builtInPath("USDCHF"), {"REPLAY", 10}), nullptr);
    const host::data::ChartSettings box{0.0025, 3, 0}, percent{0.0025, 0, 0.5};
    const std::pair<ChartType, host::data::ChartSettings> cases[] = {
        {ChartType::PointAndFigure, box}, {ChartType::Renko, box}, {ChartType::Kagi, box}, {ChartType::Kagi, percent}};
    std::vector<void*> replayed;
    for (const auto& c : cases) replayed.push_back(core.createChart("REPLAY", c.first, c.second));
    EXPECT_EQ(core.replay("REPLAY", 1u << 30), core.instrument("USDCHF")->quotes().size() - 10);

    for (std::size_t k = 0; k < replayed.size(); ++k) {
        void* batch = core.createChart("USDCHF", cases[k].first, cases[k].second);
        const auto& a = core.chart(replayed[k])->records();
        const auto& b = core.chart(batch)->records();
        ASSERT_EQ(a.size(), b.size()) << k;
        ASSERT_GT(a.size(), 50u);
        EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]), 0) << k;
    }
}
