// The terminal's chart windows under real X events (xdotool) where Qt's test events would
// not show the fault: the status bar's time and price panes over a window opened during the
// session, a window opened while another is maximized, Ctrl+W, the channel tool's clicks,
// and the question a second instrument raises.
#include <QApplication>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTest>

#include "TerminalSession.h"
#include "Xdo.h"

namespace {

// Real X input to the terminal's own window (the test's process) through xdotool.
class XInput {
public:
    explicit XInput(QWidget* window) : window_(window) {}
    bool Available() const { return xdo_.Available(); }
    void Key(const QString& keys) {
        xdo_.Run({QStringLiteral("windowfocus"), QStringLiteral("--sync"), QString::number(window_->winId())});
        QTest::qWait(200);
        xdo_.Run({QStringLiteral("key"), QStringLiteral("--clearmodifiers"), keys});
        QTest::qWait(300);
    }
    // The mouse to a point of `widget`, given as shares of its width and height.
    void MoveTo(QWidget* widget, double x, double y) {
        const QPoint at = widget->mapToGlobal(QPoint(int(widget->width() * x), int(widget->height() * y)));
        xdo_.Run({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
        QTest::qWait(300);
    }
    void Click(QWidget* widget, double x, double y) {
        MoveTo(widget, x, y);
        xdo_.Run({QStringLiteral("click"), QStringLiteral("1")});
        QTest::qWait(300);
    }

private:
    Xdo xdo_;
    QWidget* window_;
};

// Two charts side by side: the mouse over the first, then over the second. The first repaints
// every second; the panes keep showing the time and price under the mouse in the second.
TEST_F(TerminalSession, TheStatusBarFollowsTheMouseOverEveryNormalWindow) {
    Open(QString());
    XInput x(terminal->window());
    if (!x.Available()) GTEST_SKIP() << "xdotool is not installed";
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    void* renko = terminal->newChart(ChartType::Renko);
    ASSERT_TRUE(DragInstrument(renko, QStringLiteral("USDCHF")));
    Trigger("tile");
    QTest::qWait(300);
    ASSERT_FALSE(Charts().subWindow(renko)->isMaximized());
    QLabel* time = emulator->mainWindow().timeLabel();
    QLabel* price = emulator->mainWindow().priceLabel();
    x.MoveTo(Charts().chartWidget(pf), 0.5, 0.5);
    ASSERT_TRUE(QTest::qWaitFor([time] { return !time->text().isEmpty(); }, 3000));
    const QString overFirst = time->text() + price->text();
    x.MoveTo(Charts().chartWidget(renko), 0.4, 0.4);
    x.MoveTo(Charts().chartWidget(renko), 0.6, 0.6);
    QTest::qWait(2500);
    EXPECT_FALSE(time->text().isEmpty());
    EXPECT_FALSE(price->text().isEmpty());
    EXPECT_NE(time->text() + price->text(), overFirst);
}

// Ctrl+3 while the active chart is maximized: the new chart fills the window area,
// maximized, and the main window's title names it.
TEST_F(TerminalSession, ANewChartOpensMaximizedUnderItsOwnTitleWhenTheActiveOneIs) {
    Open(QString());
    XInput x(terminal->window());
    if (!x.Available()) GTEST_SKIP() << "xdotool is not installed";
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    Charts().subWindow(pf)->showMaximized();
    QTest::qWait(200);
    x.Key(QStringLiteral("ctrl+3"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return Charts().widgets().size() == 2; }, 5000));
    QTest::qWait(300);
    QMdiArea* area = emulator->mainWindow().mdiArea();
    QMdiSubWindow* kagi = Charts().subWindow(Charts().widgets().back());
    EXPECT_EQ(area->activeSubWindow(), kagi);
    EXPECT_TRUE(kagi->isMaximized());
    EXPECT_TRUE(kagi->geometry().contains(area->viewport()->rect()))
        << kagi->geometry().width() << "x" << kagi->geometry().height() << " in " << area->viewport()->width() << "x"
        << area->viewport()->height();
    EXPECT_TRUE(terminal->window()->windowTitle().endsWith(QLatin1String("[Kagi]"))) << terminal->window()->windowTitle().toStdString();
}

// Ctrl+W closes the chart that has the focus, the one clicked last, and no other.
TEST_F(TerminalSession, CtrlWClosesTheChartThatHasTheFocus) {
    Open(QString());
    XInput x(terminal->window());
    if (!x.Available()) GTEST_SKIP() << "xdotool is not installed";
    // The empty Kagi chart is clicked (a click on a figure would open its settings).
    void* kagi = terminal->newChart(ChartType::Kagi);
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    Trigger("tile");
    QTest::qWait(300);
    x.Click(Charts().chartWidget(kagi), 0.5, 0.5);
    ASSERT_EQ(terminal->activeChart(), kagi);
    x.Key(QStringLiteral("ctrl+w"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return Charts().widgets().size() == 1; }, 3000));
    EXPECT_EQ(Charts().widgets().front(), pf);
}

// The question asked when an instrument is added to a chart that shows one says what each
// answer does: No keeps the chart's instrument and adds the new one as an area of its own.
TEST_F(TerminalSession, ReplaceInstrumentSaysThatNoAddsANewArea) {
    Open(QString());
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    emulator->dialogs().clearAnswers();
    ASSERT_TRUE(terminal->addToActiveChart(QStringLiteral("USDCHF")));
    ASSERT_EQ(emulator->dialogs().answers().size(), 1u);
    const host::DialogAnswerer::Answer& asked = emulator->dialogs().answers().front();
    EXPECT_TRUE(asked.text.startsWith(QLatin1String("Replace instrument?"))) << asked.text.toStdString();
    EXPECT_TRUE(asked.text.contains(QLatin1String("No adds it as a new area"))) << asked.text.toStdString();
    EXPECT_EQ(Charts().closeButtons(pf).size(), 2u);
}

}  // namespace
