// The chart tree without a window: stacking of areas, the index rule, both walk orders, the
// deletion cascade, the price range of the visible columns, caption buttons and presses.
#include <gtest/gtest.h>

#include <QMouseEvent>
#include <boost/shared_ptr.hpp>
#include <cfloat>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "data/ScaleEngine.h"
#include "gx/Area.h"
#include "gx/Button.h"
#include "gx/Caption.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"

namespace {

// A Renko array of 24-byte records the test owns.
struct Records {
    std::vector<fxChartTypeRecord> records;
    std::vector<fxDataPointField> fields;
    fxDataPointArray header{};

    Records(std::vector<fxChartTypeRecord> r, int precision = 4) : records(std::move(r)) {
        const std::pair<int, const char*> layout[] = {{DPT_INT32, "TIME"}, {DPT_FLOAT, "STEP"}, {DPT_FLOAT, "VALUE"},
                                                      {DPT_INT32, "TYPE"}, {DPT_FLOAT, "END"},  {DPT_FLOAT, "SOLID"}};
        for (const auto& f : layout) {
            fxDataPointField d{};
            d.type = f.first;
            std::strncpy(d.name, f.second, sizeof d.name - 1);
            fields.push_back(d);
        }
        header.fields = fields.data();
        header.fieldCount = static_cast<std::int32_t>(fields.size());
        const char16_t name[] = u"Renko";
        for (int i = 0; name[i]; ++i) std::memcpy(reinterpret_cast<char*>(header.name.name) + 2 * i, &name[i], 2);
        header.points = reinterpret_cast<unsigned char*>(records.data());
        header.pointCount = static_cast<std::int32_t>(records.size());
        header.pointSize = sizeof(fxChartTypeRecord);
        header.precision = precision;
    }
};

std::vector<fxChartTypeRecord> Bricks(int n, float start = 1.0f, float box = 0.01f) {
    std::vector<fxChartTypeRecord> out;
    for (int i = 0; i < n; ++i) {
        const float v = start + box * float(i % 7);
        out.push_back(fxChartTypeRecord{1000 + i, box, v, 1, v + box, 0.0f});
    }
    return out;
}

QMouseEvent Press(QPoint at, Qt::MouseButton button) {
    return QMouseEvent(QEvent::MouseButtonPress, at, at, button, button, Qt::NoModifier);
}

// Records every visit as text, to compare walk orders.
struct Trace : gx::Visitor {
    std::vector<std::string>* out;
    explicit Trace(std::vector<std::string>* o) : out(o) {}
    void Visit(gx::Chart*) { out->push_back("chart"); }
    void Visit(boost::shared_ptr<gx::Area> a) { out->push_back("area" + std::to_string(-a->GetIndex())); }
    void Visit(boost::shared_ptr<gx::Layer>) { out->push_back("layer"); }
    void Visit(boost::shared_ptr<gx::Indicator>) { out->push_back("indicator"); }
    void Visit(boost::shared_ptr<gx::Line>) { out->push_back("line"); }
};

struct TreeTest : ::testing::Test {
    gx::Chart chart{nullptr, QRect(QPoint(0, 0), QPoint(199, 99))};
    Records a{Bricks(10)};
    Records b{Bricks(20, 2.0f)};

    // An area with one layer holding one indicator with a line per array.
    boost::shared_ptr<gx::Area> AddArea(std::vector<fxDataPointArray*> arrays) {
        boost::shared_ptr<gx::Area> area = chart.AddArea();
        boost::shared_ptr<gx::Indicator> indicator = area->AddLayer()->AddIndicator(boost::shared_ptr<pf::DataSource>());
        for (fxDataPointArray* array : arrays) indicator->AddLine(array);
        return area;
    }
    static boost::shared_ptr<gx::Line> LineOf(const boost::shared_ptr<gx::Area>& area, int i = 0) {
        return area->GetLayers()[0]->GetIndicators()[0]->GetLines()[std::size_t(i)];
    }
};

TEST_F(TreeTest, AreasShareTheHeightAndLeaveTheRemainderEmpty) {
    for (int i = 0; i < 3; ++i) chart.AddArea();
    const std::vector<boost::shared_ptr<gx::Area> >& areas = chart.GetAreas();
    ASSERT_EQ(areas.size(), 3u);
    EXPECT_EQ(areas[0]->GetPaneRect(), QRect(QPoint(0, 0), QPoint(199, 32)));
    EXPECT_EQ(areas[1]->GetPaneRect(), QRect(QPoint(0, 33), QPoint(199, 65)));
    EXPECT_EQ(areas[2]->GetPaneRect(), QRect(QPoint(0, 66), QPoint(199, 98)));
    // The caption takes the pane's top 16 rows; its close button moves from the
    // constructor's place to right - 10 once the area is placed.
    EXPECT_EQ(areas[1]->GetCaption()->Rect(), QRect(QPoint(0, 33), QPoint(199, 48)));
    EXPECT_EQ(areas[1]->GetCaption()->GetButton()->Rect(), QRect(QPoint(189, 34), QPoint(198, 43)));
    gx::Caption fresh(QRect(QPoint(0, 0), QPoint(99, 15)), nullptr);
    EXPECT_EQ(fresh.GetButton()->Rect(), QRect(QPoint(84, 1), QPoint(93, 10)));
}

TEST_F(TreeTest, IndexRuleGivesZeroThenMinusPositionAndMinusOneWhenAbsent) {
    for (int i = 0; i < 3; ++i) chart.AddArea();
    const std::vector<boost::shared_ptr<gx::Area> > areas = chart.GetAreas();
    EXPECT_EQ(areas[0]->GetIndex(), 0);
    EXPECT_EQ(areas[1]->GetIndex(), -1);
    EXPECT_EQ(areas[2]->GetIndex(), -2);
    chart.GetAreas().erase(chart.GetAreas().begin() + 1);
    EXPECT_EQ(areas[1]->GetIndex(), -1);  // gone: the same value as the second element
    EXPECT_EQ(areas[2]->GetIndex(), -1);
    boost::shared_ptr<gx::Layer> l0 = areas[0]->AddLayer();
    boost::shared_ptr<gx::Layer> l1 = areas[0]->AddLayer();
    boost::shared_ptr<gx::Layer> l2 = areas[0]->AddLayer();
    EXPECT_EQ(l0->GetIndex(), 0);
    EXPECT_EQ(l2->GetIndex(), -2);
    EXPECT_EQ(gx::WidgetWalker<gx::FindLayerByIndex>(&chart, gx::FindLayerByIndex(-2)).Walk().found, l2);
}

TEST_F(TreeTest, WalkersVisitPreOrderAndPostOrderAndTheChartEvenWhenEmpty) {
    std::vector<std::string> pre, post;
    gx::WidgetWalker2<Trace>(&chart, Trace(&post)).Walk();
    EXPECT_EQ(post, std::vector<std::string>{"chart"});
    post.clear();
    AddArea({&a.header, &b.header});
    AddArea({&a.header});
    gx::WidgetWalker<Trace>(&chart, Trace(&pre)).Walk();
    gx::WidgetWalker2<Trace>(&chart, Trace(&post)).Walk();
    EXPECT_EQ(pre, (std::vector<std::string>{"chart", "area0", "layer", "indicator", "line", "line", "area1", "layer",
                                             "indicator", "line"}));
    EXPECT_EQ(post, (std::vector<std::string>{"line", "line", "indicator", "layer", "area0", "line", "indicator",
                                              "layer", "area1", "chart"}));
}

TEST_F(TreeTest, DeletionCascadeRemovesEmptiedParentsUpToTheAreaAndKeepsOrder) {
    boost::shared_ptr<gx::Area> first = AddArea({&a.header});
    boost::shared_ptr<gx::Area> second = AddArea({&a.header, &b.header, &a.header});
    boost::shared_ptr<gx::Area> third = AddArea({&b.header});
    const boost::shared_ptr<gx::Line> kept0 = LineOf(second, 0);
    const boost::shared_ptr<gx::Line> kept2 = LineOf(second, 2);
    LineOf(first)->Select(true);
    LineOf(second, 1)->Select(true);
    gx::WidgetWalker2<gx::DeleteSelItems>(&chart, gx::DeleteSelItems()).Walk();
    ASSERT_EQ(chart.GetAreas().size(), 2u);
    EXPECT_EQ(chart.GetAreas()[0], second);
    EXPECT_EQ(chart.GetAreas()[1], third);
    const std::vector<boost::shared_ptr<gx::Line> >& lines = second->GetLayers()[0]->GetIndicators()[0]->GetLines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], kept0);
    EXPECT_EQ(lines[1], kept2);
    // The chart re-stacks what is left.
    chart.RePlaceAreas();
    EXPECT_EQ(second->GetPaneRect(), QRect(QPoint(0, 0), QPoint(199, 49)));
}

TEST_F(TreeTest, PriceRangeCoversVisibleColumnsPaddedByOneBox) {
    std::vector<fxChartTypeRecord> r = Bricks(10);
    r[2].value = 0.5f;   // outside the view: ignored
    r[6].value = 0.9f;   // lowest visible
    r[7].end = 1.5f;     // highest visible
    Records records(r);
    boost::shared_ptr<gx::Area> area = AddArea({&records.header});
    area->GetEngine()->SetFirstColumn(5);
    area->GetEngine()->SetColumnCount(4);
    const gx::FindMinMax range = gx::WidgetWalker<gx::FindMinMax>(&chart, gx::FindMinMax(area.get())).Walk();
    EXPECT_FLOAT_EQ(range.minPrice, 0.9f - 0.01f);
    EXPECT_FLOAT_EQ(range.maxPrice, 1.5f + 0.01f);
    EXPECT_FLOAT_EQ(range.boxSize, 0.01f);
    EXPECT_EQ(range.columnCount, 10.0f);
    EXPECT_EQ(range.precision, 4.0f);
    // Another area's lines are not counted, and an area without data keeps the start values:
    // the maximum starts at the smallest positive float, so all-negative prices never raise it.
    boost::shared_ptr<gx::Area> empty = chart.AddArea();
    const gx::FindMinMax none = gx::WidgetWalker<gx::FindMinMax>(&chart, gx::FindMinMax(empty.get())).Walk();
    EXPECT_EQ(none.maxPrice, FLT_MIN);
    EXPECT_EQ(none.minPrice, FLT_MAX);
    EXPECT_FALSE(none.HasData());
    Records negative(Bricks(5, -3.0f));
    boost::shared_ptr<gx::Area> below = AddArea({&negative.header});
    below->GetEngine()->SetColumnCount(5);
    const gx::FindMinMax neg = gx::WidgetWalker<gx::FindMinMax>(&chart, gx::FindMinMax(below.get())).Walk();
    EXPECT_EQ(neg.maxPrice, FLT_MIN);
    EXPECT_FLOAT_EQ(neg.minPrice, -3.0f - 0.01f);
}

TEST_F(TreeTest, RightButtonPressChangesNoSelectionAndCloseButtonNeedsTheLeftButton) {
    boost::shared_ptr<gx::Area> area = AddArea({&a.header});
    chart.RePlaceAreas();
    chart.mousePressEvent(Press(QPoint(50, 50), Qt::LeftButton));
    EXPECT_TRUE(chart.IsSelected());
    EXPECT_TRUE(area->IsSelected());
    chart.mousePressEvent(Press(QPoint(500, 500), Qt::RightButton));
    EXPECT_TRUE(chart.IsSelected());
    EXPECT_TRUE(area->IsSelected());
    const QPoint button = area->GetCaption()->GetButton()->Rect().center();
    EXPECT_FALSE(area->CheckClose(Press(button, Qt::RightButton)));
    EXPECT_TRUE(area->CheckClose(Press(button, Qt::LeftButton)));
    // A left press on the close button deletes the area with everything in it.
    chart.mousePressEvent(Press(button, Qt::LeftButton));
    EXPECT_TRUE(chart.GetAreas().empty());
}

TEST_F(TreeTest, FindersKeepTheLastMatchOrTheFirstExtreme) {
    boost::shared_ptr<gx::Area> area = AddArea({&a.header});
    boost::shared_ptr<gx::Layer> second = area->AddLayer();
    chart.RePlaceAreas();
    // Two layers over the same rectangle: the later one in walk order wins.
    EXPECT_EQ(gx::WidgetWalker<gx::FindLayer>(&chart, gx::FindLayer(QPoint(10, 30))).Walk().found, second);
    // Two lines starting at the same time: the first found wins.
    boost::shared_ptr<gx::Area> other = AddArea({&a.header});
    EXPECT_EQ(gx::WidgetWalker<gx::FindMinTimeLine>(&chart, gx::FindMinTimeLine()).Walk().found, LineOf(area));
    Records earlier(Bricks(3));
    earlier.records[0].time = 5;
    boost::shared_ptr<gx::Area> third = AddArea({&earlier.header});
    EXPECT_EQ(gx::WidgetWalker<gx::FindMinTimeLine>(&chart, gx::FindMinTimeLine()).Walk().found, LineOf(third));
    // A line without data starts at time 0: the time scale follows it.
    Records none(std::vector<fxChartTypeRecord>{});
    boost::shared_ptr<gx::Area> empty = AddArea({&none.header});
    EXPECT_EQ(gx::WidgetWalker<gx::FindMinTimeLine>(&chart, gx::FindMinTimeLine()).Walk().found, LineOf(empty));
}

}  // namespace
