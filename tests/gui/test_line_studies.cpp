// Line studies in a chart window, in-process against a fake line-study provider: creation and
// its failures, placing by mouse with the rubber band, the state machine, dragging (a whole
// move left of candle 0 refused), points beyond the last candle, the polyline's double clicks,
// the context menu's delete and hostile answers of the host.
#include <QApplication>
#include <QMenu>
#include <QMimeData>
#include <QDropEvent>
#include <QMouseEvent>
#include <stdexcept>

#include "ChartWindowFixture.h"
#include "FakeLsProvider.h"
#include "RecordingPaintDevice.h"
#include "data/ScaleEngine.h"
#include "gx/FigurePicture.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "gx/ls/LsUtil.h"

namespace {

using gx::LineStudy;

struct LineStudies : ChartWindowFixture {
    FakeLsProvider provider;

    void SetUp() override {
        ChartWindowFixture::SetUp();
        for (unsigned int m : {MSG_LS_CREATE_OBJECT, MSG_LS_DELETE, MSG_LS_SHAPE_SIZES, MSG_LS_GET_LIST_CONTROLPOINTER,
                               MSG_LS_PROPERTIES, MSG_LS_TITLE, MSG_LS_FOCUS, MSG_LS_ATTACH, MSG_LS_DETACH,
                               MSG_LS_DRAWING_MODE, MSG_LS_END_DRAWING, MSG_LS_BEFORE_PROPERTIES})
            host.on(m, [this, m](void* target, std::intptr_t p1, std::intptr_t p2) {
                const int r = provider.Handle(target, m, p1, p2);
                return r < 0 ? 1 : r;
            });
        AnswerMainWindow();
        Show("EURUSD");
        host.clear();
    }

    gx::Line& LineOf(int area) {
        return *widget->GetChart()->GetAreas()[std::size_t(area)]->GetLayers()[0]->GetIndicators()[0]->GetLines()[0];
    }
    gx::Line& Line() { return LineOf(0); }
    const pf::ScaleEngine& Engine() { return *Line().GetEngine(); }
    QPoint At(int column, float price) {
        return QPoint(gx::util::LsBase::CalcX(Line().GetEngine(), column), Engine().TranslateY(price));
    }
    void Mouse(QEvent::Type type, const QPoint& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, widget->mapToGlobal(at), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, modifiers);
        QApplication::sendEvent(widget.get(), &event);
    }
    void Click(const QPoint& at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        Mouse(QEvent::MouseButtonPress, at, modifiers);
        Mouse(QEvent::MouseButtonRelease, at, modifiers);
    }
    // A release of `button` (press and move are left-button events above).
    void Release(const QPoint& at, Qt::MouseButton button) {
        QMouseEvent event(QEvent::MouseButtonRelease, at, widget->mapToGlobal(at), button, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(widget.get(), &event);
    }
    QImage Image(const LineStudy& study) {
        QImage image(widget->size(), QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        study.Draw(painter);
        return image;
    }
    boost::shared_ptr<LineStudy> Study(std::size_t i = 0) {
        return i < Line().GetLineStudies().size() ? Line().GetLineStudies()[i] : boost::shared_ptr<LineStudy>();
    }
    // A study placed through the drawing mode, one click per point.
    boost::shared_ptr<LineStudy> Place(const std::string& tool, const std::vector<QPoint>& points) {
        return PlaceIn(0, tool, points);
    }
    // The same in the area at `area`: the study that area's line got last.
    boost::shared_ptr<LineStudy> PlaceIn(int area, const std::string& tool, const std::vector<QPoint>& points) {
        provider.tool = tool;
        for (const QPoint& p : points) {
            Mouse(QEvent::MouseMove, p);
            Click(p);
        }
        const std::vector<boost::shared_ptr<LineStudy> >& studies = LineOf(area).GetLineStudies();
        return studies.empty() ? boost::shared_ptr<LineStudy>() : studies.back();
    }
    // The whole window painted with its kept pictures, or with everything drawn directly.
    QImage PaintWindow(bool pictures) {
        gx::FigurePicture::SetEnabled(pictures);
        QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        widget->Draw(painter, true);
        painter.end();
        gx::FigurePicture::SetEnabled(true);
        return image;
    }
    // The paint with pictures comes first: drawing directly forgets the pictures.
    void ExpectSameAsDrawnDirectly(const char* when) {
        const QImage kept = PaintWindow(true);
        const QImage direct = PaintWindow(false);
        EXPECT_EQ(kept, direct) << when << ": a picture kept from before the change";
        EXPECT_EQ(PaintWindow(true), direct) << when << ": a picture made anew";
        PaintWindow(true);
        EXPECT_EQ(PaintWindow(true), direct) << when << ": the areas' pictures kept over several paints";
    }
    std::vector<QLine> Drawn(const LineStudy& study) {
        RecordingPaintDevice device;
        QPainter painter(&device);
        study.Draw(painter);
        painter.end();
        const QVector<QLine> lines = device.lines();
        return std::vector<QLine>(lines.begin(), lines.end());
    }
};

TEST_F(LineStudies, HostFailuresAtCreationAreRefusedAndTheChartGoesOn) {
    provider.zeroId = true;
    EXPECT_FALSE(widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Line", 0, false));
    EXPECT_EQ(host.find(MSG_LS_END_DRAWING).size(), 1u);
    provider.zeroId = false;
    provider.errorAfter = 1;  // the first exchange fails: the study leaves the host again
    EXPECT_FALSE(widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Line", 0, false));
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
    EXPECT_TRUE(Line().GetLineStudies().empty());
    // The constructor itself throws its fixed texts.
    provider.errorAfter = -1;
    provider.zeroId = true;
    try {
        LineStudy study(&Line(), provider.handle(), "Line", Line().GetEngine(), Line().Rect());
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "Could not create LS object. LS_CREATE_OBJECT message returned error");
    }
    Paint();
}

TEST_F(LineStudies, HostileCountsSizesAndTypesAreCappedOrLeftOut) {
    // Counts out of range: the study goes back to the host, nothing is sized by them.
    provider.overrideCounts = true;
    for (std::pair<int, int> counts : {std::make_pair(-5, 1), std::make_pair(2, 1 << 30), std::make_pair(1 << 30, 1)}) {
        provider.cpCount = counts.first;
        provider.shapeCount = counts.second;
        host.clear();
        EXPECT_FALSE(widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Line", 0, false));
        EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
        EXPECT_TRUE(host.find(MSG_LS_SHAPE_SIZES).empty());
    }
    // No output points: no hit.
    provider.cpCount = 0;
    provider.shapeCount = 1;
    boost::shared_ptr<LineStudy> study = widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Line", 0, false);
    ASSERT_TRUE(study);
    EXPECT_FALSE(study->PtInLS(MiddleOfArea(0)));

    provider.overrideCounts = false;
    provider.sizes = {-1, 1 << 30, 3};  // negative, huge and too small for a line's block
    provider.shapeType = -1;
    study = widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Arc", 0, false);
    ASSERT_TRUE(study);
    for (int i = 0; i < study->GetShapeCount(); ++i) EXPECT_LE(study->GetShapeDataSize(i), 3);
    EXPECT_TRUE(Drawn(*study).empty());

    provider.sizes.clear();
    provider.shapeType = 77;  // outside the table
    study = widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "HLine", 0, false);
    ASSERT_TRUE(study);
    Paint();
    EXPECT_FALSE(study->PtInLS(MiddleOfArea(0)));

    // All shapes together stay within the study's budget, however large the host's sizes.
    provider.overrideCounts = true;
    provider.cpCount = 1;
    provider.shapeCount = LineStudy::kMaxShapes;
    provider.sizes = {LineStudy::kMaxShapeBytes};
    study = widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "HLine", 0, false);
    ASSERT_TRUE(study);
    ASSERT_EQ(study->GetShapeCount(), LineStudy::kMaxShapes);
    long long total = 0;
    for (int i = 0; i < study->GetShapeCount(); ++i) total += study->GetShapeDataSize(i) + long(sizeof(lsShape));
    EXPECT_LE(total, LineStudy::kMaxStudyBytes);
    EXPECT_GT(study->GetShapeDataSize(0), 0);
    EXPECT_EQ(study->GetShapeDataSize(LineStudy::kMaxShapes - 1), 0);
    Paint();
}

// 3073 names a data array and a kind: every study of that kind on that array takes the new
// counts and asks the host for its shapes again; others are left alone.
TEST_F(LineStudies, HostUpdateResizesEveryStudyOfItsKindOnItsData) {
    const boost::shared_ptr<LineStudy> a = Place("Line", {At(5, 1.005f), At(15, 1.015f)});
    const boost::shared_ptr<LineStudy> b = Place("Line", {At(20, 1.005f), At(30, 1.015f)});
    const boost::shared_ptr<LineStudy> h = Place("HLine", {At(10, 1.01f)});
    ASSERT_TRUE(a && b && h && a != b);
    for (const auto& s : {a, b}) {
        provider.studies[s->GetId()].points = 3;
        provider.studies[s->GetId()].shapes = 2;
    }
    coreUpdateLs update;
    std::memset(&update, 0, sizeof update);
    update.dataArray = Line().GetArray();
    std::strcpy(update.kind, "Line");
    update.cpCount = 3;
    update.shapeCount = 2;
    const int exchanges = provider.exchanges;
    EXPECT_TRUE(widget->OnUpdateLS(&update));
    for (const auto& s : {a, b}) {
        EXPECT_EQ(s->GetCPCount(), 3);
        EXPECT_EQ(s->GetShapeCount(), 2);
        EXPECT_EQ(s->GetInPoints()[1].index, s == a ? 15 : 30);  // the points it had are kept
    }
    EXPECT_EQ(provider.exchanges - exchanges, 2);
    EXPECT_EQ(h->GetCPCount(), 1);
    EXPECT_EQ(h->GetShapeCount(), 1);
    Paint();

    // Another array, an unknown kind, counts out of range, no record: nothing changes.
    coreUpdateLs other = update;
    other.dataArray = &other;
    EXPECT_FALSE(widget->OnUpdateLS(&other));
    other = update;
    std::strcpy(other.kind, "Spiral");
    EXPECT_FALSE(widget->OnUpdateLS(&other));
    other = update;
    other.shapeCount = LineStudy::kMaxShapes + 1;
    EXPECT_FALSE(widget->OnUpdateLS(&other));
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_LS_UPDATE, 0, 0), 0);
    EXPECT_EQ(provider.exchanges, exchanges + 2);

    // A host failing the new exchange: the study leaves host and chart, nothing is thrown.
    update.cpCount = 1;
    update.shapeCount = 1;
    std::strcpy(update.kind, "HLine");
    host.clear();
    provider.errorAfter = provider.exchanges + 1;
    EXPECT_TRUE(widget->OnUpdateLS(&update));
    EXPECT_EQ(std::count(Line().GetLineStudies().begin(), Line().GetLineStudies().end(), h), 0);
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
    EXPECT_EQ(Line().GetLineStudies().size(), 2u);
}

TEST_F(LineStudies, PlacedPointByPointWithTheRubberBand) {
    provider.tool = "Line";
    const QPoint p0 = At(10, 1.005f), p1 = At(30, 1.015f);
    Mouse(QEvent::MouseButtonPress, p0);
    const boost::shared_ptr<LineStudy> study = Study();
    ASSERT_TRUE(study);
    EXPECT_EQ(study->GetState(), LineStudy::StateCreating | LineStudy::StateNewPoint);
    Mouse(QEvent::MouseButtonRelease, p0);
    EXPECT_EQ(study->GetState(), LineStudy::StateCreating);
    const int before = provider.exchanges;
    for (int column : {15, 20, 25}) Mouse(QEvent::MouseMove, At(column, 1.01f));
    EXPECT_EQ(provider.exchanges - before, 3);  // one exchange per move
    EXPECT_EQ(study->GetInPoints()[1].index, 25);
    host.clear();
    Mouse(QEvent::MouseMove, p1);
    Click(p1);
    EXPECT_EQ(study->GetState(), LineStudy::StateCreated);
    EXPECT_TRUE(study->IsFinished());
    EXPECT_EQ(host.find(MSG_LS_END_DRAWING).size(), 1u);
    EXPECT_EQ(study->GetInPoints()[0].index, 10);
    EXPECT_EQ(study->GetInPoints()[1].index, 30);
    EXPECT_TRUE(study->PtInLS((p0 + p1) / 2));
    // Selected: the line and its two markers.
    const std::vector<QLine> lines = Drawn(*study);
    EXPECT_EQ(lines.size(), 1u);
    int index = -1;
    EXPECT_TRUE(study->PtInCP(p1 + QPoint(2, -2), index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(study->PtInCP(p1 + QPoint(3, 0), index));
    // 5025 finds the window by the study's handle.
    EXPECT_TRUE(widget->HoldsObject(study->GetHandle()));
    gx::CRITICAL_POINT extremes;
    study->GetCriticalPoints(&extremes);
    EXPECT_EQ(extremes.minIndex, 10);
    EXPECT_FLOAT_EQ(extremes.maxValue, study->GetInPoints()[1].value);
    // Only one study is made per tool choice.
    Click(At(40, 1.0f));
    EXPECT_EQ(Line().GetLineStudies().size(), 1u);
}

TEST_F(LineStudies, WithoutShapesOnlyMarkersAreDrawn) {
    provider.overrideCounts = true;
    provider.cpCount = 2;
    provider.shapeCount = 0;
    const boost::shared_ptr<LineStudy> study = Place("Line", {At(5, 1.01f), At(9, 1.012f)});
    ASSERT_TRUE(study);
    EXPECT_TRUE(Drawn(*study).empty());
    EXPECT_FALSE(study->PtInLS(At(7, 1.011f)));
    QImage image(widget->size(), QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter imagePainter(&image);
    study->Draw(imagePainter);
    imagePainter.end();
    EXPECT_EQ(image.pixel(At(5, 1.01f)), QColor(provider.toolColor).rgb());  // marker in the study's colour
}

TEST_F(LineStudies, PointsBeyondTheLastCandleKeepTheirDistance) {
    const boost::shared_ptr<LineStudy> study = Place("VLine", {At(20, 1.0f)});
    ASSERT_TRUE(study);
    const int last = Line().Size() - 1;
    lsPointShape point{};
    study->RecomputePositionByIndex(point, last + 5);
    EXPECT_EQ(point.indexType, 1);
    EXPECT_EQ(point.index, 5);
    // Three candles arrive.
    Series& s = series.front();
    for (int i = 0; i < 3; ++i) s.records.push_back(s.records.back());
    s.array.points = reinterpret_cast<unsigned char*>(s.records.data());
    s.array.pointCount = std::int32_t(s.records.size());
    EXPECT_EQ(study->GetNormalizeIndex(point), last + 3 + 5);
    lsPointShape inside{};
    study->RecomputePositionByIndex(inside, 12);
    EXPECT_EQ(inside.indexType, 0);
    EXPECT_EQ(study->GetNormalizeIndex(inside), 12);
    EXPECT_TRUE(study->IsInFreeSpaceByTime(s.records.back().time + 3600 * 10));
    EXPECT_TRUE(study->IsInCandleSpaceByTime(s.records[5].time));
}

TEST_F(LineStudies, DraggedWholeOrByOnePointAndNeverLeftOfCandleZero) {
    const boost::shared_ptr<LineStudy> study = Place("Line", {At(2, 1.005f), At(12, 1.015f)});
    ASSERT_TRUE(study);
    const std::vector<lsPointShape> placed = study->GetInPoints();
    const QPoint middle = At(7, 1.01f);
    ASSERT_TRUE(study->PtInLS(middle));
    // Left by five columns would put point 0 at -3: refused, nothing moves.
    Mouse(QEvent::MouseButtonPress, middle);
    EXPECT_EQ(study->GetState(), LineStudy::StateMoving);
    Mouse(QEvent::MouseMove, middle);
    Mouse(QEvent::MouseMove, At(2, 1.01f));
    EXPECT_EQ(study->GetInPoints()[0].index, 2);
    EXPECT_EQ(study->GetInPoints()[1].index, 12);
    host.clear();
    Mouse(QEvent::MouseButtonRelease, At(2, 1.01f));
    EXPECT_EQ(study->GetState(), LineStudy::StateCreated);
    EXPECT_TRUE(host.find(MSG_UNDO_BEGIN).empty());  // nothing changed, nothing recorded
    // Right by four columns: the first move after the press only takes its place, then both
    // points follow; one undo step.
    Mouse(QEvent::MouseButtonPress, middle);
    Mouse(QEvent::MouseMove, At(9, 1.01f));
    EXPECT_EQ(study->GetInPoints()[0].index, 2);
    Mouse(QEvent::MouseMove, At(13, 1.01f));
    Mouse(QEvent::MouseButtonRelease, At(13, 1.01f));
    EXPECT_EQ(study->GetInPoints()[0].index, 6);
    EXPECT_EQ(study->GetInPoints()[1].index, 16);
    EXPECT_EQ(study->GetInPoints()[0].m_xTime, Line().GetTime(6));
    EXPECT_EQ(host.find(MSG_UNDO_BEGIN).size(), 1u);
    // One point by its marker: only that point moves, to the mouse's price.
    const QPoint marker = At(16, study->GetInPoints()[1].value);
    Mouse(QEvent::MouseButtonPress, marker);
    Mouse(QEvent::MouseMove, marker);
    Mouse(QEvent::MouseMove, At(20, 1.02f));
    Mouse(QEvent::MouseButtonRelease, At(20, 1.02f));
    EXPECT_EQ(study->GetInPoints()[0].index, 6);
    EXPECT_EQ(study->GetInPoints()[1].index, 20);
    EXPECT_NEAR(study->GetInPoints()[1].value, Engine().UnTranslateY(At(20, 1.02f).y()), 1e-5);
    (void)placed;
}

// The studies of a line are kept in the line's picture while none is being placed or moved:
// the window must look exactly as when every study is drawn straight onto it, before and
// after the studies change through the mouse and the host, and when the last one is gone.
TEST_F(LineStudies, KeptPicturesOfStudiesLookExactlyAsDrawnDirectly) {
    const auto paint = [this](bool pictures) { return PaintWindow(pictures); };
    const auto same = [this](const char* when) { ExpectSameAsDrawnDirectly(when); };
    // Prices inside the figures' range, so that no change below moves the scale: only the
    // studies change.
    const float low = Engine().GetMinPrice(), high = Engine().GetMaxPrice();
    const auto price = [low, high](double f) { return float(low + (high - low) * f); };
    // Without studies the area's grid and figures are one kept picture; with one they are
    // painted layer by layer again, and back to one picture once they are all gone.
    same("no study yet");
    ASSERT_TRUE(Place("Line", {At(2, price(0.3)), At(12, price(0.6))}));
    ASSERT_TRUE(Place("HLine", {At(5, price(0.5))}));
    const int last = Line().Size() - 1;
    // The study placed last is selected: at the right edge its markers stand out of the area.
    const boost::shared_ptr<LineStudy> edge = Place("Line", {At(last - 3, price(0.4)), At(last, price(0.7))});
    ASSERT_TRUE(edge && edge->IsSelected());
    same("placed");
    QImage before = paint(true);
    edge->Select(false);
    same("deselected");
    EXPECT_NE(paint(true), before);
    // Dragged by a point: the moving study is drawn afresh, and kept again once released.
    const boost::shared_ptr<LineStudy> first = Study(0);
    before = paint(true);
    const QPoint marker = At(12, first->GetInPoints()[1].value);
    Mouse(QEvent::MouseButtonPress, marker);
    Mouse(QEvent::MouseMove, marker);
    Mouse(QEvent::MouseMove, At(9, price(0.55)));
    same("while dragged");
    Mouse(QEvent::MouseButtonRelease, At(9, price(0.55)));
    same("released");
    EXPECT_NE(paint(true), before);
    // The host recolours a study's shapes in an exchange of its own.
    before = paint(true);
    provider.studies[first->GetId()].color = 0xC00000;
    first->Refresh(false);
    same("recoloured by the host");
    EXPECT_NE(paint(true), before);
    edge->Delete();
    same("one deleted");
    for (boost::shared_ptr<LineStudy> study = Study(); study; study = Study()) {
        study->Delete();
        Line().DeleteLineStudy(study.get());
    }
    same("all deleted");
}

// Stacked areas keep their grids and figures in one picture each, while the markers of a
// selected study reach past its area into the neighbours: above into the figures of the
// area over it, below into the caption strip of the area under it.
TEST_F(LineStudies, StudiesAtTheEdgesOfStackedAreasLookExactlyAsDrawnDirectly) {
    Show("GBPUSD");
    Show("USDJPY");
    ASSERT_EQ(widget->GetChart()->GetAreas().size(), 3u);
    ExpectSameAsDrawnDirectly("three areas");
    const QRect middle = widget->GetChart()->GetAreas()[1]->Rect();
    const QPoint top(middle.left() + middle.width() / 3, middle.top());
    const QPoint bottom(middle.left() + middle.width() * 2 / 3, middle.bottom());
    const boost::shared_ptr<LineStudy> edge = PlaceIn(1, "Line", {top, bottom});
    ASSERT_TRUE(edge && edge->IsSelected());
    ExpectSameAsDrawnDirectly("a selected study from edge to edge of the middle area");
    edge->Select(false);
    ExpectSameAsDrawnDirectly("deselected");
    edge->Select(true);
    ExpectSameAsDrawnDirectly("selected again");
}

TEST_F(LineStudies, ChannelMarkersOfPointsOneAndThreeSitMidwayOnTheirLines) {
    const QPoint p0 = At(10, 1.004f), p1 = At(14, 1.0f), p2 = At(30, 1.012f), p3 = At(20, 1.016f);
    const boost::shared_ptr<LineStudy> channel = Place("Chanel", {p0, p1, p2, p3});
    ASSERT_TRUE(channel);
    ASSERT_EQ(channel->GetState(), LineStudy::StateCreated);
    const int x = (p0.x() + p2.x()) / 2;
    const float width = channel->GetInPoints()[3].value - channel->GetInPoints()[0].value;
    const int top = (Engine().TranslateY(channel->GetInPoints()[0].value) + Engine().TranslateY(channel->GetInPoints()[2].value)) / 2;
    const int bottom = (Engine().TranslateY(channel->GetInPoints()[0].value + width) +
                        Engine().TranslateY(channel->GetInPoints()[2].value + width)) / 2;
    int index = -1;
    EXPECT_TRUE(channel->PtInCP(QPoint(x, top), index));
    EXPECT_EQ(index, 1);
    EXPECT_TRUE(channel->PtInCP(QPoint(x, bottom), index));
    EXPECT_EQ(index, 3);
    EXPECT_FALSE(channel->PtInCP(p1, index) && index == 1);  // not at its own place
}

TEST_F(LineStudies, PitchforkCountChangeLeavesTheLastHandleToTheHost) {
    const boost::shared_ptr<LineStudy> study =
        widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Andrews Pitchfork", 0, false);
    ASSERT_TRUE(study);
    study->UpdateCPCount(4);
    EXPECT_EQ(study->GetInPoints()[3].index, -1);
    const boost::shared_ptr<LineStudy> line = widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "Line", 0, false);
    line->UpdateCPCount(4);
    EXPECT_EQ(line->GetInPoints()[3].index, 0);
}

TEST_F(LineStudies, PolyLineDoubleClicksFinishDeleteAndInsertPoints) {
    // Finished early by a double click: the fourth point ends it.
    std::vector<QPoint> points;
    for (int i = 0; i < 3; ++i) points.push_back(At(5 + 4 * i, 1.004f + 0.002f * float(i % 2)));
    boost::shared_ptr<LineStudy> poly = Place("PolyLine", points);
    const QPoint end = At(21, 1.01f);
    Mouse(QEvent::MouseMove, end);
    Click(end);
    Mouse(QEvent::MouseButtonDblClick, end);
    Mouse(QEvent::MouseButtonRelease, end);
    EXPECT_EQ(poly->GetState(), LineStudy::StateCreated);
    EXPECT_EQ(poly->GetInPoints()[3].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(poly->GetInPoints()[3].index, 21);
    // A double click on a segment inserts a point there.
    const QPoint onSegment = (points[0] + points[1]) / 2;
    ASSERT_TRUE(poly->PtInLS(onSegment));
    Mouse(QEvent::MouseButtonDblClick, onSegment);
    EXPECT_EQ(poly->GetInPoints()[4].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(poly->GetInPoints()[1].m_typePoint, LS_POINT_PLACED);
    // Deleting the inserted point by its marker.
    Mouse(QEvent::MouseButtonDblClick, At(poly->GetInPoints()[1].index, poly->GetInPoints()[1].value));
    EXPECT_EQ(poly->GetInPoints()[3].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(poly->GetInPoints()[1].index, 9);

    // Ten points finish by themselves; deleting the tenth only moves the terminator.
    points.clear();
    for (int i = 0; i < 10; ++i) points.push_back(At(2 + 5 * i, i % 2 ? 1.02f : 1.004f));
    poly = Place("PolyLine", points);
    ASSERT_EQ(poly->GetState(), LineStudy::StateCreated);
    EXPECT_EQ(poly->GetInPoints()[9].m_typePoint, LS_POINT_LAST);
    const lsPointShape ninth = poly->GetInPoints()[8];
    Mouse(QEvent::MouseButtonDblClick, points[9]);
    EXPECT_EQ(poly->GetInPoints()[8].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(poly->GetInPoints()[8].index, ninth.index);
    // Nine points take no inserted point.
    const QPoint between = (points[2] + points[3]) / 2;
    ASSERT_TRUE(poly->PtInLS(between));
    const std::vector<lsPointShape> nine = poly->GetInPoints();
    Mouse(QEvent::MouseButtonDblClick, between);
    for (int i = 0; i < 9; ++i) EXPECT_EQ(poly->GetInPoints()[std::size_t(i)].index, nine[std::size_t(i)].index);

    // Two points: a marker's double click deletes nothing (one point would be left); a
    // double click off every segment still inserts, after the first point.
    poly = Place("PolyLine", {At(5, 1.005f)});
    const QPoint second = At(12, 1.006f);
    Mouse(QEvent::MouseMove, second);
    Click(second);
    Mouse(QEvent::MouseButtonDblClick, second);
    Mouse(QEvent::MouseButtonRelease, second);
    ASSERT_EQ(poly->GetInPoints()[1].m_typePoint, LS_POINT_LAST);
    Mouse(QEvent::MouseButtonDblClick, At(5, 1.005f));
    EXPECT_EQ(poly->GetInPoints()[0].index, 5);
    EXPECT_EQ(poly->GetInPoints()[1].m_typePoint, LS_POINT_LAST);
    const QPoint away = At(40, 1.03f);
    ASSERT_FALSE(poly->PtInLS(away));
    Mouse(QEvent::MouseButtonDblClick, away);
    EXPECT_EQ(poly->GetInPoints()[1].index, 40);
    EXPECT_EQ(poly->GetInPoints()[1].m_typePoint, LS_POINT_PLACED);
    EXPECT_EQ(poly->GetInPoints()[2].m_typePoint, LS_POINT_LAST);
    EXPECT_EQ(poly->GetInPoints()[2].index, 12);
}

TEST_F(LineStudies, ContextMenuDeletesTheStudyInTheHost) {
    const boost::shared_ptr<LineStudy> study = Place("HLine", {At(10, 1.01f)});
    ASSERT_TRUE(study);
    widget->FillContextMenu();
    // Its three entries (select, properties, delete) are all in the properties menu: its
    // title, then the two that say what they do, with the title.
    for (const auto& other : {widget->GetChart()->GetSelectMenu(), widget->GetChart()->GetDeleteMenu()})
        for (QAction* a : other->actions()) EXPECT_FALSE(a->text().endsWith(QStringLiteral("HLine")));
    QList<QAction*> entries;
    for (QAction* a : widget->GetChart()->GetPropMenu()->actions())
        if (a->text().endsWith(QStringLiteral("HLine"))) entries.push_back(a);
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries[0]->text(), QStringLiteral("HLine"));
    EXPECT_NE(entries[1]->text(), entries[2]->text());
    host.clear();
    entries[0]->trigger();  // select shows the properties
    EXPECT_EQ(host.find(MSG_LS_PROPERTIES).size(), 1u);
    QAction* action = entries[2];
    host.clear();
    action->trigger();
    EXPECT_TRUE(Line().GetLineStudies().empty());
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
    EXPECT_EQ(host.find(MSG_LS_DETACH).size(), 1u);
    EXPECT_EQ(host.find(MSG_UNDO_BEGIN).size(), 1u);
    EXPECT_EQ(widget->GetChart()->GetAreaCount(), 1);  // the line stays
}

TEST_F(LineStudies, DroppedPrimitiveMakesAStudyAtTheDropPoint) {
    host.on(MSG_DESCRIBE_PRIMITIVE, [this](void*, std::intptr_t, std::intptr_t p2) {
        fxwcDropInstrument* r = reinterpret_cast<fxwcDropInstrument*>(p2);
        r->baseHandle = provider.handle();
        std::strcpy(r->symbol, "HLine");
        std::strcpy(r->instrumentType, LS_PRIMITIVE_KIND);
        r->style = 0x00FF00;
        return 0;
    });
    QMimeData data;
    data.setData("kovar/primitive", "HLine");
    const QPoint at = At(15, 1.012f);
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject*>(widget.get())->event(&drop);
    const boost::shared_ptr<LineStudy> study = Study();
    ASSERT_TRUE(study);
    EXPECT_EQ(study->GetState(), LineStudy::StateCreated);
    EXPECT_EQ(study->GetInPoints()[0].index, 15);
    EXPECT_TRUE(study->PtInLS(QPoint(At(40, 0).x(), at.y())));
    EXPECT_EQ(widget->GetChart()->GetAreaCount(), 1);
}

// ---- selection, deletion and placement by the mouse ----

// The context menu's delete takes the study and everything else selected, in one undo step.
TEST_F(LineStudies, ContextMenuDeleteTakesEverySelectedStudy) {
    const boost::shared_ptr<LineStudy> a = Place("HLine", {At(10, 1.004f)});
    const boost::shared_ptr<LineStudy> b = Place("HLine", {At(20, 1.012f)});
    const boost::shared_ptr<LineStudy> c = Place("HLine", {At(30, 1.016f)});
    ASSERT_TRUE(a && b && c);
    a->Select(true);
    b->Select(true);
    c->Select(false);
    widget->FillContextMenu();
    QAction* deleteA = nullptr;
    int seen = 0;
    for (QAction* action : widget->GetChart()->GetPropMenu()->actions())
        if (action->text().endsWith(QStringLiteral("HLine")) && seen++ == 2) deleteA = action;  // a's third entry
    ASSERT_TRUE(deleteA);
    host.clear();
    deleteA->trigger();
    ASSERT_EQ(Line().GetLineStudies().size(), 1u);
    EXPECT_EQ(Study(0), c);
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 2u);
    EXPECT_EQ(host.find(MSG_UNDO_BEGIN).size(), 1u);
}

// A plain press decides each study's selection; with Shift a hit adds to it and a miss keeps
// it; a plain press on one of several selected studies keeps them all.
TEST_F(LineStudies, ShiftPressAddsToTheSelection) {
    const boost::shared_ptr<LineStudy> a = Place("HLine", {At(10, 1.004f)});
    const boost::shared_ptr<LineStudy> b = Place("HLine", {At(20, 1.014f)});
    ASSERT_TRUE(a && b);
    const QPoint onA = At(30, 1.004f), onB = At(30, 1.014f), off = At(30, 1.009f);
    ASSERT_TRUE(a->PtInLS(onA) && !a->PtInLS(onB) && b->PtInLS(onB) && !a->PtInLS(off) && !b->PtInLS(off));
    Click(onA);
    EXPECT_TRUE(a->IsSelected());
    EXPECT_FALSE(b->IsSelected());
    Click(onB, Qt::ShiftModifier);
    EXPECT_TRUE(a->IsSelected());
    EXPECT_TRUE(b->IsSelected());
    Click(off, Qt::ShiftModifier);
    EXPECT_TRUE(a->IsSelected() && b->IsSelected());
    Click(onA);
    EXPECT_TRUE(a->IsSelected() && b->IsSelected());
    Click(off);
    EXPECT_FALSE(a->IsSelected() || b->IsSelected());
    Click(onB);
    EXPECT_FALSE(a->IsSelected());
    EXPECT_TRUE(b->IsSelected());
}

// One point may go left of candle 0 (a whole study may not); a dropped study beyond the last
// candle takes the last candle's time and keeps its distance from it as its position.
TEST_F(LineStudies, OnePointLeftOfCandleZeroAndADropBeyondTheLastCandle) {
    const boost::shared_ptr<LineStudy> study = Place("Line", {At(2, 1.005f), At(12, 1.015f)});
    ASSERT_TRUE(study);
    // The view starts five columns before the data, so that there is room left of candle 0.
    Line().GetEngine()->SetFirstColumn(-5);
    Paint();
    const QPoint marker = At(2, study->GetInPoints()[0].value);
    ASSERT_GT(At(-2, 1.0f).x(), widget->GetChart()->GetAreas()[0]->Rect().left());
    Mouse(QEvent::MouseButtonPress, marker);
    Mouse(QEvent::MouseMove, marker);
    Mouse(QEvent::MouseMove, At(-2, 1.005f));
    Mouse(QEvent::MouseButtonRelease, At(-2, 1.005f));
    EXPECT_EQ(study->GetInPoints()[0].index, -2);
    EXPECT_EQ(study->GetInPoints()[0].indexType, 0);
    EXPECT_EQ(study->GetInPoints()[1].index, 12);

    host.on(MSG_DESCRIBE_PRIMITIVE, [this](void*, std::intptr_t, std::intptr_t p2) {
        fxwcDropInstrument* r = reinterpret_cast<fxwcDropInstrument*>(p2);
        r->baseHandle = provider.handle();
        std::strcpy(r->symbol, "VLine");
        std::strcpy(r->instrumentType, LS_PRIMITIVE_KIND);
        return 0;
    });
    Line().GetEngine()->SetFirstColumn(0);
    Paint();
    QMimeData data;
    data.setData("kovar/primitive", "VLine");
    const int last = Line().Size() - 1;
    QDropEvent drop(At(last + 3, 1.01f), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    static_cast<QObject*>(widget.get())->event(&drop);
    const boost::shared_ptr<LineStudy> dropped = Study(1);
    ASSERT_TRUE(dropped);
    EXPECT_EQ(dropped->GetInPoints()[0].m_xTime, Line().GetTime(last));
    EXPECT_EQ(dropped->GetInPoints()[0].indexType, 1);
    EXPECT_EQ(dropped->GetInPoints()[0].index, 3);
}

// A placing press counts the point where the rubber band left it and asks the host nothing
// more; a release of any button ends a drag; a study given no points is done at its release.
TEST_F(LineStudies, PlacementPressesAndReleasesFollowTheSequence) {
    provider.tool = "Chanel";
    const QPoint p0 = At(10, 1.004f), p1 = At(16, 1.0f);
    Click(p0);
    const boost::shared_ptr<LineStudy> channel = Study();
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->GetInPoints()[0].index, 10);  // the first point: the press that made it
    Mouse(QEvent::MouseMove, p1);
    const int exchanges = provider.exchanges;
    Mouse(QEvent::MouseButtonPress, At(20, 1.01f));  // no move brought the band here
    EXPECT_EQ(provider.exchanges, exchanges);
    EXPECT_EQ(channel->GetInPoints()[1].index, 16);
    EXPECT_EQ(channel->GetState(), LineStudy::StateCreating | LineStudy::StateNewPoint);
    Mouse(QEvent::MouseButtonRelease, At(20, 1.01f));
    EXPECT_EQ(channel->GetState(), LineStudy::StateCreating);
    EXPECT_EQ(channel->GetPlacedCount(), 2);
    channel->CancelCreatingLS(false);

    const boost::shared_ptr<LineStudy> line = Place("HLine", {At(10, 1.01f)});
    ASSERT_TRUE(line && line->GetState() == LineStudy::StateCreated);
    Mouse(QEvent::MouseButtonPress, At(20, 1.01f));
    ASSERT_EQ(line->GetState(), LineStudy::StateMoving);
    Release(At(20, 1.01f), Qt::RightButton);
    EXPECT_EQ(line->GetState(), LineStudy::StateCreated);

    provider.overrideCounts = true;
    provider.cpCount = 0;
    provider.shapeCount = 1;
    provider.tool = "HLine";
    Click(At(30, 1.01f));
    const boost::shared_ptr<LineStudy> empty = Study(Line().GetLineStudies().size() - 1);
    ASSERT_TRUE(empty && empty != line);
    EXPECT_EQ(empty->GetState(), LineStudy::StateCreated);
}

// A host failing the exchange of a placing press or of a polyline's double click: the study
// leaves host and line, nothing escapes the window, and the drawing tool starts anew.
TEST_F(LineStudies, HostFailingAMouseStepRemovesTheStudyCleanly) {
    provider.tool = "HLine";
    provider.errorAfter = provider.exchanges + 2;  // creation's exchange passes, the press's fails
    Click(At(10, 1.01f));
    EXPECT_TRUE(Line().GetLineStudies().empty());
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
    provider.errorAfter = -1;
    const boost::shared_ptr<LineStudy> next = Place("HLine", {At(12, 1.01f)});
    ASSERT_TRUE(next);
    EXPECT_EQ(next->GetState(), LineStudy::StateCreated);
    next->Delete();
    Line().DeleteLineStudy(next.get());

    std::vector<QPoint> points = {At(5, 1.004f), At(9, 1.006f), At(13, 1.004f)};
    const boost::shared_ptr<LineStudy> poly = Place("PolyLine", points);
    Mouse(QEvent::MouseButtonDblClick, points.back());
    Mouse(QEvent::MouseButtonRelease, points.back());
    ASSERT_EQ(poly->GetState(), LineStudy::StateCreated);
    host.clear();
    provider.errorAfter = provider.exchanges + 1;
    const QPoint onSegment = (points[0] + points[1]) / 2;
    ASSERT_TRUE(poly->PtInLS(onSegment));
    EXPECT_NO_THROW(Mouse(QEvent::MouseButtonDblClick, onSegment));
    EXPECT_TRUE(Line().GetLineStudies().empty());
    EXPECT_EQ(host.find(MSG_LS_DELETE).size(), 1u);
    Paint();
}

// ---- drawing and hit tests ----

TEST_F(LineStudies, TerminatorsMarkersAndShapeSizes) {
    // Any study's shapes end at a terminating point: a channel ended at its third point
    // keeps its first line and loses its third.
    const boost::shared_ptr<LineStudy> channel =
        Place("Chanel", {At(10, 1.004f), At(14, 1.0f), At(30, 1.012f), At(20, 1.016f)});
    ASSERT_TRUE(channel);
    const QPoint onFirst = At(20, 1.008f), onThird = At(20, 1.020f);
    ASSERT_TRUE(channel->PtInLS(onFirst));
    ASSERT_TRUE(channel->PtInLS(onThird));
    std::vector<lsPointShape> points = channel->GetInPoints();
    points[2].m_typePoint = LS_POINT_LAST;
    channel->RestorePoints(points);
    EXPECT_TRUE(channel->PtInLS(onFirst));
    EXPECT_FALSE(channel->PtInLS(onThird));

    // A polyline finished by a double click shows its markers in its shapes' colour.
    std::vector<QPoint> corners = {At(5, 1.004f), At(9, 1.008f), At(13, 1.004f)};
    const boost::shared_ptr<LineStudy> poly = Place("PolyLine", {corners[0], corners[1]});
    // A double click at the third corner: press, release, double click, release.
    Mouse(QEvent::MouseMove, corners[2]);
    Click(corners[2]);
    Mouse(QEvent::MouseButtonDblClick, corners[2]);
    Mouse(QEvent::MouseButtonRelease, corners[2]);
    EXPECT_EQ(poly->GetInPoints()[2].m_typePoint, LS_POINT_LAST);
    ASSERT_EQ(poly->GetState(), LineStudy::StateCreated);
    ASSERT_TRUE(poly->IsSelected());
    EXPECT_EQ(Image(*poly).pixel(corners[0]), QColor(provider.toolColor).rgb());

    // 4505 is asked also of a study without shapes.
    provider.overrideCounts = true;
    provider.cpCount = 1;
    provider.shapeCount = 0;
    host.clear();
    ASSERT_TRUE(widget->StartLineStudy(MiddleOfArea(0), provider.handle(), "HLine", 0, false));
    EXPECT_EQ(host.find(MSG_LS_SHAPE_SIZES).size(), 1u);
}

// A double click on a study still being placed opens its properties (and ends a polyline).
TEST_F(LineStudies, DoubleClickOnAStudyBeingPlacedOpensItsProperties) {
    const std::vector<QPoint> corners = {At(5, 1.004f), At(15, 1.012f)};
    const boost::shared_ptr<LineStudy> poly = Place("PolyLine", corners);
    ASSERT_TRUE(poly && (poly->GetState() & LineStudy::StateCreating));
    const QPoint onSegment = (corners[0] + corners[1]) / 2;
    ASSERT_TRUE(poly->PtInLS(onSegment));
    host.clear();
    Mouse(QEvent::MouseButtonDblClick, onSegment);
    EXPECT_EQ(host.find(MSG_LS_PROPERTIES).size(), 1u);
    EXPECT_EQ(host.find(MSG_LS_BEFORE_PROPERTIES).size(), 1u);
    EXPECT_EQ(poly->GetState(), LineStudy::StateCreated);
}

}  // namespace
