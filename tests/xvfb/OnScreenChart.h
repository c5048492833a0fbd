// The real module's chart window on the X server's screen, for the tests run under xvfb-run:
// the emulated terminal's main window shown (the emulator keeps it off the screen otherwise)
// with one maximised Point and Figure window of USD/CHF.
#pragma once

#include <QGuiApplication>
#include <QMainWindow>
#include <QMdiSubWindow>
#include <QTest>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"

class OnScreenChart : public ModuleHostTest {
protected:
    // After Start(): shows the main window at `size` and opens the chart window in it.
    void ShowChart(const QSize& size) {
        ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb")) << "run under xvfb-run";
        QMainWindow* main = emulator->mainWindow().window();
        main->hide();
        main->setAttribute(Qt::WA_DontShowOnScreen, false);
        main->resize(size);
        main->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(main));
        handle = emulator->charts().create(host::data::ChartType::PointAndFigure);
        ASSERT_NE(handle, nullptr);
        emulator->charts().subWindow(handle)->showMaximized();
        ASSERT_EQ(emulator->charts().drop(handle, {"USDCHF"}), 0);
        QTest::qWait(50);
        chart = emulator->charts().chartWidget(handle);
        ASSERT_NE(chart, nullptr);
    }
    void TearDown() override {
        if (emulator) emulator->charts().destroyAll();
    }

    void* handle = nullptr;
    QWidget* chart = nullptr;
};
