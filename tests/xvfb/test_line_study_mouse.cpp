// A line study placed, dragged, undone and cancelled with QTest mouse and key events on a real
// window (Xvfb). The module runs as the terminal loads it; the line-study provider is a fake
// that answers on the emulator's side, and the picture is read back from the window's grab.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include "FakeLsProvider.h"
#include "OnScreenChart.h"
#include "host/UndoStack.h"

namespace {

class LineStudyMouse : public OnScreenChart {
protected:
    FakeLsProvider provider;

    void SetUp() override {
        Start();
        for (unsigned int m : {MSG_LS_CREATE_OBJECT, MSG_LS_DELETE, MSG_LS_SHAPE_SIZES, MSG_LS_GET_LIST_CONTROLPOINTER,
                               MSG_LS_PROPERTIES, MSG_LS_TITLE, MSG_LS_FOCUS, MSG_LS_ATTACH, MSG_LS_DETACH,
                               MSG_LS_DRAWING_MODE, MSG_LS_END_DRAWING, MSG_LS_BEFORE_PROPERTIES})
            H().on(m, [this, m](void* target, std::intptr_t p1, std::intptr_t p2, std::string&) {
                const int r = provider.Handle(target, m, p1, p2);
                return r < 0 ? (m == MSG_LS_DRAWING_MODE ? 0 : 1) : r;
            });
        ShowChart(QSize(1300, 950));
    }
    // A move delivered to the chart at once. QTest's own moves go through the X server's
    // pointer and may arrive after the next press when the machine is busy.
    void MoveTo(const QPoint& at, Qt::MouseButtons buttons = Qt::NoButton) {
        QMouseEvent event(QEvent::MouseMove, at, chart->mapToGlobal(at), Qt::NoButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(chart, &event);
    }
    // Whether the study's colour is within two pixels of `at` in the window's picture.
    bool InkNear(const QPoint& at) {
        QApplication::processEvents();
        const QImage image = chart->grab().toImage();
        for (int dy = -2; dy <= 2; ++dy)
            for (int dx = -2; dx <= 2; ++dx) {
                const QPoint p = at + QPoint(dx, dy);
                if (image.rect().contains(p) && (image.pixel(p) & 0xFFFFFF) == provider.toolColor) return true;
            }
        return false;
    }
};

TEST_F(LineStudyMouse, PlacedDraggedUndoneAndCancelled) {
    const QRect area = chart->rect().adjusted(100, 80, -150, -120);
    const QPoint a(area.left() + area.width() / 4, area.top() + area.height() / 2);
    const QPoint b(area.left() + area.width() / 2, area.top() + area.height() / 4);
    provider.tool = "Line";
    QTest::mouseMove(chart, a);
    // A tool is chosen: the cursor is a cross (the move comes through the X server).
    EXPECT_TRUE(QTest::qWaitFor([&] { return chart->cursor().shape() == Qt::CrossCursor; }, 2000));
    QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, a);
    ASSERT_EQ(provider.studies.size(), 1u);
    const int before = provider.exchanges;
    MoveTo((a + b) / 2);
    MoveTo(b);
    EXPECT_EQ(provider.exchanges - before, 2);  // the rubber band
    QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, b);
    EXPECT_TRUE(provider.tool.empty());  // 3501: the drawing mode ends
    const QPoint middle = (a + b) / 2;
    EXPECT_TRUE(InkNear(middle));

    // Dragged as a whole by 120 pixels to the right.
    const std::size_t steps = emulator->undo().records().size();
    const QPoint moved = middle + QPoint(120, 0);
    QTest::mousePress(chart, Qt::LeftButton, Qt::NoModifier, middle);
    MoveTo(middle, Qt::LeftButton);  // the first move only takes its place
    MoveTo(middle + QPoint(60, 0), Qt::LeftButton);
    MoveTo(moved, Qt::LeftButton);
    QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, moved);
    EXPECT_TRUE(InkNear(moved));
    EXPECT_FALSE(InkNear(middle + QPoint(0, -30)) && InkNear(middle));
    ASSERT_EQ(emulator->undo().records().size(), steps + 1);
    EXPECT_EQ(emulator->undo().titles().back(), QStringLiteral("Move Line"));
    EXPECT_TRUE(emulator->undo().undo().sent);
    EXPECT_TRUE(InkNear(middle));
    EXPECT_FALSE(InkNear(moved + QPoint(40, 0)) && !InkNear(middle));

    // A second study started and cancelled with Escape before its second point.
    provider.tool = "Line";
    const QPoint c(area.left() + 40, area.bottom() - 30);
    const std::size_t studies = provider.studies.size();
    QTest::mousePress(chart, Qt::LeftButton, Qt::NoModifier, c);
    ASSERT_EQ(provider.studies.size(), studies + 1);
    QTest::keyClick(chart, Qt::Key_Escape);
    // The drawing mode ends; the study is the host's to drop, not deleted by the chart.
    EXPECT_TRUE(provider.tool.empty());
    EXPECT_FALSE(provider.studies.rbegin()->second.deleted);
    EXPECT_EQ(chart->cursor().shape(), Qt::ArrowCursor);
}

}  // namespace
