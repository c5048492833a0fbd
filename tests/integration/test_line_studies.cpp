// Line studies drawn on a real chart window through the module's entry points: the study
// tool is chosen in the emulated terminal, the chart is driven with mouse and key events at
// the pixels the status bar names, the host's provider computes the geometry. Placing with
// the rubber band, selecting, dragging, undoing, saving and restoring, deleting, and a
// terminal that answers badly.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QLabel>
#include <QImage>
#include <QMouseEvent>
#include <QPointer>
#include <QTemporaryDir>
#include <QWidget>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <ostream>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "ModuleHostTest.h"
#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/StudyGestures.h"
#include "host/UndoStack.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "host/data/ChartObject.h"

using host::StudyPoint;
using host::data::ChartType;

namespace {

const QSize kSize(1000, 700);

class StudiesOnAChart : public ModuleHostTest {
protected:
    void SetUp() override {
        Start();
        widget = Charts().create(ChartType::PointAndFigure);
        ASSERT_NE(widget, nullptr);
        ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
        ASSERT_FALSE(Picture().isNull());
        chart = Charts().chartWidget(widget);
        ASSERT_NE(chart, nullptr);
        // The newest columns in view, with the free space after them.
        Charts().pressKey(widget, Qt::Key_End);
        const auto objects = emulator->data().chartObjects();
        ASSERT_EQ(objects.size(), 1u);
        records = objects[0]->records();
        ASSERT_GT(records.size(), 300u);
    }
    void TearDown() override {
        if (emulator) emulator->charts().destroyAll();
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::LineStudies& LS() { return emulator->studies(); }
    QImage Picture() { return Charts().grab(widget, kSize); }
    std::size_t Count(unsigned int message) { return H().journal().find(message).size(); }
    // A point on the column `back` columns before the last one.
    StudyPoint Column(int back, double price) { return StudyPoint{records[records.size() - 1 - std::size_t(back)].time, price}; }
    QPoint Pixel(const StudyPoint& p) {
        QPoint at;
        std::string error;
        EXPECT_TRUE(host::StudyPixel(*emulator, widget, p, &at, &error)) << error;
        return at;
    }
    void Mouse(QEvent::Type type, const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
               Qt::MouseButtons buttons = Qt::LeftButton, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(chart, &event);
    }
    void Move(const QPoint& at, Qt::MouseButtons buttons = Qt::NoButton) {
        Mouse(QEvent::MouseMove, at, Qt::NoButton, buttons);
    }
    void Click(const QPoint& at) {
        Mouse(QEvent::MouseButtonPress, at);
        Mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    }
    // A press at `from`, moves in steps with the button held (the first, at `from`, only
    // gives the study its drag position), a release at `to`.
    void Drag(const QPoint& from, const QPoint& to) {
        Mouse(QEvent::MouseButtonPress, from);
        for (int s = 0; s <= 5; ++s) Move(from + (to - from) * s / 5, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }
    std::int32_t Place(const std::string& name, const std::vector<StudyPoint>& points) {
        std::int32_t id = 0;
        std::string error;
        EXPECT_TRUE(host::PlaceStudy(*emulator, widget, name, points, &id, &error)) << name << ": " << error;
        return id;
    }
    // A pixel of the first area far from anything drawn: a click there selects nothing.
    QPoint Empty() { return Pixel(Column(290, 0.0)) + QPoint(0, -3); }
    // The one live study's input points as the chart sent them last.
    std::vector<lsPointShape> PointsOf(std::int32_t id) {
        const host::LineStudies::Study* s = LS().study(id);
        return s ? s->in : std::vector<lsPointShape>();
    }
    std::int32_t Newest() {
        const std::vector<std::int32_t> ids = LS().ids();
        return ids.empty() ? 0 : ids.back();
    }

    // The placement tool's colour as the chart paints it (0x0000C0, in either byte order).
    static bool Ink(QRgb pixel) {
        const QRgb c = pixel & 0xFFFFFFu;
        return c == 0x0000C0u || c == 0xC00000u;
    }
    // The centre of a selection marker (a filled 5 x 5 square in the study's colour) within
    // eight pixels of `near`; `near` itself when none is found.
    static QPoint Marker(const QImage& image, const QPoint& near) {
        QPoint best = near;
        int bestDistance = 1 << 30;
        for (int dy = -8; dy <= 8; ++dy)
            for (int dx = -8; dx <= 8; ++dx) {
                const QPoint c = near + QPoint(dx, dy);
                bool full = true;
                for (int y = -2; y <= 2 && full; ++y)
                    for (int x = -2; x <= 2 && full; ++x) {
                        const QPoint p = c + QPoint(x, y);
                        full = image.rect().contains(p) && Ink(image.pixel(p));
                    }
                if (full && dx * dx + dy * dy < bestDistance) best = c, bestDistance = dx * dx + dy * dy;
            }
        return best;
    }
    // Where the study's control points are drawn (their markers when selected).
    std::vector<QPoint> MarkersOf(std::int32_t id, const QImage& image) {
        std::vector<QPoint> out;
        const host::LineStudies::Study* s = LS().study(id);
        if (!s) return out;
        for (const lsPointShape& p : s->out) {
            if (p.m_typePoint == LS_POINT_NOT_PLACED) break;
            out.push_back(Marker(image, Pixel(StudyPoint{p.m_xTime, double(p.value)})));
            if (p.m_typePoint == LS_POINT_LAST) break;
        }
        return out;
    }
    // A pixel drawn by the study's shapes, clear of every marker (a press there takes the
    // whole study), the one nearest its first point. The study is selected: its markers show.
    QPoint OnTheStudy(std::int32_t id) {
        const QImage image = Picture();
        const std::vector<QPoint> first = MarkersOf(id, image);
        if (first.empty()) return QPoint();
        std::vector<QPoint> markers;
        for (int y = 2; y + 2 < image.height(); ++y)
            for (int x = 2; x + 2 < image.width(); ++x)
                if (Ink(image.pixel(x, y))) {
                    bool full = true;
                    for (int k = 0; k < 25 && full; ++k) full = Ink(image.pixel(x - 2 + k % 5, y - 2 + k / 5));
                    if (full) markers.push_back(QPoint(x, y));
                }
        QPoint best;
        int bestDistance = 1 << 30;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                if (!Ink(image.pixel(x, y))) continue;
                bool clear = true;
                for (const QPoint& m : markers) clear = clear && std::max(std::abs(m.x() - x), std::abs(m.y() - y)) > 5;
                const int d = (QPoint(x, y) - first[0]).manhattanLength();
                if (clear && d < bestDistance) best = QPoint(x, y), bestDistance = d;
            }
        return best;
    }
    // The window saved as a layout, destroyed and loaded again: the restored window.
    void SaveAndReload() {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("studies.xml"));
        QString why;
        ASSERT_TRUE(emulator->layouts().save(widget, path, &why)) << why.toStdString();
        ASSERT_TRUE(Charts().destroy(widget));
        widget = emulator->layouts().load(ChartType::PointAndFigure, path, &why);
        ASSERT_NE(widget, nullptr) << why.toStdString();
        chart = Charts().chartWidget(widget);
        ASSERT_NE(chart, nullptr);
    }
    QStringList Steps() { return emulator->undo().titles(); }
    void Undo() {
        const host::UndoStack::Undo u = emulator->undo().undo();
        ASSERT_TRUE(u.sent && u.replied);
        EXPECT_EQ(u.result, 0);
    }

    void* widget = nullptr;
    QWidget* chart = nullptr;
    std::vector<fxChartTypeRecord> records;
};

bool SamePoints(const std::vector<lsPointShape>& a, const std::vector<lsPointShape>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].m_typePoint != b[i].m_typePoint || a[i].m_xTime != b[i].m_xTime || a[i].index != b[i].index ||
            a[i].indexType != b[i].indexType || a[i].value != b[i].value)
            return false;
    return true;
}

}  // namespace

TEST_F(StudiesOnAChart, TheStatusBarLeadsToThePixelOfAColumnAndAPrice) {
    QLabel* time = emulator->mainWindow().timeLabel();
    QLabel* price = emulator->mainWindow().priceLabel();
    for (int back : {0, 7, 150, 290}) {
        const std::size_t i = records.size() - 1 - std::size_t(back);
        const double wanted = double(records[i].value);
        // A time inside the column (after its first quote) still names that column.
        const QPoint at = Pixel(StudyPoint{records[i].time + 60, wanted});
        Move(at);
        EXPECT_EQ(QDateTime::fromString(time->text(), QStringLiteral("dd.MM.yyyy hh:mm:ss")).toSecsSinceEpoch() -
                      QDateTime::fromString(QStringLiteral("01.01.1970 00:00:00"), QStringLiteral("dd.MM.yyyy hh:mm:ss"))
                          .toSecsSinceEpoch(),
                  records[i].time)
            << "column " << back << " from the end";
        // Within two rows of pixels.
        EXPECT_NEAR(price->text().toDouble(), wanted, 0.0007) << "column " << back << " from the end";
    }
    // Out of view: before the first column shown, or after the free space.
    QPoint at;
    std::string error;
    EXPECT_FALSE(host::StudyPixel(*emulator, widget, StudyPoint{0, 1.5}, &at, &error));
    EXPECT_NE(error.find("not in view"), std::string::npos) << error;
    // After the last column, with the end of the data in view: the last column.
    const QPoint last = Pixel(StudyPoint{records.back().time, 1.5});
    EXPECT_EQ(Pixel(StudyPoint{records.back().time + 86400, 1.5}), last);
    // Scrolled back to the start: the end is out of view.
    Charts().pressKey(widget, Qt::Key_Home);
    EXPECT_FALSE(host::StudyPixel(*emulator, widget, StudyPoint{records.back().time, 1.5}, &at, &error));
}

TEST_F(StudiesOnAChart, EveryStudyIsPlacedPointByPointWithTheRubberBand) {
    const struct {
        const char* name;
        int clicks;
        int firstColumn;
    } studies[] = {{"HLine", 1, 280}, {"VLine", 1, 260}, {"Line", 2, 240}, {"Text", 1, 220},
                   {"Arc", 2, 200},   {"Chanel", 4, 170}, {"Andrews Pitchfork", 4, 130}, {"PolyLine", 3, 80}};
    // A price in the middle of the first area.
    const double price = double(records[records.size() - 150].value);
    for (const auto& s : studies) {
        SCOPED_TRACE(s.name);
        std::vector<QPoint> pixels;
        std::vector<std::int32_t> times;
        for (int k = 0; k < s.clicks; ++k) {
            const StudyPoint p = Column(s.firstColumn - 8 * k, price + 0.004 * (k % 2));
            pixels.push_back(Pixel(p));
            times.push_back(p.time);
        }
        const std::size_t created = Count(MSG_LS_CREATE_OBJECT);
        const int ended = LS().endedDrawing();
        ASSERT_TRUE(LS().chooseTool(s.name));
        for (int k = 0; k < s.clicks; ++k) {
            if (k > 0) {
                // The rubber band: each move while placing is one exchange with the host.
                for (int step = 1; step <= 3; ++step) {
                    const std::size_t before = Count(MSG_LS_GET_LIST_CONTROLPOINTER);
                    Move(pixels[std::size_t(k) - 1] + (pixels[std::size_t(k)] - pixels[std::size_t(k) - 1]) * step / 3);
                    EXPECT_EQ(Count(MSG_LS_GET_LIST_CONTROLPOINTER), before + 1) << "move " << step << " to point " << k;
                }
            } else {
                Move(pixels[0]);
            }
            const std::size_t attached = Count(MSG_LS_ATTACH);
            Click(pixels[std::size_t(k)]);
            if (k == 0) {
                EXPECT_EQ(Count(MSG_LS_CREATE_OBJECT), created + 1);
            }
            if (k + 1 == s.clicks && std::string(s.name) != "PolyLine") {
                EXPECT_EQ(LS().endedDrawing(), ended + 1) << "3501 when the last point is placed";
                EXPECT_GT(Count(MSG_LS_ATTACH), attached) << "3068 when the study is finished";
            } else {
                EXPECT_EQ(LS().endedDrawing(), ended) << "still placing after point " << k;
            }
        }
        if (std::string(s.name) == "PolyLine") {
            // Finished early by a double click on its last point.
            Mouse(QEvent::MouseButtonDblClick, pixels.back());
            Mouse(QEvent::MouseButtonRelease, pixels.back(), Qt::LeftButton, Qt::NoButton);
            EXPECT_EQ(LS().endedDrawing(), ended + 1);
        }
        EXPECT_TRUE(LS().tool().empty()) << "the chart ended the drawing mode";
        const std::vector<lsPointShape> in = PointsOf(Newest());
        ASSERT_GE(in.size(), std::size_t(s.clicks));
        for (int k = 0; k < s.clicks && std::string(s.name) != "Andrews Pitchfork"; ++k)
            EXPECT_EQ(in[std::size_t(k)].m_xTime, times[std::size_t(k)]) << "point " << k;
        if (std::string(s.name) == "PolyLine") {
            EXPECT_EQ(in[2].m_typePoint, LS_POINT_LAST);
        }
    }
    EXPECT_EQ(LS().ids().size(), 8u);
}

TEST_F(StudiesOnAChart, EveryStudySavedInALayoutComesBackWithTheSamePicture) {
    const double p = double(records[records.size() - 150].value);
    ASSERT_NE(Place("HLine", {Column(250, p + 0.01)}), 0);
    ASSERT_NE(Place("VLine", {Column(230, p)}), 0);
    ASSERT_NE(Place("Line", {Column(220, p), Column(180, p + 0.02)}), 0);
    ASSERT_NE(Place("Text", {Column(200, p - 0.01)}), 0);
    ASSERT_NE(Place("Arc", {Column(170, p - 0.02), Column(150, p)}), 0);
    ASSERT_NE(Place("Chanel", {Column(140, p), Column(110, p + 0.01), Column(125, p + 0.02)}), 0);
    ASSERT_NE(Place("Andrews Pitchfork", {Column(100, p), Column(80, p + 0.02), Column(70, p - 0.01)}), 0);
    ASSERT_NE(Place("PolyLine", {Column(60, p), Column(50, p + 0.01), Column(40, p - 0.005), Column(30, p + 0.02)}), 0);
    ASSERT_EQ(LS().ids().size(), 8u);
    Click(Empty());  // nothing selected: a restored window selects nothing either
    const QImage drawn = Picture();

    // Each study made again in the host, with the points it was saved with. The trader has a
    // study tool chosen meanwhile: loading the window does not put it down.
    ASSERT_TRUE(LS().chooseTool("Line"));
    const int ended = LS().endedDrawing();
    const std::size_t before = LS().ids().size();
    SaveAndReload();
    ASSERT_EQ(LS().ids().size(), before + 8);
    EXPECT_EQ(LS().tool(), "Line");
    EXPECT_EQ(LS().endedDrawing(), ended);
    // Each study hears what its creation sends (4500, 4516, 3068, 4517, 4505, 4510) and
    // one exchange of its restored points (4510), finished, nothing more.
    std::map<unsigned int, int> sent;
    for (const auto& e : SentDuring(LastIndexOf(MSG_LOAD_CHART))) ++sent[e.message];
    for (const auto& expected : std::vector<std::pair<unsigned int, int> >
         {std::make_pair(unsigned(MSG_LS_CREATE_OBJECT), 8), {unsigned(MSG_LS_ATTACH), 8}, {unsigned(MSG_LS_FOCUS), 8},
          {unsigned(MSG_LS_GET_LIST_CONTROLPOINTER), 16}, {unsigned(MSG_LS_END_DRAWING), 0}})
        EXPECT_EQ(sent[expected.first], expected.second) << expected.first;
    for (std::size_t k = before; k < LS().ids().size(); ++k) EXPECT_TRUE(LS().study(LS().ids()[k])->finished);
    LS().clearTool();
    const QImage restored = Picture();
    EXPECT_TRUE(restored == drawn) << "the restored window shows another picture";
    if (restored != drawn) {
        drawn.save(QDir::temp().filePath(QStringLiteral("ls-drawn.png")));
        restored.save(QDir::temp().filePath(QStringLiteral("ls-restored.png")));
    }
}

TEST_F(StudiesOnAChart, HostileRepliesLeaveTheChartWorking) {
    const double p = double(records[records.size() - 150].value);
    const StudyPoint a = Column(200, p), b = Column(150, p + 0.01);
    const QImage before = Picture();
    std::vector<host::LineStudies::Faults> faults(9);
    faults[0].zeroId = true;
    faults[1].errorFlag = true;
    faults[2].overrideShapeCount = true, faults[2].shapeCount = -1;
    faults[3].overrideShapeCount = true, faults[3].shapeCount = 1 << 30;
    faults[4].overrideShapeSize = true, faults[4].shapeSize = -8;
    faults[5].overrideShapeSize = true, faults[5].shapeSize = 0x7FFFFFFF;
    faults[6].overrideShapeType = true, faults[6].shapeType = 1;
    faults[7].overrideShapeType = true, faults[7].shapeType = 99;
    faults[8].overrideShapeType = true, faults[8].shapeType = -5;
    const QPoint pa = Pixel(a), pb = Pixel(b);
    for (std::size_t i = 0; i < faults.size(); ++i) {
        SCOPED_TRACE("fault " + std::to_string(i));
        LS().setFaults(faults[i]);
        ASSERT_TRUE(LS().chooseTool("Line"));
        Move(pa);
        Click(pa);
        Move((pa + pb) / 2);
        Move(pb);
        Click(pb);
        ASSERT_FALSE(Picture().isNull());
        // Whatever the chart kept of it, Escape and a click elsewhere leave nothing being placed.
        Charts().pressKey(widget, Qt::Key_Escape);
        LS().clearTool();
        Click(Empty());
    }
    LS().setFaults(host::LineStudies::Faults());
    // An update for a study nobody has.
    EXPECT_NO_FATAL_FAILURE(LS().sendUpdate(424242));
    EXPECT_NO_FATAL_FAILURE(LS().sendUpdate(0));
    // Whatever the faults left, the chart places a study again and draws it.
    for (std::int32_t id : LS().ids()) {
        const host::LineStudies::Study* s = LS().study(id);
        ASSERT_NE(s, nullptr);
    }
    const std::int32_t id = Place("Line", {a, b});
    ASSERT_NE(id, 0);
    EXPECT_NE(Picture(), before);
}

// The host fails the control-point exchange (4510 with its error flag) while a polyline is
// edited: a double click on its first segment inserts a point, the study asks the host for
// its new shapes, and the exception it throws on the error ends at the module's barrier. It
// is logged with its own text, and the study leaves its line; nothing of it is saved, and
// the next study is placed as usual.
TEST_F(StudiesOnAChart, AHostFailureWhileAPolylineIsEditedStaysInsideTheModule) {
    const double p = double(records[records.size() - 150].value);
    const StudyPoint a = Column(60, p), b = Column(50, p + 0.01), c = Column(40, p - 0.005);
    ASSERT_NE(Place("PolyLine", {a, b, c}), 0);
    ASSERT_EQ(LS().ids().size(), 1u);
    const QPoint onFirstSegment = (Pixel(a) + Pixel(b)) / 2;
    const std::size_t logged = emulator->core().logRecords().size();
    host::LineStudies::Faults failing;
    failing.errorFlag = true;
    LS().setFaults(failing);
    EXPECT_NO_THROW({
        Mouse(QEvent::MouseButtonPress, onFirstSegment);
        Mouse(QEvent::MouseButtonRelease, onFirstSegment, Qt::LeftButton, Qt::NoButton);
        Mouse(QEvent::MouseButtonDblClick, onFirstSegment);
        Mouse(QEvent::MouseButtonRelease, onFirstSegment, Qt::LeftButton, Qt::NoButton);
    });
    LS().setFaults(host::LineStudies::Faults());

    const auto& log = emulator->core().logRecords();
    ASSERT_GT(log.size(), logged);
    EXPECT_EQ(log.back().level, 5);
    EXPECT_EQ(log.back().text, QStringLiteral("Error on LS_GET_LIST_CONTROLPOINTER message"));
    EXPECT_TRUE(LS().ids().empty()) << "the failed study was given back to the host";
    EXPECT_TRUE(LS().tool().empty()) << "the drawing mode ended";

    // Nothing of the failed study is saved: a reloaded window makes no study in the host.
    SaveAndReload();
    EXPECT_TRUE(LS().ids().empty());
    // The window goes on working: the next study is placed and drawn.
    const QImage empty = Picture();
    ASSERT_NE(Place("Line", {Column(60, p), Column(40, p + 0.01)}), 0);
    EXPECT_NE(Picture(), empty);
}

TEST_F(StudiesOnAChart, ArrivingPricesMakeTheChartFetchItsStudiesAgain) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t id = Place("HLine", {Column(100, p)});
    ASSERT_NE(id, 0);
    const std::size_t exchanges = Count(MSG_LS_GET_LIST_CONTROLPOINTER);
    // New quotes a long way up: new columns on the study's line.
    const host::data::Instrument* usdchf = emulator->data().instrument("USDCHF");
    ASSERT_NE(usdchf, nullptr);
    host::data::Quote q = usdchf->quotes().back();
    for (int i = 0; i < 20; ++i) {
        q.time += 1800;
        q.close += 0.01 * (i % 4 == 3 ? -3 : 1);
        q.open = q.high = q.low = q.close;
        ASSERT_TRUE(emulator->data().append("USDCHF", q));
    }
    ASSERT_FALSE(LS().updates().empty());
    for (const auto& u : LS().updates()) {
        EXPECT_EQ(u.id, id);
        EXPECT_EQ(u.answer, 0);
    }
    EXPECT_GE(Count(MSG_LS_GET_LIST_CONTROLPOINTER), exchanges + LS().updates().size());
    EXPECT_FALSE(Picture().isNull());
}

namespace {

// One study type with the points it is placed at: columns before the last one, and prices
// as offsets from a price in the middle of the area.
struct StudyType {
    const char* name;
    std::vector<std::pair<int, double> > points;
};

void PrintTo(const StudyType& type, std::ostream* out) { *out << type.name; }

class EveryStudyType : public StudiesOnAChart, public ::testing::WithParamInterface<StudyType> {
protected:
    std::vector<StudyPoint> Points() {
        const double middle = double(records[records.size() - 150].value);
        std::vector<StudyPoint> out;
        for (const auto& p : GetParam().points) out.push_back(Column(p.first, middle + p.second));
        return out;
    }
    // The placed points (up to the last of an open list).
    static std::size_t Placed(const std::vector<lsPointShape>& in) {
        std::size_t n = 0;
        while (n < in.size() && in[n].m_typePoint != LS_POINT_NOT_PLACED)
            if (in[n++].m_typePoint == LS_POINT_LAST) break;
        return n;
    }
};

}  // namespace

// What a person does with a study of each type, through the real module: placed with the
// rubber band, selected, dragged by a point and as a whole with both moves undone exactly,
// saved and restored with the same picture, then in the restored window moved, deleted
// (4501, 3071) and brought back by undo, and its move undone on the study made anew.
TEST_P(EveryStudyType, IsPlacedDraggedUndoneSavedDeletedAndBroughtBack) {
    const std::string name = GetParam().name;
    const QImage empty = Picture();
    const std::int32_t id = Place(name, Points());
    ASSERT_NE(id, 0);
    ASSERT_NE(LS().study(id), nullptr);
    EXPECT_TRUE(LS().study(id)->finished);
    EXPECT_TRUE(LS().tool().empty());
    EXPECT_TRUE(LS().study(id)->selected) << "a study just placed is selected";
    const std::vector<lsPointShape> placed = PointsOf(id);
    const std::size_t count = Placed(placed);
    ASSERT_GE(count, 1u);

    // Selected again by a click on its shapes.
    const QPoint body = OnTheStudy(id);
    ASSERT_FALSE(body.isNull()) << "nothing of the study is drawn";
    Click(Empty());
    EXPECT_FALSE(LS().study(id)->selected);
    const QImage drawn = Picture();
    EXPECT_NE(drawn, empty);
    Click(body);
    EXPECT_TRUE(LS().study(id)->selected);
    EXPECT_EQ(LS().focus(), id);

    // By its first point: that point alone moves; one step on the terminal's stack.
    const int steps = Steps().size();
    const QPoint marker = MarkersOf(id, Picture())[0];
    Drag(marker, marker + QPoint(30, -20));
    const std::vector<lsPointShape> pointMoved = PointsOf(id);
    ASSERT_EQ(pointMoved.size(), placed.size());
    EXPECT_NE(pointMoved[0].m_xTime, placed[0].m_xTime);
    EXPECT_NE(pointMoved[0].value, placed[0].value);
    for (std::size_t k = 1; k < count; ++k) {
        EXPECT_EQ(pointMoved[k].m_xTime, placed[k].m_xTime) << "point " << k;
        EXPECT_EQ(pointMoved[k].value, placed[k].value) << "point " << k;
    }
    ASSERT_EQ(Steps().size(), steps + 1);
    EXPECT_EQ(Steps().back(), QStringLiteral("Move Line"));

    // As a whole: every placed point moves.
    const QPoint from = OnTheStudy(id);
    Drag(from, from + QPoint(-25, 20));
    const std::vector<lsPointShape> wholeMoved = PointsOf(id);
    for (std::size_t k = 0; k < count; ++k) {
        EXPECT_NE(wholeMoved[k].m_xTime, pointMoved[k].m_xTime) << "point " << k;
        EXPECT_NE(wholeMoved[k].value, pointMoved[k].value) << "point " << k;
    }
    ASSERT_EQ(Steps().size(), steps + 2);

    Undo();
    EXPECT_TRUE(SamePoints(PointsOf(id), pointMoved));
    Undo();
    EXPECT_TRUE(SamePoints(PointsOf(id), placed));
    Click(Empty());
    EXPECT_EQ(Picture(), drawn);

    // Saved, and restored in a fresh window as a new host study with the same picture.
    SaveAndReload();
    const std::int32_t restored = Newest();
    ASSERT_NE(restored, id);
    EXPECT_TRUE(SamePoints(PointsOf(restored), placed));
    EXPECT_TRUE(Picture() == drawn) << "the restored window shows another picture";

    // Moved, then deleted with the Delete key: the host hears 4501 and 3071.
    Click(body);
    ASSERT_TRUE(LS().study(restored)->selected);
    const QPoint again = OnTheStudy(restored);
    Drag(again, again + QPoint(-25, 20));
    const std::vector<lsPointShape> moved = PointsOf(restored);
    ASSERT_FALSE(SamePoints(moved, placed));
    const std::size_t deletes = Count(MSG_LS_DELETE), detaches = Count(MSG_LS_DETACH), live = LS().ids().size();
    Charts().pressKey(widget, Qt::Key_Delete);
    EXPECT_EQ(LS().study(restored), nullptr);
    ASSERT_FALSE(LS().deleted().empty());
    EXPECT_EQ(LS().deleted().back(), restored);
    EXPECT_EQ(Count(MSG_LS_DELETE), deletes + 1);
    EXPECT_EQ(Count(MSG_LS_DETACH), detaches + 1);
    EXPECT_EQ(Picture(), empty);

    // The deletion undone: made anew in the host where it was when deleted. Then the move
    // undone on that new study: its points as placed.
    Undo();
    const std::int32_t back = Newest();
    ASSERT_EQ(LS().ids().size(), live);
    EXPECT_NE(back, restored);
    EXPECT_TRUE(SamePoints(PointsOf(back), moved));
    Undo();
    EXPECT_TRUE(SamePoints(PointsOf(back), placed));
    Click(Empty());
    EXPECT_EQ(Picture(), drawn);
}

INSTANTIATE_TEST_SUITE_P(
    Acceptance, EveryStudyType,
    ::testing::Values(StudyType{"Line", {{140, 0.0}, {100, 0.01}}}, StudyType{"HLine", {{120, 0.005}}},
                      StudyType{"VLine", {{120, 0.0}}}, StudyType{"Text", {{120, -0.005}}},
                      StudyType{"Arc", {{140, -0.01}, {110, 0.0}}},
                      StudyType{"Chanel", {{140, 0.0}, {100, 0.01}, {120, 0.02}}},
                      StudyType{"Andrews Pitchfork", {{140, 0.0}, {110, 0.02}, {100, -0.01}}},
                      StudyType{"PolyLine", {{140, 0.0}, {125, 0.01}, {110, -0.005}, {95, 0.02}}}),
    [](const ::testing::TestParamInfo<StudyType>& info) {
        std::string n;
        for (const char* c = info.param.name; *c; ++c)
            if (std::isalnum(static_cast<unsigned char>(*c))) n += *c;
        return n;
    });

// A move is recorded only when a point changed by more than 1e-5: a drag that comes back to
// where it began records nothing; one pixel up records one step.
TEST_F(StudiesOnAChart, OnlyAMoveThatChangesAPointIsRecorded) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t id = Place("Line", {Column(140, p), Column(100, p + 0.01)});
    ASSERT_NE(id, 0);
    const std::vector<lsPointShape> placed = PointsOf(id);
    const int steps = Steps().size();
    const QPoint at = OnTheStudy(id);
    Mouse(QEvent::MouseButtonPress, at);
    for (const QPoint& d : {QPoint(0, 0), QPoint(-20, 15), QPoint(-40, 30), QPoint(-20, 15), QPoint(0, 0)})
        Move(at + d, Qt::LeftButton);
    Mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(Steps().size(), steps) << "back where it began";
    for (std::size_t k = 0; k < 2; ++k) {
        EXPECT_EQ(PointsOf(id)[k].m_xTime, placed[k].m_xTime);
        EXPECT_NEAR(PointsOf(id)[k].value, placed[k].value, 1e-5);
    }
    Drag(at, at + QPoint(0, -1));
    EXPECT_EQ(Steps().size(), steps + 1) << "one pixel up";
}

// The move of one of several studies on a line, its deletion, and both undone: the study
// comes back in its place and the move is undone on it, not on its neighbour.
TEST_F(StudiesOnAChart, AMoveIsUndoneOnTheStudyThatMovedAfterItsDeletionIsUndone) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t first = Place("HLine", {Column(120, p + 0.01)});
    const std::int32_t second = Place("HLine", {Column(120, p - 0.01)});
    ASSERT_TRUE(first && second);
    const std::vector<lsPointShape> placed = PointsOf(first), other = PointsOf(second);
    Click(Empty());
    const QImage drawn = Picture();
    const QPoint at = Pixel(StudyPoint{placed[0].m_xTime, double(placed[0].value)}) + QPoint(60, 0);
    Click(at);
    ASSERT_EQ(LS().focus(), first);
    Drag(at, at + QPoint(0, -30));
    ASSERT_FALSE(SamePoints(PointsOf(first), placed));
    Charts().pressKey(widget, Qt::Key_Delete);
    ASSERT_EQ(LS().study(first), nullptr);
    ASSERT_NE(LS().study(second), nullptr);
    Undo();
    Undo();
    ASSERT_EQ(LS().ids().size(), 2u);
    EXPECT_TRUE(SamePoints(PointsOf(second), other));
    EXPECT_TRUE(SamePoints(PointsOf(Newest()), placed));
    Click(Empty());
    EXPECT_EQ(Picture(), drawn);
}

// A terminal that returns fewer output points than the chart made room for (it writes the
// smaller count into the record): the points it did not return show no marker and take no
// press; a press there takes the study as a whole.
TEST_F(StudiesOnAChart, PointsTheHostDidNotReturnHaveNoMarkerAndTakeNoPress) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t id = Place("Line", {Column(140, p), Column(100, p + 0.01)});
    ASSERT_NE(id, 0);
    auto hasMarker = [](const QImage& image, const QPoint& at) {
        for (int dy = -2; dy <= 2; ++dy)
            for (int dx = -2; dx <= 2; ++dx) {
                bool full = true;
                for (int k = 0; k < 25 && full; ++k) {
                    const QPoint q = at + QPoint(dx - 2 + k % 5, dy - 2 + k / 5);
                    full = image.rect().contains(q) && Ink(image.pixel(q));
                }
                if (full) return true;
            }
        return false;
    };
    const std::vector<QPoint> markers = MarkersOf(id, Picture());
    ASSERT_EQ(markers.size(), 2u);
    ASSERT_TRUE(hasMarker(Picture(), markers[0]) && hasMarker(Picture(), markers[1]));

    const host::Host::Handler exchange = H().handler(MSG_LS_GET_LIST_CONTROLPOINTER);
    H().on(MSG_LS_GET_LIST_CONTROLPOINTER, [exchange](void* t, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        const int answer = exchange(t, p1, p2, d);
        if (lsControlPointsShapes* record = reinterpret_cast<lsControlPointsShapes*>(p2)) record->outCount = 1;
        return answer;
    });
    ASSERT_EQ(LS().sendUpdate(id), 0);  // the chart exchanges the study's points again
    const QImage image = Picture();
    EXPECT_TRUE(hasMarker(image, markers[0]));
    EXPECT_FALSE(hasMarker(image, markers[1]));
    const std::vector<lsPointShape> before = PointsOf(id);
    Drag(markers[1], markers[1] + QPoint(0, -30));
    const std::vector<lsPointShape> after = PointsOf(id);
    ASSERT_EQ(after.size(), 2u);
    EXPECT_NE(after[0].value, before[0].value) << "the unreturned point was dragged alone";
    EXPECT_NEAR(after[0].value - before[0].value, after[1].value - before[1].value, 1e-5);
    H().on(MSG_LS_GET_LIST_CONTROLPOINTER, exchange);
}

// A move's record holds the study's "LineStudy" node with the index the host gives that node
// (3147) as "nodeIndex", and the study's own place on its line: moving the second of two
// studies and undoing it takes back that study and no other.
TEST_F(StudiesOnAChart, AMoveRecordCarriesTheHostsNodeIndexAndUndoesTheStudyThatMoved) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t first = Place("HLine", {Column(120, p + 0.01)});
    const std::int32_t second = Place("HLine", {Column(120, p - 0.01)});
    ASSERT_TRUE(first && second);
    const std::vector<lsPointShape> placedFirst = PointsOf(first), placedSecond = PointsOf(second);
    Click(Empty());
    const QPoint at = Pixel(StudyPoint{placedSecond[0].m_xTime, double(placedSecond[0].value)}) + QPoint(60, 0);
    Click(at);
    ASSERT_EQ(LS().focus(), second);
    const std::size_t from = H().journal().entries().size();
    Drag(at, at + QPoint(0, 30));
    ASSERT_FALSE(SamePoints(PointsOf(second), placedSecond));

    std::vector<host::Journal::Entry> asked;
    for (std::size_t i = from; i < H().journal().entries().size(); ++i)
        if (H().journal().entries()[i].message == MSG_UNDO_NODE_INDEX) asked.push_back(H().journal().entries()[i]);
    ASSERT_EQ(asked.size(), 1u);
    const host::workdata::Node* root = emulator->workData().node(emulator->undo().records().back().root);
    ASSERT_NE(root, nullptr);
    const host::workdata::Node* saved = nullptr;
    const_cast<host::workdata::Node*>(root)->walk([&saved](host::workdata::Node& n) {
        if (n.name == QLatin1String("LineStudy")) saved = &n;
    });
    ASSERT_NE(saved, nullptr);
    ASSERT_NE(saved->attribute(QStringLiteral("nodeIndex")), nullptr);
    EXPECT_EQ(saved->attribute(QStringLiteral("nodeIndex"))->toInt(), asked[0].result);
    EXPECT_EQ(asked[0].result, 0);  // the study's node is the first under the record's "Node"

    Undo();
    EXPECT_TRUE(SamePoints(PointsOf(second), placedSecond));
    EXPECT_TRUE(SamePoints(PointsOf(first), placedFirst));
}

// A vertical line's block from a terminal that keeps its flag (byte 9) in one byte, 10 bytes
// long, or in four, 13 bytes long: the line is drawn down the area either way.
TEST_F(StudiesOnAChart, AVerticalLineIsDrawnWhateverTheWidthOfItsFlag) {
    const double p = double(records[records.size() - 150].value);
    for (const std::int32_t size : {10, 13}) {
        SCOPED_TRACE(size);
        host::LineStudies::Faults faults;
        faults.overrideShapeSize = true;
        faults.shapeSize = size;
        LS().setFaults(faults);
        const StudyPoint at = Column(size == 10 ? 230 : 200, p);
        const std::int32_t id = Place("VLine", {at});
        LS().setFaults(host::LineStudies::Faults());
        ASSERT_NE(id, 0);
        ASSERT_EQ(LS().study(id)->sizes, std::vector<std::int32_t>{size});
        Click(Empty());
        const QImage image = Picture();
        const int x = Pixel(at).x();
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) inked += Ink(image.pixel(x, y)) ? 1 : 0;
        EXPECT_GT(inked, image.height() / 3);
    }
}

// A study's three entries in the chart's Properties menu: its title, then what the other two
// do in the terminal's language. Each does what it says.
TEST_F(StudiesOnAChart, AStudysMenuEntriesSayWhatEachDoes) {
    const double p = double(records[records.size() - 150].value);
    const std::int32_t id = Place("Line", {Column(140, p), Column(100, p + 0.01)});
    ASSERT_NE(id, 0);
    const QString properties = emulator->moduleText("C0030Propes"), remove = emulator->moduleText("C0015Delete");
    const QStringList entries = Charts().contextMenuEntries(widget, Empty(), QStringList{properties});
    int k = 0;
    while (k + 2 < entries.size() && !(entries[k + 1] == properties + QStringLiteral(": ") + entries[k] &&
                                       entries[k + 2] == remove + QStringLiteral(": ") + entries[k]))
        ++k;
    ASSERT_LT(k + 2, entries.size()) << entries.join(QLatin1Char('|')).toStdString();
    const QString title = entries[k];
    EXPECT_FALSE(title.isEmpty());

    std::string error;
    const std::size_t asked = LS().propertyRequests().size();
    ASSERT_TRUE(Charts().chooseFromContextMenu(widget, Empty(), {properties, entries[k + 1]}, &error)) << error;
    ASSERT_EQ(LS().propertyRequests().size(), asked + 1);
    EXPECT_EQ(LS().propertyRequests().back(), id);
    EXPECT_NE(LS().study(id), nullptr);
    ASSERT_TRUE(Charts().chooseFromContextMenu(widget, Empty(), {properties, entries[k + 2]}, &error)) << error;
    EXPECT_EQ(LS().study(id), nullptr);
    ASSERT_FALSE(LS().deleted().empty());
    EXPECT_EQ(LS().deleted().back(), id);
}
