// A chart window on a real X server (Xvfb): the emulated terminal shows its main window with
// one Point and Figure window of USD/CHF, and the test plays the user with Qt's tool-tip
// events and QTest mouse events on the module's widget.
#include <gtest/gtest.h>

#include <QAbstractSlider>
#include <QApplication>
#include <QHelpEvent>
#include <QRegularExpression>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QToolTip>
#include <cstring>
#include <memory>

#include "OnScreenChart.h"
#include "host/DataCore.h"
#include "host/data/ChartObject.h"

namespace {

struct Column {
    bool found = false;
    int index = -1;
    QString text;
};

class WindowInput : public OnScreenChart {
protected:
    void SetUp() override {
        Start();
        ShowChart(QSize(1300, 950));
        records = ChartRecords();
        ASSERT_GT(records.size(), 300u);
    }

    std::vector<fxChartTypeRecord> ChartRecords() {
        std::vector<fxChartTypeRecord> out;
        for (const auto& c : emulator->data().chartObjects()) {
            const fxDataPointArray* a = c->array();
            for (int i = 0; i < a->pointCount; ++i) {
                fxChartTypeRecord r;
                std::memcpy(&r, a->points + std::size_t(i) * sizeof r, sizeof r);
                out.push_back(r);
            }
        }
        return out;
    }
    // The module's time scroll bar: the slider child that is not the zoom slider.
    QAbstractSlider* ScrollBar() {
        for (QAbstractSlider* s : chart->findChildren<QAbstractSlider*>())
            if (!qobject_cast<QSlider*>(s)) return s;
        return nullptr;
    }
    // The tool bar's zoom slider.
    QSlider* ZoomSlider() { return chart->findChild<QSlider*>(); }
    // Sends the tool-tip event a resting mouse makes and reads what the window showed.
    Column TipAt(QPoint p) {
        // A tip being hidden lingers for a moment: take it down at once so that only what
        // this event shows is read.
        for (QWidget* w : QApplication::topLevelWidgets())
            if (w->inherits("QTipLabel")) w->hide();
        QHelpEvent event(QEvent::ToolTip, p, chart->mapToGlobal(p));
        QApplication::sendEvent(chart, &event);
        Column c;
        c.text = QToolTip::isVisible() ? QToolTip::text() : QString();
        if (c.text.isEmpty()) return c;
        // "USDCHF/30 Min\nFirst value: v\nLast value: e\ndd.MM.yyyy hh:mm:ss"
        const QStringList lines = c.text.split(QLatin1Char('\n'));
        if (lines.size() < 4) return c;
        const QDateTime when = QDateTime::fromString(lines[3], QStringLiteral("dd.MM.yyyy hh:mm:ss"));
        for (std::size_t i = 0; i < records.size(); ++i)
            if (QDateTime::fromSecsSinceEpoch(records[i].time, Qt::LocalTime) == when &&
                lines[1].endsWith(QString::number(double(records[i].value), 'f', 4)) &&
                lines[2].endsWith(QString::number(double(records[i].end), 'f', 4))) {
                c.found = true;
                c.index = int(i);
                break;
            }
        return c;
    }
    // The first column met walking right from x, each x tried over the chart's height.
    Column ColumnFrom(int x, int, int* atX) {
        for (; x < chart->width() - 60; ++x) {
            for (int y = 50; y < chart->height() - 80; y += 10) {
                Column c = TipAt(QPoint(x, y));
                if (c.found) {
                    *atX = x;
                    return c;
                }
            }
        }
        return Column();
    }

    std::vector<fxChartTypeRecord> records;
};

TEST_F(WindowInput, ToolTipOverAColumnShowsThatColumnsFigures) {
    int x = 0;
    const Column c = ColumnFrom(chart->width() / 2, chart->height() / 2, &x);
    ASSERT_TRUE(c.found) << "no column answered a tool tip";
    EXPECT_TRUE(c.text.startsWith(QStringLiteral("USDCHF"))) << c.text.toStdString();
    EXPECT_TRUE(c.text.contains(QStringLiteral("First value"))) << c.text.toStdString();
    // Columns further right are later ones.
    int x2 = 0;
    const Column later = ColumnFrom(x + 40, chart->height() / 2, &x2);
    ASSERT_TRUE(later.found);
    EXPECT_GT(later.index, c.index);
    // Over empty space the tip is empty.
    EXPECT_TRUE(TipAt(QPoint(chart->width() / 2, 30)).text.isEmpty());
}

TEST_F(WindowInput, LeftDragAcrossMoreThanSixColumnsZoomsAndShorterDragsDoNot) {
    QAbstractSlider* bar = ScrollBar();
    ASSERT_NE(bar, nullptr);
    const int total = int(records.size());
    const int visibleBefore = total + 5 - bar->maximum();  // maximum = total - visible + free steps
    ASSERT_EQ(visibleBefore, 300);
    int x1 = 0;
    const Column a = ColumnFrom(chart->width() / 3, chart->height() / 2, &x1);
    ASSERT_TRUE(a.found);
    const double column = double(chart->width() - 100) / visibleBefore;  // about, for the short drag
    const int y = chart->height() / 2;

    // About four columns: nothing changes.
    QTest::mousePress(chart, Qt::LeftButton, Qt::NoModifier, QPoint(x1, y));
    QTest::mouseMove(chart, QPoint(x1 + int(4 * column), y));
    QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, QPoint(x1 + int(4 * column), y));
    EXPECT_EQ(total + 5 - bar->maximum(), visibleBefore);
    EXPECT_EQ(bar->value(), 0);

    // Sixty columns: the window shows about those sixty, starting at the first one dragged over.
    int x2 = 0;
    const Column b = ColumnFrom(x1 + int(60 * column), y, &x2);
    ASSERT_TRUE(b.found);
    QTest::mousePress(chart, Qt::LeftButton, Qt::NoModifier, QPoint(x1, y));
    for (int x = x1; x <= x2; x += 10) QTest::mouseMove(chart, QPoint(x, y));
    QTest::mouseRelease(chart, Qt::LeftButton, Qt::NoModifier, QPoint(x2, y));
    const int visibleAfter = total + 5 - bar->maximum();
    EXPECT_NEAR(visibleAfter, b.index - a.index, 2);
    EXPECT_NEAR(bar->value(), a.index, 1);
    // The leftmost column now is the first one of the selection.
    int left = 0;
    const Column first = ColumnFrom(0, y, &left);
    ASSERT_TRUE(first.found);
    EXPECT_EQ(first.index, bar->value());
}

TEST_F(WindowInput, KeysScrollTheBarAndZoomThroughTheSlider) {
    QAbstractSlider* bar = ScrollBar();
    QSlider* slider = ZoomSlider();
    ASSERT_NE(bar, nullptr);
    ASSERT_NE(slider, nullptr);
    const int total = int(records.size());
    const int end = total - 300 + 5;  // the first display: 300 positions, 5 free steps
    ASSERT_EQ(bar->maximum(), end);
    ASSERT_EQ(bar->value(), 0);
    struct Case {
        int key;
        Qt::KeyboardModifiers modifiers;
        int value;
    };
    const Case scrolls[] = {
        {Qt::Key_End, Qt::NoModifier, end},   {Qt::Key_Home, Qt::NoModifier, 0},
        {Qt::Key_Right, Qt::NoModifier, 1},   {Qt::Key_Right, Qt::AltModifier, 11},
        {Qt::Key_Left, Qt::NoModifier, 10},   {Qt::Key_Left, Qt::AltModifier, 0},
        {Qt::Key_Right, Qt::ControlModifier, end}, {Qt::Key_Left, Qt::ControlModifier, 0},
        {Qt::Key_Left, Qt::NoModifier, 0},    // already at the start
    };
    for (const Case& c : scrolls) {
        QTest::keyClick(chart, Qt::Key(c.key), c.modifiers);
        EXPECT_EQ(bar->value(), c.value) << "key " << std::hex << c.key << " modifiers " << int(c.modifiers);
    }
    // "+" and "=" zoom in keeping the right edge, "-" zooms out; the slider follows.
    const struct {
        char key;
        int visible;
        int first;
    } zooms[] = {{'+', 230, 70}, {'=', 176, 124}, {'-', 228, 72}, {'+', 175, 125}, {'+', 134, 166}};
    for (const auto& z : zooms) {
        QTest::keyClick(chart, z.key);
        EXPECT_EQ(total + 5 - bar->maximum(), z.visible) << z.key;
        EXPECT_EQ(bar->value(), z.first) << z.key;
        EXPECT_EQ(slider->value(), total - z.visible) << z.key;
    }
    EXPECT_EQ(slider->maximum(), total - 4);
    // Page Up moves forward by the positions on screen, Page Down back.
    const int page = total + 5 - bar->maximum();
    ASSERT_LT(page, bar->maximum());
    QTest::keyClick(chart, Qt::Key_Home);
    QTest::keyClick(chart, Qt::Key_PageUp);
    EXPECT_EQ(bar->value(), page);
    QTest::keyClick(chart, Qt::Key_PageUp);
    EXPECT_EQ(bar->value(), bar->maximum());
    QTest::keyClick(chart, Qt::Key_PageDown);
    EXPECT_EQ(bar->value(), bar->maximum() - page);

    // Escape ends the cross cursor switched on at the tool bar.
    QToolButton* cross = nullptr;
    for (QToolButton* b : chart->findChildren<QToolButton*>())
        if (b->isCheckable()) cross = b;
    ASSERT_NE(cross, nullptr);
    QTest::mouseClick(cross, Qt::LeftButton);
    ASSERT_TRUE(cross->isChecked());
    EXPECT_EQ(chart->cursor().shape(), Qt::CrossCursor);
    QTest::keyClick(chart, Qt::Key_Escape);
    EXPECT_FALSE(cross->isChecked());
    EXPECT_EQ(chart->cursor().shape(), Qt::ArrowCursor);
}

}  // namespace
