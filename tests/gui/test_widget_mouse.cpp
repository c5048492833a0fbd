// The chart window's own rules for the mouse and the wheel, in-process: the wheel turned
// with Alt (which X11 reports on the horizontal axis), a click that shows an indicator's
// properties and a drag that zooms instead, a zoom released outside every area, the zoom
// selection following the area under the cursor, the busy flag around long operations and
// the length of the main-change text.
#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include "ChartWindowFixture.h"
#include "data/ScaleEngine.h"
#include "gui/TimeScrollBar.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LsUtil.h"

namespace {

struct WidgetMouse : ChartWindowFixture {
    void SetUp() override {
        ChartWindowFixture::SetUp();
        // The main window receives the request to show an indicator's properties.
        AnswerMainWindow();
        Show("EURUSD");
        host.clear();
    }
    gx::Line& LineOf(int area) {
        return *widget->GetChart()->GetAreas()[std::size_t(area)]->GetLayers()[0]->GetIndicators()[0]->GetLines()[0];
    }
    pf::ScaleEngine& EngineOf(int area) { return *widget->GetChart()->GetAreas()[std::size_t(area)]->GetEngine(); }
    void Mouse(QEvent::Type type, const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
        const Qt::MouseButton changed = type == QEvent::MouseMove ? Qt::NoButton : button;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
        QMouseEvent event(type, at, widget->mapToGlobal(at), changed, held, Qt::NoModifier);
        QApplication::sendEvent(widget.get(), &event);
    }
    void Drag(const QPoint& from, const QPoint& to) {
        Mouse(QEvent::MouseButtonPress, from);
        Mouse(QEvent::MouseMove, (from + to) / 2);
        Mouse(QEvent::MouseMove, to);
        Mouse(QEvent::MouseButtonRelease, to);
    }
    // A wheel event as the X server delivers it: with Alt held, Qt's xcb platform puts the
    // vertical delta on the x axis.
    void Wheel(QPoint delta, Qt::KeyboardModifiers modifiers) {
        const QPointF at(MiddleOfArea(0));
        QWheelEvent event(at, at, QPoint(), delta, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget.get(), &event);
    }
    // A point on a figure of the first line (its tool tip names the figure).
    QPoint OnFigure(int column) {
        gx::Line& line = LineOf(0);
        const int x = gx::util::LsBase::CalcX(line.GetEngine(), column);
        const QRect r = widget->GetChart()->GetAreas()[0]->Rect();
        for (int y = r.top(); y <= r.bottom(); ++y)
            if (!line.ToolTipAt(QPoint(x, y)).isEmpty()) return QPoint(x, y);
        return QPoint();
    }
    std::size_t PropertyRequests() const { return host.find(MSG_SHOW_PROPERTIES).size(); }
};

TEST_F(WidgetMouse, AltWheelScrollsByTenWhicheverAxisCarriesTheDelta) {
    pf::ScaleEngine& e = EngineOf(0);
    const auto view = [&](int first, int visible) {
        e.SetFirstColumn(first);
        e.SetColumnCount(visible);
        widget->SetScrollRange();
    };
    view(20, 10);
    Wheel(QPoint(-120, 0), Qt::AltModifier);
    EXPECT_EQ(widget->GetTimeScrollBar()->value(), 30);
    Wheel(QPoint(0, 120), Qt::AltModifier);
    EXPECT_EQ(widget->GetTimeScrollBar()->value(), 20);
    // Ctrl+Alt zooms in and out by the sign of the delta on the x axis.
    view(20, 10);
    Wheel(QPoint(120, 0), Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(e.GetColumnCount(), 7);
    view(20, 10);
    Wheel(QPoint(-120, 0), Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(e.GetColumnCount(), 13);
}

// A click on a figure shows its indicator's properties, also on a selected line after an
// earlier zoom; a drag that zooms does not.
TEST_F(WidgetMouse, ClickShowsIndicatorPropertiesAndAZoomDragDoesNot) {
    const QPoint figure = OnFigure(10);
    ASSERT_FALSE(figure.isNull());
    Mouse(QEvent::MouseButtonPress, figure);
    Mouse(QEvent::MouseButtonRelease, figure);
    EXPECT_EQ(PropertyRequests(), 1u);
    EXPECT_TRUE(LineOf(0).IsSelected());

    LineOf(0).Select(false);
    const QPoint start = OnFigure(5);
    const QPoint end = OnFigure(25);
    ASSERT_FALSE(start.isNull() || end.isNull());
    const int visible = EngineOf(0).GetColumnCount();
    Drag(start, QPoint(end.x(), start.y()));
    ASSERT_LT(EngineOf(0).GetColumnCount(), visible);  // zoomed
    EXPECT_EQ(PropertyRequests(), 1u);

    // The zoom's positions stay in the engine; a later click on the selected line is a click.
    LineOf(0).Select(true);
    const QPoint again = OnFigure(EngineOf(0).GetFirstColumn() + 2);
    ASSERT_FALSE(again.isNull());
    Mouse(QEvent::MouseButtonPress, again);
    Mouse(QEvent::MouseButtonRelease, again);
    EXPECT_EQ(PropertyRequests(), 2u);
}

TEST_F(WidgetMouse, ZoomReleasedOutsideEveryAreaEndsAtTheAreasWidth) {
    Show("GBPUSD");
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 2);
    const QRect first = widget->GetChart()->GetAreas()[0]->Rect();
    const QRect second = widget->GetChart()->GetAreas()[1]->Rect();
    const QPoint from(first.left() + 40, first.center().y());
    // The selection follows the area under the cursor: a move over the second area leaves
    // the first one's middle where it was.
    Mouse(QEvent::MouseButtonPress, from);
    ASSERT_TRUE(EngineOf(0).GetFlag());
    Mouse(QEvent::MouseMove, QPoint(first.left() + 60, first.center().y()));
    const int middle = EngineOf(0).GetZoomMiddlePos();
    Mouse(QEvent::MouseMove, QPoint(first.left() + 90, second.center().y()));
    EXPECT_EQ(EngineOf(0).GetZoomMiddlePos(), middle);
    EXPECT_FALSE(EngineOf(1).GetFlag());
    // Released below every area (over the time scale): the end is the area's width taken
    // as a position.
    const pf::ScaleEngine& e = EngineOf(0);
    const int end = e.UnTranslateX(first.right() - first.left() + 1 - e.GetLeft());
    const QPoint outside(first.left() + 90, widget->height() - 3);
    Mouse(QEvent::MouseButtonRelease, outside);
    EXPECT_FALSE(EngineOf(0).GetFlag());
    EXPECT_EQ(EngineOf(0).GetZoomEndPos(), end);
}

// Long operations raise the busy flag: a press arriving meanwhile is dropped. The flag and
// the cursor are back afterwards.
TEST_F(WidgetMouse, BusyWhileAnUndoRuns) {
    bool busyInside = false, pressTaken = true;
    host.on(MSG_UNDO_REFRESHED, [this, &busyInside, &pressTaken](void*, std::intptr_t, std::intptr_t) {
        busyInside = widget->IsBusy();
        const QPoint at = MiddleOfArea(0);
        QMouseEvent press(QEvent::MouseButtonPress, at, widget->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(widget.get(), &press);
        pressTaken = press.isAccepted();
        return 0;
    });
    coreUndoStart start{};
    start.kind = 0;
    coreUndoRefresh result{};
    EXPECT_EQ(widget->UndoPop(&start, &result), 0);
    EXPECT_TRUE(busyInside);
    EXPECT_FALSE(pressTaken);  // dropped
    EXPECT_FALSE(widget->IsBusy());
    EXPECT_NE(widget->cursor().shape(), Qt::ForbiddenCursor);
}

TEST_F(WidgetMouse, MainChangeCarriesUpTo255Characters) {
    std::string seen;
    host.on(MSG_MAIN_CHANGED, [&seen](void*, std::intptr_t p1, std::intptr_t) {
        const char* record = reinterpret_cast<const char*>(p1);
        seen.assign(record + 4, strnlen(record + 4, 255));
        return 0;
    });
    widget->SendMainChange(QString(300, QLatin1Char('x')));
    EXPECT_EQ(seen.size(), 255u);
    widget->SendMainChange(QStringLiteral("TimeFrame Changed"));
    EXPECT_EQ(seen, "TimeFrame Changed");
}

}  // namespace
