// The emulator's line-study provider with no module loaded: the test sends what the chart
// sends (4500, 4505, 4510 with module-allocated arrays ...) and checks the geometry the host
// computes on real USD/CHF data, the drawing tool, the updates it sends when prices arrive,
// and its refusal of records it cannot trust.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "host/DataCore.h"
#include "host/DragData.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/data/ChartObject.h"

using host::data::ChartType;

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

// A packed record's field by value: the expectation macros take references, which a field
// at an odd address must not be bound to.
template <typename T>
T Value(T field) {
    return field;
}

// One study as the chart holds it: the exchange record and the arrays it points to.
struct ChartSide {
    std::int32_t id = 0;
    std::vector<lsPointShape> in, out;
    std::vector<lsShape> shapes;
    std::vector<std::vector<char> > blocks;
    lsControlPointsShapes record{};

    template <typename Block>
    Block data(int shape) const {
        Block b;
        std::memcpy(&b, blocks[std::size_t(shape)].data(), sizeof b);
        return b;
    }
};

class Studies : public ::testing::Test {
protected:
    void SetUp() override {
        host::InstrumentOptions options{"USDCHF", -1, 3000};
        ASSERT_NE(emulator.data().loadInstrument(host::DataCore::builtInPath("USDCHF"), options), nullptr);
        chart = emulator.data().createChart("USDCHF", ChartType::PointAndFigure);
        ASSERT_NE(chart, nullptr);
        array = emulator.data().arrays(chart)[0];
        last = array->pointCount - 1;
        ASSERT_GT(last, 100);
    }
    int Send(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2 = 0) {
        return host::Host::callback(target, message, p1, p2);
    }
    host::LineStudies& LS() { return emulator.studies(); }
    void* Provider() { return LS().handle(); }
    const fxChartTypeRecord& Candle(int i) {
        return emulator.data().chart(chart)->records()[std::size_t(i)];
    }

    // 4500, 4505, the arrays, 3068: what the chart does when a study is made.
    std::unique_ptr<ChartSide> Make(const char* name) {
        std::unique_ptr<ChartSide> s(new ChartSide);
        lsCreateObject create;
        std::memset(&create, 0, sizeof create);
        std::strcpy(create.name, name);
        create.dataArray = array;
        create.color = 0x102030;
        EXPECT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&create)), 0) << name;
        s->id = create.id;
        s->in.assign(std::size_t(create.cpCount), lsPointShape{});
        s->out = s->in;
        std::vector<std::int32_t> sizes(std::size_t(create.shapeCount), -1);
        EXPECT_EQ(Send(Provider(), MSG_LS_SHAPE_SIZES, create.id, P(sizes.data())), 0);
        s->shapes.assign(sizes.size(), lsShape{});
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            EXPECT_GT(sizes[i], 0);
            s->blocks.emplace_back(std::size_t(sizes[i]), '\0');
            s->shapes[i].data = s->blocks.back().data();
        }
        s->record.inCount = s->record.outCount = create.cpCount;
        s->record.in = s->in.data();
        s->record.out = s->out.data();
        s->record.shapeCount = create.shapeCount;
        s->record.shapes = s->shapes.data();
        lsAttachRecord attach{array, Provider(), create.id};
        EXPECT_EQ(Send(nullptr, MSG_LS_ATTACH, 77, P(&attach)), 0);
        return s;
    }
    // A placed point on candle `i` (beyond the last one: relative to it).
    lsPointShape At(int i, float price) {
        lsPointShape p{LS_POINT_PLACED, i <= last ? Candle(i).time : Candle(last).time + 1800 * (i - last),
                       i <= last ? i : i - last, price, i <= last ? 0 : 1};
        return p;
    }
    int Exchange(ChartSide& s) { return Send(Provider(), MSG_LS_GET_LIST_CONTROLPOINTER, s.id, P(&s.record)); }

    host::Emulator emulator;
    void* chart = nullptr;
    fxDataPointArray* array = nullptr;
    int last = 0;
};

}  // namespace

TEST_F(Studies, EveryStudyIsCreatedWithItsPointsShapesAndTitle) {
    const struct {
        const char* name;
        int points;
        std::vector<std::int32_t> types;
        const char* title;
    } expected[] = {
        {"HLine", 1, {LS_SHAPE_HLINE}, "Horizontal line"},
        {"VLine", 1, {LS_SHAPE_VLINE}, "Vertical line"},
        {"Line", 2, {LS_SHAPE_LINE}, "Trend line"},
        {"Text", 1, {LS_SHAPE_TEXT}, "Text"},
        {"Arc", 2, {LS_SHAPE_LINE, LS_SHAPE_ARC, LS_SHAPE_ARC, LS_SHAPE_ARC}, "Fibonacci arcs"},
        {"Chanel", 4, {LS_SHAPE_LINE, LS_SHAPE_LINE, LS_SHAPE_LINE}, "Channel"},
        {"Andrews Pitchfork", 4, std::vector<std::int32_t>(4, LS_SHAPE_LINE), "Andrews pitchfork"},
        {"PolyLine", 10, std::vector<std::int32_t>(9, LS_SHAPE_LINE), "Polyline"},
    };
    for (const auto& e : expected) {
        std::unique_ptr<ChartSide> s = Make(e.name);
        ASSERT_NE(s->id, 0) << e.name;
        EXPECT_EQ(int(s->in.size()), e.points) << e.name;
        ASSERT_EQ(Exchange(*s), 0) << e.name;
        for (std::size_t i = 0; i < e.types.size(); ++i) {
            EXPECT_EQ(Value(s->shapes[i].type), e.types[i]) << e.name << " shape " << i;
            // Nothing placed yet: nothing shows.
            EXPECT_EQ(Value(s->shapes[i].visible), 0) << e.name << " shape " << i;
            EXPECT_EQ(Value(s->shapes[i].color), 0x102030u);
        }
        coreWChar title[LS_TITLE_CHARS];
        std::memset(title, 0xFF, sizeof title);
        ASSERT_EQ(Send(Provider(), MSG_LS_TITLE, s->id, P(title)), 0);
        EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(title)), QString::fromLatin1(e.title));
    }
    // The name is the system's: a corrected spelling is not a study.
    lsCreateObject create;
    std::memset(&create, 0, sizeof create);
    std::strcpy(create.name, "Channel");
    create.id = 99;
    EXPECT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&create)), 1);
    EXPECT_EQ(create.id, 0);
    // Unterminated name: read within its field, refused.
    std::memset(create.name, 'A', sizeof create.name);
    EXPECT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&create)), 1);
}

TEST_F(Studies, HorizontalAndVerticalLinesAreTitledFromTheData) {
    std::unique_ptr<ChartSide> h = Make("HLine");
    h->in[0] = At(40, 1.2345f);
    ASSERT_EQ(Exchange(*h), 0);
    EXPECT_EQ(Value(h->shapes[0].visible), 1);
    EXPECT_FLOAT_EQ(h->data<lsShapeHLine>(0).price, 1.2345f);
    EXPECT_STREQ(h->shapes[0].title, "1.2345");
    EXPECT_EQ(Value(h->shapes[0].titlePosition), 1);

    std::unique_ptr<ChartSide> v = Make("VLine");
    ASSERT_EQ(Exchange(*v), 0);
    EXPECT_LT(v->data<lsShapeVLine>(0).placed, 0);  // not placed yet
    // The chart's time of the point is off: the candle's own time wins.
    v->in[0] = At(60, 1.5f);
    v->in[0].m_xTime += 7;
    ASSERT_EQ(Exchange(*v), 0);
    const lsShapeVLine line = v->data<lsShapeVLine>(0);
    EXPECT_EQ(line.placed, 0);
    EXPECT_EQ(line.index, 60);
    EXPECT_EQ(line.indexType, 0);
    EXPECT_EQ(v->out[0].m_xTime, Candle(60).time);
    EXPECT_EQ(QString::fromLatin1(v->shapes[0].title), host::ls::dateTitle(Candle(60).time));
    EXPECT_EQ(Value(v->shapes[0].titlePosition), 3);
}

TEST_F(Studies, LineTextAndArcCarryTheirSettings) {
    std::unique_ptr<ChartSide> line = Make("Line");
    line->in[0] = At(10, 1.4f);
    line->in[1] = At(last + 3, 1.5f);  // beyond the last candle
    ASSERT_EQ(Exchange(*line), 0);
    lsShapeLine l = line->data<lsShapeLine>(0);
    EXPECT_EQ(l.points[1].indexType, 1);
    EXPECT_EQ(l.points[1].index, 3);
    EXPECT_EQ(l.extendRight, 0);
    // Edited settings: the chart is told (3073) and the next exchange carries them.
    host::ls::StudyParams params = LS().study(line->id)->params;
    params.extendRight = true;
    ASSERT_TRUE(LS().setParams(line->id, params));
    ASSERT_EQ(LS().updates().size(), 1u);
    EXPECT_EQ(LS().updates()[0].id, line->id);
    ASSERT_EQ(Exchange(*line), 0);
    EXPECT_EQ(line->data<lsShapeLine>(0).extendRight, 1);

    std::unique_ptr<ChartSide> text = Make("Text");
    text->in[0] = At(20, 1.45f);
    params = LS().study(text->id)->params;
    params.text = QStringLiteral("Breakout \u2191");
    params.bold = true;
    params.pointSize = 14;
    ASSERT_TRUE(LS().setParams(text->id, params));
    ASSERT_EQ(Exchange(*text), 0);
    const lsShapeText t = text->data<lsShapeText>(0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(t.text)), QStringLiteral("Breakout \u2191"));
    EXPECT_STREQ(t.family, "DejaVu Sans");
    EXPECT_EQ(t.pointSize, 14);
    EXPECT_EQ(t.bold, 1);
    EXPECT_EQ(t.anchor.index, 20);

    std::unique_ptr<ChartSide> arc = Make("Arc");
    arc->in[0] = At(30, 1.40f);
    arc->in[1] = At(50, 1.50f);  // the start lies below the centre
    ASSERT_EQ(Exchange(*arc), 0);
    const float percents[] = {38.2f, 50.0f, 61.8f};
    for (int i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(arc->data<lsShapeArc>(i + 1).percent, percents[i]);
        EXPECT_EQ(arc->data<lsShapeArc>(i + 1).lowerHalf, 1);
        EXPECT_EQ(Value(arc->shapes[std::size_t(i) + 1].visible), 1);
    }
    arc->in[0].value = 1.60f;
    ASSERT_EQ(Exchange(*arc), 0);
    EXPECT_EQ(arc->data<lsShapeArc>(1).lowerHalf, 0);
}

TEST_F(Studies, ChannelPutsPointsOneAndThreeInTheMiddleOfItsBoundaries) {
    std::unique_ptr<ChartSide> c = Make("Chanel");
    // Placing: after the first point the first line follows point 1.
    c->in[0] = At(100, 1.40f);
    c->in[1] = At(110, 1.44f);
    ASSERT_EQ(Exchange(*c), 0);
    EXPECT_EQ(Value(c->shapes[0].visible), 1);
    EXPECT_FLOAT_EQ(c->data<lsShapeLine>(0).points[1].value, 1.44f);
    EXPECT_EQ(Value(c->shapes[2].visible), 0);
    // The end and the parallel line's point.
    c->in[2] = At(120, 1.48f);
    c->in[3] = At(105, 1.50f);
    ASSERT_EQ(Exchange(*c), 0);
    const lsShapeLine first = c->data<lsShapeLine>(0), middle = c->data<lsShapeLine>(1),
                      second = c->data<lsShapeLine>(2);
    EXPECT_EQ(first.points[0].index, 100);
    EXPECT_EQ(first.points[1].index, 120);
    // The parallel line passes through point 3: 0.08 above the first line there (1.42).
    EXPECT_NEAR(second.points[0].value - first.points[0].value, 0.08, 1e-5);
    EXPECT_NEAR(second.points[1].value - first.points[1].value, 0.08, 1e-5);
    EXPECT_NEAR(middle.points[0].value - first.points[0].value, 0.04, 1e-5);
    // Points 1 and 3: the middles of shapes 0 and 2, as the chart draws their markers.
    EXPECT_EQ(c->out[1].index, 110);
    EXPECT_NEAR(c->out[1].value, (first.points[0].value + first.points[1].value) / 2, 1e-5);
    EXPECT_EQ(c->out[3].index, 110);
    EXPECT_NEAR(c->out[3].value, (second.points[0].value + second.points[1].value) / 2, 1e-5);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(Value(c->shapes[std::size_t(i)].visible), 1);
}

TEST_F(Studies, PitchforkComputesItsLastHandleAndPolylineEndsAtItsTerminator) {
    std::unique_ptr<ChartSide> f = Make("Andrews Pitchfork");
    f->in[0] = At(last - 20, 1.40f);
    f->in[1] = At(last - 10, 1.50f);
    f->in[2] = At(last - 2, 1.44f);
    f->in[3].index = -1;  // the chart leaves the last handle to the host
    ASSERT_EQ(Exchange(*f), 0);
    EXPECT_EQ(f->out[3].m_typePoint, LS_POINT_PLACED);
    EXPECT_EQ(f->out[3].index, last - 6);
    EXPECT_NEAR(f->out[3].value, 1.47, 1e-5);
    // The median's direction carried to the handles runs past the last candle: relative.
    const lsShapeLine upper = f->data<lsShapeLine>(1);
    EXPECT_EQ(upper.points[1].indexType, 1);
    EXPECT_EQ(upper.points[1].index, 4);  // last - 10 + 14
    EXPECT_NEAR(upper.points[1].value, 1.57, 1e-5);
    EXPECT_EQ(upper.extendRight, 1);
    EXPECT_EQ(f->data<lsShapeLine>(0).extendRight, 1);
    EXPECT_EQ(f->data<lsShapeLine>(3).extendRight, 0);

    std::unique_ptr<ChartSide> p = Make("PolyLine");
    for (int i = 0; i < 4; ++i) p->in[std::size_t(i)] = At(200 + 5 * i, 1.4f + 0.01f * float(i));
    p->in[3].m_typePoint = LS_POINT_LAST;
    // Leftovers after the terminator draw nothing.
    p->in[4] = At(300, 1.6f);
    p->in[5] = At(310, 1.6f);
    ASSERT_EQ(Exchange(*p), 0);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(Value(p->shapes[std::size_t(i)].visible), i < 3 ? 1 : 0) << "segment " << i;
    EXPECT_EQ(p->out[3].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(p->data<lsShapeLine>(2).points[1].index, 215);
}

TEST_F(Studies, DrawingModeAnswersWhileAToolIsChosen) {
    void* main = emulator.mainWindow().handle();
    lsDrawingMode mode;
    std::memset(&mode, 0, sizeof mode);
    EXPECT_EQ(Send(main, MSG_LS_DRAWING_MODE, P(&mode)), 0);
    EXPECT_EQ(mode.provider, nullptr);
    EXPECT_FALSE(LS().chooseTool("Channel"));
    ASSERT_TRUE(LS().chooseTool("Andrews Pitchfork", 0xFF123456));
    EXPECT_EQ(Send(main, MSG_LS_DRAWING_MODE, 0), 0);         // no record
    EXPECT_EQ(Send(Provider(), MSG_LS_DRAWING_MODE, P(&mode)), 0);  // not the main GUI
    ASSERT_EQ(Send(main, MSG_LS_DRAWING_MODE, P(&mode)), 1);
    EXPECT_EQ(mode.provider, Provider());
    EXPECT_STREQ(mode.name, "Andrews Pitchfork");
    EXPECT_EQ(mode.color, 0x123456u);
    // The chart ends the mode: the tool is put down.
    EXPECT_EQ(Send(main, MSG_LS_END_DRAWING, 0), 0);
    EXPECT_EQ(LS().tool(), "");
    EXPECT_EQ(LS().endedDrawing(), 1);
    EXPECT_EQ(Send(main, MSG_LS_DRAWING_MODE, P(&mode)), 0);
}

TEST_F(Studies, ArrivingPricesUpdateTheStudiesBoundToThatData) {
    std::unique_ptr<ChartSide> v = Make("VLine");
    std::unique_ptr<ChartSide> h = Make("HLine");
    // A study on other data hears nothing.
    lsCreateObject other;
    std::memset(&other, 0, sizeof other);
    std::strcpy(other.name, "Line");
    ASSERT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&other)), 0);
    // A vertical line two candles beyond the last one, titled with an estimated date.
    v->in[0] = At(last + 2, 1.5f);
    ASSERT_EQ(Exchange(*v), 0);
    const std::size_t columns = std::size_t(array->pointCount);
    ASSERT_EQ(emulator.data().replay("USDCHF", 3000), 3000u);
    ASSERT_GT(std::size_t(array->pointCount), columns) << "the replay made no new columns";
    ASSERT_GE(LS().updates().size(), 2u);
    for (const auto& u : LS().updates()) EXPECT_TRUE(u.id == v->id || u.id == h->id);
    // The chart sends its points again, still two candles beyond the last one: the date
    // moves with the new last candle.
    const QString before = QString::fromLatin1(v->shapes[0].title);
    ASSERT_EQ(Exchange(*v), 0);
    const host::ls::SeriesView series = LS().series(array);
    EXPECT_EQ(series.lastIndex(), array->pointCount - 1);
    EXPECT_EQ(QString::fromLatin1(v->shapes[0].title), host::ls::dateTitle(series.timeAt(series.lastIndex() + 2)));
    EXPECT_NE(QString::fromLatin1(v->shapes[0].title), before);
    // Detached (3071) studies hear no more.
    const std::size_t updates = LS().updates().size();
    EXPECT_EQ(Send(nullptr, MSG_LS_DETACH, 77, v->id), 0);
    EXPECT_EQ(Send(nullptr, MSG_LS_DETACH, 77, h->id), 0);
    emulator.data().append("USDCHF", host::data::Quote{Candle(int(array->pointCount) - 1).time + 86400 * 30, 0, 0, 0,
                                                       0.5, 0});
    EXPECT_EQ(LS().updates().size(), updates);
}

// A study whose placement the chart cancels (the drawing mode ends before it is finished)
// is unbound from its data: arriving prices send no 3073 for it. A finished one, bound a
// second time, and one finished through the exchange's flag keep hearing.
TEST_F(Studies, StudiesLeftUnfinishedWhenTheDrawingModeEndsHearNoMore) {
    std::unique_ptr<ChartSide> cancelled = Make("HLine");
    std::unique_ptr<ChartSide> bound = Make("VLine");
    std::unique_ptr<ChartSide> flagged = Make("Line");
    lsAttachRecord again{array, Provider(), bound->id};
    ASSERT_EQ(Send(nullptr, MSG_LS_ATTACH, 77, P(&again)), 0);
    flagged->in[0] = At(last - 5, 1.5f);
    flagged->in[1] = At(last - 1, 1.6f);
    flagged->record.finished = 1;
    ASSERT_EQ(Exchange(*flagged), 0);
    ASSERT_EQ(Send(emulator.mainWindow().handle(), MSG_LS_END_DRAWING, 0), 0);
    EXPECT_FALSE(LS().study(cancelled->id)->attached);
    EXPECT_TRUE(LS().study(bound->id)->attached);
    EXPECT_TRUE(LS().study(flagged->id)->attached);
    const std::size_t before = LS().updates().size();
    ASSERT_GT(emulator.data().replay("USDCHF", 3000), 0u);
    ASSERT_GT(LS().updates().size(), before);
    for (std::size_t i = before; i < LS().updates().size(); ++i) EXPECT_NE(LS().updates()[i].id, cancelled->id);
}

TEST_F(Studies, RecordsThatCannotBeTrustedAreRefused) {
    std::unique_ptr<ChartSide> s = Make("Line");
    s->in[0] = At(10, 1.4f);
    s->in[1] = At(20, 1.5f);
    auto refused = [&](const char* what) {
        s->record.error = 0;
        EXPECT_EQ(Exchange(*s), 1) << what;
        EXPECT_EQ(s->record.error, 1) << what;
        // Restore a good record.
        s->record.inCount = s->record.outCount = 2;
        s->record.in = s->in.data();
        s->record.out = s->out.data();
        s->record.shapeCount = 1;
        s->record.shapes = s->shapes.data();
        s->shapes[0].data = s->blocks[0].data();
    };
    s->record.inCount = -1;
    refused("negative count");
    s->record.outCount = 1 << 30;
    refused("huge count");
    s->record.in = nullptr;
    refused("no input points");
    s->record.shapeCount = 5000;
    refused("more shapes than the study has");
    s->record.shapeCount = -3;
    refused("negative shape count");
    s->shapes[0].data = nullptr;
    refused("a shape without data");
    s->record.shapes = nullptr;
    refused("no shapes");
    EXPECT_EQ(Send(Provider(), MSG_LS_GET_LIST_CONTROLPOINTER, s->id + 1000, P(&s->record)), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_GET_LIST_CONTROLPOINTER, s->id, 0), 1);
    EXPECT_EQ(Send(nullptr, MSG_LS_GET_LIST_CONTROLPOINTER, s->id, P(&s->record)), 1);  // wrong target
    ASSERT_EQ(Exchange(*s), 0);  // the study still works

    // The other messages: unknown ids, null records, someone else's provider.
    EXPECT_EQ(Send(Provider(), MSG_LS_SHAPE_SIZES, s->id, 0), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_SHAPE_SIZES, 4242, P(s->blocks[0].data())), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_TITLE, s->id, 0), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_FOCUS, 0), 1);
    lsFocusRecord focus{4242, 1, 0};
    EXPECT_EQ(Send(Provider(), MSG_LS_FOCUS, P(&focus)), 1);
    focus.id = s->id;
    EXPECT_EQ(Send(Provider(), MSG_LS_FOCUS, P(&focus)), 0);
    EXPECT_EQ(LS().focus(), s->id);
    lsAttachRecord attach{array, reinterpret_cast<void*>(0x1234), s->id};
    EXPECT_EQ(Send(nullptr, MSG_LS_ATTACH, 1, P(&attach)), 1);
    EXPECT_EQ(Send(nullptr, MSG_LS_ATTACH, 1, 0), 1);
    EXPECT_EQ(Send(nullptr, MSG_LS_DETACH, 1, 4242), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_PROPERTIES, 4242), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_DELETE, 4242), 1);

    // Deleted: gone, its detach still answered, nothing else.
    ASSERT_EQ(Send(Provider(), MSG_LS_DELETE, s->id), 0);
    EXPECT_EQ(LS().study(s->id), nullptr);
    EXPECT_EQ(LS().focus(), 0);
    EXPECT_EQ(Send(nullptr, MSG_LS_DETACH, 77, s->id), 0);
    EXPECT_EQ(Exchange(*s), 1);
    EXPECT_EQ(Send(Provider(), MSG_LS_DELETE, s->id), 1);
}

TEST_F(Studies, AFaultyTerminalStillWritesNoMoreThanItReported) {
    host::LineStudies::Faults faults;
    faults.zeroId = true;
    LS().setFaults(faults);
    lsCreateObject create;
    std::memset(&create, 0, sizeof create);
    std::strcpy(create.name, "HLine");
    EXPECT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&create)), 0);
    EXPECT_EQ(create.id, 0);

    // 4505 reports 2 bytes a shape: the data block gets 2 bytes and no more, whatever the
    // study needs.
    faults = host::LineStudies::Faults();
    faults.overrideShapeSize = true;
    faults.shapeSize = 2;
    faults.overrideShapeType = true;
    faults.shapeType = 99;
    faults.errorFlag = true;
    LS().setFaults(faults);
    std::unique_ptr<ChartSide> s = Make("Line");
    std::vector<char> guarded(64, 0x5A);
    s->shapes[0].data = guarded.data();
    s->in[0] = At(10, 1.4f);
    s->in[1] = At(20, 1.5f);
    EXPECT_EQ(Exchange(*s), 0);
    EXPECT_EQ(s->record.error, 1);
    EXPECT_EQ(Value(s->shapes[0].type), 99);
    EXPECT_EQ(Value(s->shapes[0].data), guarded.data());
    EXPECT_EQ(std::count(guarded.begin() + 2, guarded.end(), 0x5A), 62);

    // A count claimed below the real one: 4505 fills no more entries than it claimed.
    faults = host::LineStudies::Faults();
    faults.overrideShapeCount = true;
    faults.shapeCount = 1;
    LS().setFaults(faults);
    std::memset(&create, 0, sizeof create);
    std::strcpy(create.name, "Arc");
    ASSERT_EQ(Send(Provider(), MSG_LS_CREATE_OBJECT, P(&create)), 0);
    EXPECT_EQ(create.shapeCount, 1);
    std::int32_t sizes[4] = {-7, -7, -7, -7};
    ASSERT_EQ(Send(Provider(), MSG_LS_SHAPE_SIZES, create.id, P(sizes)), 0);
    EXPECT_EQ(sizes[0], std::int32_t(sizeof(lsShapeLine)));
    EXPECT_EQ(sizes[1], -7);
}

TEST_F(Studies, AStudyToolDraggedFromTheTerminalIsDescribedAsALineStudy) {
    void* core = emulator.host().coreHandle();
    const QByteArray bytes = host::drag::studyBytes("Andrews Pitchfork");
    EXPECT_EQ(bytes, QByteArray("Andrews Pitchfork;study"));
    coreDragData drag{bytes.constData(), std::int32_t(bytes.size())};
    fxwcDropInstrument record;
    std::memset(&record, 0x5A, sizeof record);
    ASSERT_EQ(Send(core, MSG_DESCRIBE_PRIMITIVE, P(&drag), P(&record)), 0);
    EXPECT_EQ(record.baseHandle, Provider());
    EXPECT_STREQ(record.symbol, "Andrews Pitchfork");
    EXPECT_STREQ(record.instrumentType, "LineStudy");
    EXPECT_EQ(record.style, 0x0000C0);
    // Not a study of this terminal, and not an instrument either.
    const QByteArray wrong = host::drag::studyBytes("Channel");
    coreDragData other{wrong.constData(), std::int32_t(wrong.size())};
    fxwcDropInstrument untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    record = untouched;
    EXPECT_EQ(Send(core, MSG_DESCRIBE_PRIMITIVE, P(&other), P(&record)), 1);
    EXPECT_EQ(Send(core, MSG_DESCRIBE_DRAG, P(&drag), P(&record)), 1);
    EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
}
