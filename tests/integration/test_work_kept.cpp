// What a person made on a chart window survives every action, and a window that has data
// always shows it: closing an area, undoing the deletion of one line of an indicator and
// undoing an area close, a chart the terminal recomputes with another box size, a view
// scrolled into the free space after the newest column, a second instrument added as its
// own area, and a hostile precision under the cross cursor. Everything through the real
// entry points, with mouse and key events where a person would use them.
#include <gtest/gtest.h>

#include <QAbstractSlider>
#include <QApplication>
#include <QMouseEvent>
#include <QToolButton>
#include <climits>
#include <string>
#include <vector>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/StudyGestures.h"
#include "host/UndoStack.h"
#include "host/data/ChartObject.h"

using host::StudyPoint;
using host::data::ChartType;

namespace {

const QSize kSize(1000, 700);

class WorkKept : public ModuleHostTest {
protected:
    void SetUp() override { Start(); }
    void TearDown() override {
        if (emulator) Charts().destroyAll();
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::LineStudies& LS() { return emulator->studies(); }
    host::DataCore& Data() { return emulator->data(); }

    // A window of `type` showing `instruments`, one area each.
    void* Window(ChartType type, const std::vector<std::string>& instruments) {
        void* w = Charts().create(type);
        EXPECT_NE(w, nullptr);
        for (const std::string& name : instruments) EXPECT_EQ(Charts().drop(w, {name}), 0) << name;
        Picture(w);
        return w;
    }
    QImage Picture(void* w) { return Charts().grab(w, kSize); }
    void Mouse(void* w, QEvent::Type type, const QPoint& at, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QWidget* chart = Charts().chartWidget(w);
        QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(chart, &event);
    }
    void Press(void* w, const QPoint& at) { Mouse(w, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton); }
    void Release(void* w, const QPoint& at) { Mouse(w, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton); }
    void Click(void* w, const QPoint& at) {
        Press(w, at);
        Release(w, at);
    }
    void MoveTo(void* w, const QPoint& at) { Mouse(w, QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton); }
    QPoint Pixel(void* w, const StudyPoint& p) {
        QPoint at;
        std::string error;
        EXPECT_TRUE(host::StudyPixel(*emulator, w, p, &at, &error)) << error;
        return at;
    }
    std::int32_t Place(void* w, const std::string& name, const std::vector<StudyPoint>& points) {
        std::int32_t id = 0;
        std::string error;
        EXPECT_TRUE(host::PlaceStudy(*emulator, w, name, points, &id, &error)) << name << ": " << error;
        return id;
    }
    void Undo() {
        const host::UndoStack::Undo u = emulator->undo().undo();
        ASSERT_TRUE(u.sent && u.replied) << "no undo";
        EXPECT_EQ(u.result, 0);
    }
    // The records of the data core's chart object number `object` (in the order made).
    std::vector<fxChartTypeRecord> RecordsOf(std::size_t object) {
        const auto objects = Data().chartObjects();
        EXPECT_GT(objects.size(), object);
        return objects.size() > object ? objects[object]->records() : std::vector<fxChartTypeRecord>();
    }
    // A point of the first area where no figure is, just under its caption, for clicks that
    // select nothing.
    QPoint Empty(void* w) {
        const QRect button = Charts().closeButtons(w).front();
        for (int x = button.left() / 2; x > 0; x -= 7)
            if (Charts().toolTipAt(w, QPoint(x, button.bottom() + 5)).isEmpty()) return QPoint(x, button.bottom() + 5);
        return QPoint(1, button.bottom() + 5);
    }
    // Whether the study's colour is drawn within two rows of `at`.
    bool InkNear(void* w, const QPoint& at) {
        const QImage image = Picture(w);
        for (int dy = -2; dy <= 2; ++dy) {
            const QRgb c = image.pixel(at + QPoint(0, dy)) & 0xFFFFFFu;
            if (c == 0x0000C0u || c == 0xC00000u) return true;
        }
        return false;
    }
};

// Closing an area ran the deletion over the whole chart, so what was selected in the
// other areas went with it, and the undo of the close did not bring it back.
TEST_F(WorkKept, ClosingAnAreaLeavesWhatIsSelectedInTheOtherAreas) {
    void* w = Window(ChartType::PointAndFigure, {"USDCHF", "TTRC"});
    const std::vector<fxChartTypeRecord> records = RecordsOf(0);
    ASSERT_GT(records.size(), 200u);
    const double price = double(records[150].value);
    const StudyPoint at{records[150].time, price};
    const std::int32_t id = Place(w, "HLine", {at});
    ASSERT_NE(id, 0);
    Click(w, Pixel(w, at) + QPoint(40, 0));
    ASSERT_EQ(LS().focus(), id) << "the study is selected";
    const QImage before = Picture(w);
    const int steps = emulator->undo().titles().size();

    std::string error;
    ASSERT_TRUE(Charts().closeArea(w, 1, &error)) << error;
    EXPECT_NE(LS().study(id), nullptr) << "the study left the terminal";
    EXPECT_TRUE(InkNear(w, Pixel(w, at) + QPoint(40, 0))) << "the study is no longer drawn";
    EXPECT_EQ(emulator->undo().titles().size(), steps + 1) << "the close is one step";
    QPoint figure;
    EXPECT_TRUE(Charts().figureIn(w, 0, &figure)) << "the first area lost its figures";

    Undo();
    EXPECT_EQ(Picture(w), before);
}

// Undoing the deletion of one line of an indicator made every line of the indicator
// anew, so the lines that were never deleted lost their studies; and the next data notice
// brought a deleted line back, pairing lines and arrays by their places. A terminal whose data
// object hands out two arrays (here the USD/CHF object gives its own and TTRC's, whose
// prices lie far above) makes an indicator of two lines.
TEST_F(WorkKept, UndoingTheDeletionOfOneLineBringsBackThatLineAlone) {
    void* second = Data().createChart("TTRC", ChartType::PointAndFigure);
    ASSERT_NE(second, nullptr);
    fxDataPointArray* extra = Data().arrays(second).front();
    const host::Host::Handler count = H().handler(MSG_DPA_COUNT);
    const host::Host::Handler list = H().handler(MSG_DPA_LIST);
    auto doubled = [this, second](std::intptr_t handle) {
        return reinterpret_cast<void*>(handle) != second && Data().chart(reinterpret_cast<void*>(handle));
    };
    H().on(MSG_DPA_COUNT, [=](void* target, std::intptr_t p1, std::intptr_t p2, std::string& detail) {
        const int answer = count(target, p1, p2, detail);
        if (answer == 0 && p2 && doubled(p1)) *reinterpret_cast<std::int32_t*>(p2) = 2;
        return answer;
    });
    H().on(MSG_DPA_LIST, [=](void* target, std::intptr_t p1, std::intptr_t p2, std::string& detail) {
        const int answer = list(target, p1, p2, detail);
        coreListCreateData* l = reinterpret_cast<coreListCreateData*>(p2);
        if (answer == 0 && l && l->count >= 2 && doubled(p1)) l->arrays[1] = extra;
        return answer;
    });

    void* w = Window(ChartType::PointAndFigure, {"USDCHF"});
    const std::vector<fxChartTypeRecord> records = RecordsOf(0);
    ASSERT_GT(records.size(), 200u);
    // A horizontal line on the first line (USD/CHF), in the TTRC prices.
    const StudyPoint at{records[100].time, 20.0};
    const std::int32_t id = Place(w, "HLine", {at});
    ASSERT_NE(id, 0);
    Click(w, Empty(w));
    const QImage before = Picture(w);

    // A figure of the second line only: in the upper part of the area, far above USD/CHF.
    const std::vector<QRect> buttons = Charts().closeButtons(w);
    QPoint figure;
    QPoint empty;
    const QWidget* chart = Charts().chartWidget(w);
    for (int y = buttons.front().bottom() + 20; y < chart->height() / 2 && figure.isNull(); y += 3)
        for (int x = 80; x < chart->width() - 80 && figure.isNull(); x += 3)
            if (!Charts().toolTipAt(w, QPoint(x, y)).isEmpty() && Charts().toolTipAt(w, QPoint(x, y - 12)).isEmpty())
                figure = QPoint(x, y), empty = QPoint(x, y - 12);
    ASSERT_FALSE(figure.isNull()) << "no figure of the second line";
    // A click selects the indicator's lines; a press on the figure keeps only the line under
    // it, and the release away from every figure leaves it so.
    Click(w, figure);
    Press(w, figure);
    Release(w, empty);
    Charts().pressKey(w, Qt::Key_Delete);
    ASSERT_TRUE(Charts().toolTipAt(w, figure).isEmpty()) << "the second line was not deleted";
    ASSERT_NE(LS().study(id), nullptr);

    // The data notice of a recompute (a new array for the first line, the same one for the
    // second) neither brings the deleted line back nor gives its data to the line that stayed.
    const QImage deleted = Picture(w);
    host::data::ChartObject* first = Data().chartObjects().back();
    ASSERT_NE(first->handle(), second);
    std::string error;
    ASSERT_TRUE(Data().configure(first->handle(), first->settings(), &error)) << error;
    EXPECT_TRUE(Charts().toolTipAt(w, figure).isEmpty()) << "the deleted line came back with the data";
    EXPECT_EQ(Picture(w), deleted);

    Undo();
    Click(w, Empty(w));
    EXPECT_EQ(Picture(w), before) << "the lines are not as they were";
    EXPECT_FALSE(Charts().toolTipAt(w, figure).isEmpty());
    H().on(MSG_DPA_COUNT, count);
    H().on(MSG_DPA_LIST, list);
}

// An undo that rebuilds indicators leaves the tool bar's buttons as a loaded layout
// does: the cross cursor is off.
TEST_F(WorkKept, UndoThatRebuildsIndicatorsResetsTheToolBarButtons) {
    void* w = Window(ChartType::PointAndFigure, {"USDCHF", "TTRC"});
    QToolButton* cross = Charts().toolButtons(w).at(2);
    ASSERT_TRUE(cross->isCheckable());
    cross->click();
    ASSERT_TRUE(cross->isChecked());
    std::string error;
    ASSERT_TRUE(Charts().closeArea(w, 1, &error)) << error;
    EXPECT_TRUE(cross->isChecked()) << "closing is no rebuild";
    Undo();
    EXPECT_FALSE(cross->isChecked());
}

// A chart the terminal recomputes with a larger box has fewer positions; the window
// went blank (its view beyond the data) until zoomed out. Now, after the 3009 of the
// recompute, a window that showed its newest position shows exactly what a new window of
// the new box shows at its newest position (scales, grid and labels included), and so
// after the box is set back, also from a box so large that no column is left.
TEST_F(WorkKept, ARecomputedChartShowsWhatANewWindowOfItsBoxShows) {
    const struct {
        ChartType type;
        double from;
        double to;
    } cases[] = {{ChartType::Renko, 0.2, 1.0}, {ChartType::PointAndFigure, 1.0, 10.0},
                 {ChartType::PointAndFigure, 1.0, 100000.0}};
    int compared = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(host::data::chartTypeName(c.type));
        host::data::ChartSettings settings;
        settings.box = c.from;
        Data().setChartSettings(c.type, settings);
        void* w = Window(c.type, {"TTRC"});
        Charts().pressKey(w, Qt::Key_End);
        void* handle = Data().chartObjects().back()->handle();
        for (double box : {c.to, c.from}) {
            SCOPED_TRACE(box);
            settings.box = box;
            std::string error;
            ASSERT_TRUE(Data().configure(handle, settings, &error)) << error;
            if (Data().chart(handle)->records().empty()) continue;  // nothing to show
            Data().setChartSettings(c.type, settings);
            void* fresh = Window(c.type, {"TTRC"});
            Charts().pressKey(fresh, Qt::Key_End);
            EXPECT_EQ(Picture(w), Picture(fresh));
            ++compared;
            QAbstractSlider* bar = Charts().timeScrollBar(w);
            EXPECT_EQ(bar->value(), bar->maximum()) << "the newest position left the view";
            QPoint figure;
            EXPECT_TRUE(Charts().figureIn(w, 0, &figure));
            // Home and End still lead through the data.
            Charts().pressKey(w, Qt::Key_Home);
            EXPECT_TRUE(Charts().figureIn(w, 0, &figure));
            Charts().pressKey(w, Qt::Key_End);
            EXPECT_TRUE(Charts().figureIn(w, 0, &figure));
            ASSERT_TRUE(Charts().destroy(fresh));
        }
        ASSERT_TRUE(Charts().destroy(w));
    }
    EXPECT_EQ(compared, 5) << "only the box of 100000 leaves no column";
}

// A view zoomed in so far that End brings it wholly into the free space after the
// newest column left the price scales blank; they take their range from the last column.
TEST_F(WorkKept, AViewWhollyInTheFreeSpaceKeepsItsPriceScale) {
    void* w = Window(ChartType::PointAndFigure, {"USDCHF"});
    QAbstractSlider* bar = Charts().timeScrollBar(w);
    for (int i = 0; i < 40 && bar->pageStep() > 5; ++i) Charts().pressKey(w, Qt::Key_Plus);
    Charts().pressKey(w, Qt::Key_End);
    ASSERT_LE(bar->pageStep(), 5);
    const QImage image = Picture(w);
    // The right price scale: the last 50 pixels of the area's rows.
    const std::vector<QRect> buttons = Charts().closeButtons(w);
    const int top = buttons.front().bottom() + 10;
    const int bottom = bar->mapTo(Charts().chartWidget(w), QPoint()).y() - 60;
    const QRgb background = image.pixel(image.width() - 3, (top + bottom) / 2);
    int text = 0;
    for (int y = top; y < bottom; ++y)
        for (int x = image.width() - 50; x < image.width() - 2; ++x) text += image.pixel(x, y) != background;
    EXPECT_GT(text, 50) << "the price scale is blank";
}

// A second instrument dropped as an area of its own starts the time scroll bar and
// every area's first position at the beginning, so that zooming afterwards zooms both.
TEST_F(WorkKept, ASecondInstrumentStartsTheTimeScrollBarAgain) {
    void* w = Window(ChartType::PointAndFigure, {"USDCHF"});
    Charts().pressKey(w, Qt::Key_End);
    QAbstractSlider* bar = Charts().timeScrollBar(w);
    ASSERT_GT(bar->value(), 0);
    ASSERT_EQ(Charts().drop(w, {"TTRC"}), 0);
    Picture(w);
    EXPECT_EQ(bar->value(), 0);
    const std::vector<fxChartTypeRecord> first = RecordsOf(0);
    ASSERT_GT(first.size(), 300u);
    // The first area shows its first columns (the status bar names them under the mouse).
    QPoint at;
    std::string error;
    const double price = double(first[0].value);
    EXPECT_TRUE(host::StudyPixel(*emulator, w, StudyPoint{first[0].time, price}, &at, &error)) << error;

    // Zooming in (the right edge stays) keeps many columns of the first area in view.
    Charts().toolButtons(w)[0]->click();
    for (std::size_t k : {std::size_t(100), std::size_t(250)})
        EXPECT_TRUE(host::StudyPixel(*emulator, w, StudyPoint{first[k].time, double(first[k].value)}, &at, &error))
            << "column " << k << ": " << error;
    QPoint figure;
    EXPECT_TRUE(Charts().figureIn(w, 0, &figure));
    EXPECT_TRUE(Charts().figureIn(w, 1, &figure));
}

// The cross cursor's price label took the instrument's decimals from the host's array
// without a bound; like the scales and the status bar it shows at most ten, so a hostile
// precision draws the same picture as a precision of ten.
TEST_F(WorkKept, TheCrossCursorShowsAtMostTenDecimals) {
    void* w = Window(ChartType::PointAndFigure, {"USDCHF"});
    fxDataPointArray* array = Data().arrays(Data().chartObjects().front()->handle()).front();
    QToolButton* cross = Charts().toolButtons(w).at(2);
    cross->click();
    const QWidget* chart = Charts().chartWidget(w);
    const QPoint at(chart->width() / 2, chart->height() / 3);
    QImage ten;
    for (std::int32_t precision : {10, 11, 64, INT_MAX, 1 << 30}) {
        SCOPED_TRACE(precision);
        array->precision = precision;
        MoveTo(w, at);
        const QImage image = Picture(w);
        if (ten.isNull()) ten = image;
        else ASSERT_EQ(image, ten);
    }
    array->precision = 4;
}

}  // namespace
