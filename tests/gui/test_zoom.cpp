// Zooming and scrolling a chart window in-process: the tool bar's zoom in, zoom out and
// slider on the areas' scale engines, the undo steps they record (each begins a host undo
// record, 3138), and the wheel and keys that drive them.
#include <QApplication>
#include <QKeyEvent>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include "ChartWindowFixture.h"
#include "data/ScaleEngine.h"
#include "gui/TimeScrollBar.h"
#include "gui/ToolBar.h"

namespace {

// Counts the paint events a widget receives.
struct PaintCounter : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
};

// One instrument of 60 columns; the window's free-step count is 5, so at most 65 positions
// are ever visible and the slider runs from -5 to 56.
struct Zoom : ChartWindowFixture {
    static constexpr int kTotal = 60;

    void SetUp() override {
        ChartWindowFixture::SetUp();
        Show(QStringLiteral("EURUSD"));
        ASSERT_EQ(widget->GetFreeStep(), 5);
        ASSERT_EQ(pf::TruncToInt(Engine().GetX1()), kTotal);
        host.clear();
    }
    pf::ScaleEngine& Engine() { return *widget->GetChart()->GetAreas().front()->GetEngine(); }
    CTimeScrollBar& Bar() { return *widget->GetTimeScrollBar(); }
    QSlider& Slider() { return *widget->GetToolBar()->GetZoomSlider(); }
    pf::gui::ToolBar& Tools() { return *widget->GetToolBar(); }
    std::size_t UndoSteps() const { return host.find(MSG_UNDO_BEGIN).size(); }
    // The view of every area, with the scroll bar following it.
    void View(int first, int visible) {
        for (const boost::shared_ptr<gx::Area>& area : widget->GetChart()->GetAreas()) {
            area->GetEngine()->SetFirstColumn(first);
            area->GetEngine()->SetColumnCount(visible);
        }
        widget->SetScrollRange();
    }
    void Key(int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(widget.get(), &event);
    }
    void Wheel(int delta, Qt::KeyboardModifiers modifiers) {
        const QPointF at(MiddleOfArea(0));
        QWheelEvent event(at, at, QPoint(), QPoint(0, delta), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget.get(), &event);
    }
};

TEST_F(Zoom, ZoomInNeedsSixVisibleAndKeepsTheRightEdge) {
    View(10, 5);
    widget->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(widget.get()));
    QApplication::processEvents();
    PaintCounter counter;
    widget->installEventFilter(&counter);
    const int sliderBefore = Slider().value();
    Tools().OnBnClickedZoomIn(true);
    QApplication::processEvents();
    EXPECT_EQ(Engine().GetColumnCount(), 5);
    EXPECT_EQ(Engine().GetFirstColumn(), 10);
    EXPECT_EQ(Slider().value(), sliderBefore);
    EXPECT_EQ(UndoSteps(), 0u);
    EXPECT_EQ(counter.paints, 0) << "nothing to zoom: no repaint";

    View(10, 6);
    Tools().OnBnClickedZoomIn(true);
    QApplication::processEvents();
    EXPECT_EQ(Engine().GetColumnCount(), 4);  // 6 / 1.3 = 4.6
    EXPECT_EQ(Engine().GetFirstColumn(), 12);
    EXPECT_EQ(UndoSteps(), 1u) << "the slider it moves records nothing more";
    EXPECT_GT(counter.paints, 0);
    EXPECT_EQ(Bar().maximum(), kTotal - 4 + 5);
    EXPECT_EQ(Bar().value(), 12);
    EXPECT_EQ(Bar().pageStep(), 4);
    EXPECT_EQ(Bar().GetScreenDataPoints(), 4);
    EXPECT_EQ(Slider().maximum(), kTotal - 4);
    EXPECT_EQ(Slider().value(), kTotal - 4);
    widget->removeEventFilter(&counter);

    // Moving the slider afterwards is a step of its own.
    Slider().setValue(40);
    EXPECT_EQ(UndoSteps(), 2u);
    EXPECT_EQ(Engine().GetColumnCount(), 20);
    Tools().OnBnClickedZoomIn(false);
    EXPECT_EQ(UndoSteps(), 2u);
    EXPECT_EQ(Engine().GetColumnCount(), 15);
}

TEST_F(Zoom, ZoomOutClampsAtTheStartAndAtTotalPlusFreeSteps) {
    View(1, 10);
    Tools().OnBnClickedZoomOut(true);
    EXPECT_EQ(Engine().GetColumnCount(), 13);
    EXPECT_EQ(Engine().GetFirstColumn(), 0) << "not -2";
    EXPECT_EQ(UndoSteps(), 1u);
    EXPECT_EQ(Slider().value(), kTotal - 13);
    EXPECT_EQ(Bar().GetScreenDataPoints(), 13);
    for (int i = 0; i < 10; ++i) Tools().OnBnClickedZoomOut(false);
    EXPECT_EQ(Engine().GetColumnCount(), kTotal + 5);
    EXPECT_EQ(Engine().GetFirstColumn(), 0);
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_EQ(Slider().value(), -5);
    EXPECT_EQ(UndoSteps(), 1u);
}

TEST_F(Zoom, SliderRecordsAfterItsFirstMoveAndTheBarKeepsTheViewInRange) {
    // A fresh window's flag is clear: the first move only sets it.
    Slider().setValue(30);
    EXPECT_EQ(Engine().GetColumnCount(), 30);
    EXPECT_EQ(UndoSteps(), 0u);
    Slider().setValue(20);
    EXPECT_EQ(Engine().GetColumnCount(), 40);
    EXPECT_EQ(UndoSteps(), 1u);
    EXPECT_EQ(Bar().GetScreenDataPoints(), 40);

    // Scrolled to the end, then shown whole: the bar's range shrinks to 0 and the view
    // comes back to the start with it.
    Bar().setValue(Bar().maximum());
    EXPECT_EQ(Engine().GetFirstColumn(), kTotal - 40 + 5);
    Slider().setValue(-5);
    EXPECT_EQ(Engine().GetColumnCount(), kTotal + 5);
    EXPECT_EQ(Bar().maximum(), 0);
    EXPECT_EQ(Bar().value(), 0);
    EXPECT_EQ(Engine().GetFirstColumn(), 0);
}

// The keys' scrolling is played on a real X server (tests/xvfb); here the wheel, and the
// zoom keys with the undo steps they record.
TEST_F(Zoom, WheelAndZoomKeysDriveTheToolBar) {
    View(20, 10);
    Wheel(-120, Qt::NoModifier);
    EXPECT_EQ(Bar().value(), 21);
    EXPECT_EQ(Engine().GetFirstColumn(), 21);
    Wheel(-120, Qt::AltModifier);
    EXPECT_EQ(Bar().value(), 31);
    Wheel(60, Qt::ControlModifier);  // less than a notch zooms out, whichever way
    EXPECT_EQ(Engine().GetColumnCount(), 13);
    Wheel(120, Qt::ControlModifier);
    EXPECT_EQ(Engine().GetColumnCount(), 10);
    EXPECT_EQ(UndoSteps(), 2u);

    for (const auto& zoom : {std::make_pair(Qt::Key_Plus, 7), std::make_pair(Qt::Key_Equal, 7),
                             std::make_pair(Qt::Key_Minus, 13)}) {
        View(20, 10);
        Key(zoom.first);
        EXPECT_EQ(Engine().GetColumnCount(), zoom.second) << "key " << zoom.first;
    }
    EXPECT_EQ(UndoSteps(), 5u);
}

TEST_F(Zoom, DraggedSelectionIsMarkedAtItsStartAndAtTheMouse) {
    const boost::shared_ptr<gx::Area> area = widget->GetChart()->GetAreas().front();
    const QRect r = area->Rect();
    pf::ScaleEngine& e = Engine();
    const QPoint press(r.left() + r.width() / 4, r.center().y());
    const QPoint drag(r.left() + 3 * r.width() / 4, r.center().y());
    QMouseEvent down(QEvent::MouseButtonPress, press, widget->mapToGlobal(press), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &down);
    QMouseEvent move(QEvent::MouseMove, drag, widget->mapToGlobal(drag), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &move);
    ASSERT_TRUE(e.GetFlag());

    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        widget->Draw(painter, true);
    }
    const int columnWidth = int(e.GetWidth()) / e.GetColumnCount();
    auto markerX = [&](int position) { return int(e.TranslateX(position) + e.GetLeft() + columnWidth * 0.5); };
    auto blackColumn = [&](int x) {
        for (int y = r.top() + 1; y < r.bottom(); ++y)
            if (image.pixel(x, y) != qRgb(0, 0, 0)) return false;
        return true;
    };
    // The end is the mouse's column; the middle (one column before it) has no marker.
    ASSERT_GT(columnWidth, 2);
    EXPECT_TRUE(blackColumn(markerX(e.GetZoomStartPos())));
    EXPECT_TRUE(blackColumn(markerX(e.GetZoomEndPos())));
    EXPECT_EQ(e.GetZoomMiddlePos(), e.GetZoomEndPos() - 1);
    EXPECT_FALSE(blackColumn(markerX(e.GetZoomMiddlePos())));
    QMouseEvent up(QEvent::MouseButtonRelease, press, widget->mapToGlobal(press), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(widget.get(), &up);
}

}  // namespace
