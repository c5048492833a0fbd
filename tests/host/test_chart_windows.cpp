// The terminal's side of the chart windows with no module loaded: the main window and its
// status-bar panes, the records the host builds and its answers to window messages about
// windows it does not have. The window life cycle with the real module is tested in
// tests/integration.
#include <gtest/gtest.h>

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <cstring>

#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"

using host::data::ChartType;

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }
void* Fake(std::intptr_t value) { return reinterpret_cast<void*>(value); }

// The status-bar registration as the module's text status bar sends it.
coreInterfaceRequest StatusBarRequest(coreStatusBarPanes* panes) {
    coreInterfaceRequest r;
    std::memset(&r, 0, sizeof r);
    std::strcpy(r.kind, "STATUSBAR");
    std::strcpy(r.provider, "TELVIX");
    std::strcpy(r.name, "telvixStatusBar");
    r.count = 1;
    r.result = reinterpret_cast<void**>(panes);
    return r;
}

// An emulator with no module loaded: the module's side is played by the test.
class HostSide : public ::testing::Test {
protected:
    int Send(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2 = 0) {
        return host::Host::callback(target, message, p1, p2);
    }
    void* Core() { return emulator.host().coreHandle(); }
    host::MainWindowService& Main() { return emulator.mainWindow(); }
    host::ChartWindows& Charts() { return emulator.charts(); }

    host::Emulator emulator;
};

}  // namespace

TEST_F(HostSide, MainWindowAndStatusPanesAreRealWidgetsFoundByTheirIds) {
    std::int32_t id = -1;
    ASSERT_EQ(Send(Main().handle(), MSG_MAIN_WINDOW_ID, P(&id)), 0);
    EXPECT_EQ(QWidget::find(WId(id)), Main().window());
    EXPECT_EQ(Main().window()->centralWidget(), Main().mdiArea());

    coreStatusBarPanes panes{2, {0, 0}};
    coreInterfaceRequest request = StatusBarRequest(&panes);
    ASSERT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&request)), 0);
    EXPECT_EQ(QWidget::find(WId(panes.windowId[CORE_STATUS_PANE_TIME])), Main().timeLabel());
    EXPECT_EQ(QWidget::find(WId(panes.windowId[CORE_STATUS_PANE_PRICE])), Main().priceLabel());
    EXPECT_EQ(Main().statusPanes(), std::vector<const coreStatusBarPanes*>{&panes});

    // 7000 and 7001 write the one pane asked for.
    const std::int32_t price = panes.windowId[CORE_STATUS_PANE_PRICE];
    panes.windowId[0] = panes.windowId[1] = 0;
    EXPECT_EQ(Send(Core(), MSG_STATUS_PANE_ID, P(&panes), CORE_STATUS_PANE_PRICE), 0);
    EXPECT_EQ(std::make_pair(+panes.windowId[0], +panes.windowId[1]), std::make_pair(0, price));
    EXPECT_EQ(Send(Core(), MSG_STATUS_PANE_ID_AGAIN, P(&panes), CORE_STATUS_PANE_TIME), 0);
    EXPECT_EQ(QWidget::find(WId(panes.windowId[0])), Main().timeLabel());

    // Other kinds are still looked up in the interface registry.
    void* found = nullptr;
    coreInterfaceRequest lookUp = StatusBarRequest(nullptr);
    std::strcpy(lookUp.kind, "MAINWINDOW");
    std::memset(lookUp.name, 0, sizeof lookUp.name);
    lookUp.result = &found;
    ASSERT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&lookUp)), 0);
    EXPECT_EQ(found, Main().handle());

    // Properties requests (3092) are only recorded, and only from the main window interface.
    EXPECT_EQ(Send(Main().handle(), MSG_SHOW_PROPERTIES, 0x7100, 0x7200), 0);
    EXPECT_EQ(Send(Core(), MSG_SHOW_PROPERTIES, 0x7100, 0x7200), 1);
    ASSERT_EQ(Main().propertiesRequests().size(), 1u);
    EXPECT_EQ(Main().propertiesRequests()[0].widget, Fake(0x7100));
    EXPECT_EQ(Main().propertiesRequests()[0].indicator, Fake(0x7200));
}

TEST_F(HostSide, HostileStatusPaneRequestsAnswerOneAndWriteNothing) {
    coreStatusBarPanes wrongCount{3, {-5, -5}};
    coreInterfaceRequest request = StatusBarRequest(&wrongCount);
    EXPECT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&request)), 1);
    EXPECT_EQ(std::make_pair(+wrongCount.windowId[0], +wrongCount.windowId[1]), std::make_pair(-5, -5));
    coreStatusBarPanes panes{2, {-5, -5}};
    request = StatusBarRequest(&panes);
    request.count = 0;
    EXPECT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&request)), 1);
    request = StatusBarRequest(nullptr);
    EXPECT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&request)), 1);
    EXPECT_TRUE(Main().statusPanes().empty());

    // A record never registered is not written; nor is one asked for a pane it lacks.
    for (unsigned int m : {MSG_STATUS_PANE_ID, MSG_STATUS_PANE_ID_AGAIN}) {
        EXPECT_EQ(Send(Core(), m, P(&panes), 0), 1);
        EXPECT_EQ(Send(Core(), m, 0, 0), 1);
    }
    EXPECT_EQ(panes.windowId[0], -5);
    request = StatusBarRequest(&panes);
    ASSERT_EQ(Send(Core(), MSG_GET_INTERFACE, P(&request)), 0);
    panes.windowId[0] = panes.windowId[1] = -5;
    for (std::intptr_t index : {std::intptr_t(2), std::intptr_t(-1), std::intptr_t(1) << 20})
        EXPECT_EQ(Send(Core(), MSG_STATUS_PANE_ID, P(&panes), index), 1) << index;
    EXPECT_EQ(Send(Main().handle(), MSG_STATUS_PANE_ID, P(&panes), 0), 1);  // not the core's
    EXPECT_EQ(std::make_pair(+panes.windowId[0], +panes.windowId[1]), std::make_pair(-5, -5));
}

TEST_F(HostSide, DropRecordsDescribeTheDataCoresInstruments) {
    fxwcDropInstrument r;
    std::memset(&r, 0xAB, sizeof r);
    ASSERT_TRUE(Charts().dropRecord("USDCHF", std::nullopt, &r));
    EXPECT_EQ(static_cast<void*>(r.baseHandle), emulator.data().baseHandle("USDCHF"));
    const char* name = reinterpret_cast<const char*>(&r) + offsetof(fxwcDropInstrument, name);
    EXPECT_EQ(host::data::readWide(name, 255), "USDCHF");
    EXPECT_STREQ(r.symbol, "USDCHF");
    EXPECT_STREQ(r.instrumentType, "Currency");
    EXPECT_STREQ(r.providerName, "TELVIX");
    EXPECT_EQ(std::make_tuple(int(r.periodType), int(r.periodLength), int(r.startTime), int(r.reserved), int(r.style)),
              std::make_tuple(int('I'), 30, 0, 0, 0));
    // Nothing of the filler is left behind the texts.
    for (std::size_t i = 7 * sizeof(coreWChar); i < 255 * sizeof(coreWChar); ++i) ASSERT_EQ(name[i], 0) << i;
    EXPECT_EQ(r.symbol[254], 0);

    ASSERT_TRUE(Charts().dropRecord("TTRC", std::nullopt, &r));
    EXPECT_EQ(std::make_pair(int(r.periodType), int(r.periodLength)), std::make_pair(int('D'), 1));
    ASSERT_TRUE(Charts().dropRecord("USDCHF", namePeriod{'D', 1}, &r));
    EXPECT_EQ(std::make_pair(int(r.periodType), int(r.periodLength)), std::make_pair(int('D'), 1));
    EXPECT_FALSE(Charts().dropRecord("EURUSD", std::nullopt, &r));
}

TEST_F(HostSide, WindowMessagesAboutNoWindowOfTheHostAnswerOne) {
    const coreWChar title[] = {'T', 0};
    for (void* widget : {Fake(0), Fake(0x7300)})
        EXPECT_EQ(Send(Core(), MSG_TITLE_CHANGED, P(widget), P(title)), 1);
    EXPECT_EQ(Send(Core(), MSG_TITLE_CHANGED, 0x7300, 0), 1);

    EXPECT_EQ(Send(Core(), MSG_WINDOW_DESTROYED, 0), 1);
    fxwcWindowDestroyed gone{Fake(0x7400), Fake(0x7300)};
    EXPECT_EQ(Send(Main().handle(), MSG_WINDOW_DESTROYED, P(&gone)), 1);  // not to the core
    EXPECT_EQ(Send(Core(), MSG_WINDOW_DESTROYED, P(&gone)), 1);
    ASSERT_EQ(Charts().destroyedRecords().size(), 1u);  // recorded all the same
    EXPECT_EQ(Charts().destroyedRecords()[0].hostHandle, Fake(0x7400));

    // With no module there is no chart window, and no sub-window is left behind.
    EXPECT_EQ(Charts().create(ChartType::Renko), nullptr);
    EXPECT_TRUE(Main().mdiArea()->subWindowList().empty());
    EXPECT_EQ(Charts().drop(Fake(0x7300), {"USDCHF"}), -1);
    EXPECT_EQ(Charts().show(Fake(0x7300)), -1);
    EXPECT_FALSE(Charts().destroy(Fake(0x7300)));
    EXPECT_TRUE(Charts().grab(Fake(0x7300), QSize(10, 10)).isNull());
}
