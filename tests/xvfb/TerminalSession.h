// The emulated terminal as `pfhost terminal` runs it, on a real X server (Xvfb), for the
// tests that use it as a person would: the fixture opens the terminal with USD/CHF from its
// price file and one trading account, and offers the gestures and pictures those tests share.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <map>
#include <memory>
#include <vector>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/data/ChartObject.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/LatestPrices.h"
#include "host/terminal/Terminal.h"

using host::data::ChartType;
using host::terminal::Terminal;

inline const QString kUsdChf = QString::fromLatin1(PF_EXAMPLES_DIR "/usdchf-30min.csv");

class TerminalSession : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb")) << "run under xvfb-run";
        ASSERT_TRUE(dir.isValid());
        workspace = dir.filePath(QStringLiteral("workspace.xml"));
    }
    void TearDown() override { Close(); }

    // The terminal as `pfhost terminal` starts it, with USD/CHF from its price file (its last
    // 1,500 quotes held back for the replay) and one trading account.
    void Open(const QString& workspacePath, bool examples = false) {
        host::EmulatorOptions eo;
        eo.modulePath = PF_MODULE_PATH;
        emulator.reset(new host::Emulator(eo));
        std::string error;
        ASSERT_TRUE(emulator->loadModule(&error)) << error;
        emulator->dealing().addDemoAccounts(1);
        emulator->mainWindow().setOnScreen(true);
        emulator->startUp();
        emulator->dialogs().setReply(host::DialogAnswerer::Reply::No);
        host::terminal::TerminalOptions options;
        options.examples = examples;
        options.files << kUsdChf;
        options.workspace = workspacePath;
        options.holdBack = 1500;
        terminal.reset(new Terminal(*emulator, options));
        terminal->window()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(terminal->window()));
        terminal->window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(terminal->window()));
        terminal->start();
        ASSERT_TRUE(QTest::qWaitFor([this] { return terminal->isReady(); }, 20000));
    }
    void Close() {
        terminal.reset();
        emulator.reset();
    }

    host::ChartWindows& Charts() { return emulator->charts(); }
    void Trigger(const char* action) {
        QAction* a = terminal->action(QString::fromLatin1(action));
        ASSERT_NE(a, nullptr) << action;
        a->trigger();
    }
    // Columns, bricks or strokes the data core holds for each chart type's objects.
    std::map<ChartType, int> Figures() {
        std::map<ChartType, int> out;
        for (host::data::ChartObject* c : emulator->data().chartObjects()) out[c->type()] += c->array()->pointCount;
        return out;
    }
    // Drags the instrument's line of the Instruments panel onto the middle of the window: the
    // drag data is what the panel's own drag carries.
    bool DragInstrument(void* widget, const QString& name) {
        host::terminal::InstrumentPanel* panel = terminal->instruments();
        if (!panel->select(name)) return false;
        std::unique_ptr<QMimeData> mime(panel->model()->mimeData(panel->selectionModel()->selectedIndexes()));
        QWidget* chart = Charts().chartWidget(widget);
        if (!mime || !chart || !Charts().dragDrop(widget, mime.get(), chart->rect().center())) return false;
        // A new window, once filled, is scrolled to its newest figures (Options > Show the
        // latest prices in new charts).
        return QTest::qWaitFor([this, widget] { return !terminal->latestPrices().watching(widget); }, 5000);
    }
    // Every chart window in the order the window area stacks them, with its picture.
    // The chart windows' pictures in stacking order, once they have settled: posted resizes
    // and layouts of a window just opened can still change them on a busy machine.
    std::vector<std::pair<ChartType, QImage> > Grabs() {
        std::vector<std::pair<ChartType, QImage> > last = GrabsNow();
        QElapsedTimer clock;
        clock.start();
        for (;;) {
            QTest::qWait(50);
            std::vector<std::pair<ChartType, QImage> > now = GrabsNow();
            if (now == last || clock.elapsed() > 5000) return now;
            last = std::move(now);
        }
    }
    std::vector<std::pair<ChartType, QImage> > GrabsNow() {
        std::vector<std::pair<ChartType, QImage> > out;
        for (QMdiSubWindow* sub : emulator->mainWindow().mdiArea()->subWindowList(QMdiArea::StackingOrder))
            for (void* w : Charts().widgets())
                if (Charts().subWindow(w) == sub) {
                    ChartType type;
                    Charts().typeOf(w, &type);
                    out.push_back({type, Charts().container(w)->grab().toImage()});
                }
        return out;
    }

    QTemporaryDir dir;
    QString workspace;
    std::unique_ptr<host::Emulator> emulator;
    std::unique_ptr<Terminal> terminal;
};
