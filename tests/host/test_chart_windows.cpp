// The terminal's side of the chart windows, without the real module: the main window and
// its status-bar panes, the records the host builds and its answers to the module's window
// messages, and against a stand-in module the window life cycle, layouts, drags, context
// menus, printing and the remaining window messages.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QPointer>
#include <QProcess>
#include <QTemporaryDir>
#include <cstring>
#include <memory>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DialogAnswerer.h"
#include "host/DragData.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/workdata/WorkTree.h"

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

// ---- with the stand-in module ----

namespace {

const QRgb kStandInColour = qRgb(0x33, 0x66, 0x99);

class StandIn : public ::testing::Test {
protected:
    void SetUp() override {
        host::EmulatorOptions options;
        options.modulePath = PF_STANDIN_MODULE_PATH;
        emulator.reset(new host::Emulator(options));
        std::string error;
        ASSERT_TRUE(emulator->loadModule(&error)) << error;
        emulator->startUp();
    }
    host::Host& H() { return emulator->host(); }
    host::ChartWindows& Charts() { return emulator->charts(); }
    void* Interface(const char* name) { return emulator->core().componentObject(name); }
    std::size_t Count(unsigned int message) { return H().journal().find(message).size(); }

    std::unique_ptr<host::Emulator> emulator;
};

}  // namespace

TEST_F(StandIn, CreatedWindowsHoldTheModulesWidgetInTheirOwnSubWindow) {
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_NE(renko, nullptr);
    QWidget* container = Charts().container(renko);
    ASSERT_NE(container, nullptr);
    EXPECT_EQ(Charts().subWindow(renko)->widget(), container);
    // The module found the container by the id 5003 gave and put its widget in it.
    const auto children = container->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    ASSERT_EQ(children.size(), 1);
    EXPECT_EQ(static_cast<void*>(children[0]), renko);
    EXPECT_TRUE(children[0]->isVisible());
    EXPECT_EQ(children[0]->size(), container->size());  // the 5005 after 5003
    // The title came while 5003 was still running.
    EXPECT_EQ(Charts().title(renko).toStdString(), "Stand-in Renko");
    EXPECT_EQ(Charts().subWindow(renko)->windowTitle().toStdString(), "Stand-in Renko");
    EXPECT_EQ(Charts().interfaceOf(renko), Interface("Renko"));

    void* pf = Charts().create(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    EXPECT_NE(pf, renko);
    EXPECT_EQ(Charts().widgets(), (std::vector<void*>{renko, pf}));
    EXPECT_EQ(emulator->mainWindow().mdiArea()->subWindowList().size(), 2);
}

TEST_F(StandIn, GrabResizesTheContainerAndThePictureHoldsTheChart) {
    void* kagi = Charts().create(ChartType::Kagi);
    ASSERT_NE(kagi, nullptr);
    const std::size_t resizes = Count(MSG_WC_RESIZE);
    const QImage image = Charts().grab(kagi, QSize(640, 480));
    ASSERT_EQ(image.size(), QSize(640, 480));
    EXPECT_GT(Count(MSG_WC_RESIZE), resizes);
    // The chart filled the resized container: its colour reaches every corner.
    for (const QPoint& p : {QPoint(0, 0), QPoint(639, 0), QPoint(0, 479), QPoint(639, 479)})
        EXPECT_EQ(image.pixel(p), kStandInColour) << p.x() << "," << p.y();
    EXPECT_EQ(Charts().grab(kagi, QSize(300, 200)).size(), QSize(300, 200));
}

TEST_F(StandIn, DropSendsOneRecordPerInstrument) {
    void* pf = Charts().create(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    ASSERT_EQ(Charts().drop(pf, {"USDCHF", "TTRC"}), 0);
    // The stand-in titles the window with what it read from the records.
    EXPECT_EQ(Charts().title(pf).toStdString(),
              "USDCHF name=USDCHF kind=Currency provider=TELVIX period=I30 start=0 style=0 base=yes; "
              "TTRC name=TTRC kind=Currency provider=TELVIX period=D1 start=0 style=0 base=yes");
    ASSERT_EQ(Charts().drop(pf, {"USDCHF"}, namePeriod{'D', 1}), 0);
    EXPECT_NE(Charts().title(pf).indexOf(QStringLiteral("period=D1")), -1);

    const std::size_t drops = Count(MSG_WC_DROP_INSTRUMENTS);
    EXPECT_EQ(Charts().drop(pf, {"USDCHF", "NOSUCH"}), -1);
    EXPECT_EQ(Count(MSG_WC_DROP_INSTRUMENTS), drops);  // nothing sent
}

TEST_F(StandIn, WindowsGoOnlyWhenTheModuleAnnouncesThem) {
    void* pf = Charts().create(ChartType::PointAndFigure);
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_TRUE(pf && renko);
    QPointer<QMdiSubWindow> pfWindow = Charts().subWindow(pf);

    // Sent to the wrong interface the stand-in neither announces nor deletes the widget.
    EXPECT_EQ(H().send(Interface("Renko"), MSG_WC_DESTROY, P(pf)), 1);
    EXPECT_TRUE(Charts().destroyedRecords().empty());

    ASSERT_TRUE(Charts().destroy(pf));
    ASSERT_EQ(Charts().destroyedRecords().size(), 1u);
    const fxwcWindowDestroyed gone = Charts().destroyedRecords()[0];
    EXPECT_EQ(gone.widget, pf);
    EXPECT_EQ(gone.hostHandle, emulator->core().components()[0].handle);
    EXPECT_TRUE(pfWindow.isNull());
    EXPECT_EQ(Charts().widgets(), std::vector<void*>{renko});
    EXPECT_FALSE(Charts().destroy(pf));

    // An emulator closed with a window open destroys it while the module is still there.
    QPointer<QWidget> left = static_cast<QWidget*>(renko);
    emulator.reset();
    EXPECT_TRUE(left.isNull());
}

TEST_F(StandIn, LayoutsAreSavedIntoTheirOwnDocumentAndLoadedIntoAFreshWindow) {
    QTemporaryDir dir;
    const QString path = dir.filePath("layout.xml");
    void* kagi = Charts().create(ChartType::Kagi);
    ASSERT_NE(kagi, nullptr);
    QString error;
    ASSERT_TRUE(emulator->layouts().save(kagi, path, &error)) << error.toStdString();
    // Saved again after a change: the document is replaced, not added to.
    ASSERT_EQ(Charts().drop(kagi, {"TTRC"}), 0);
    ASSERT_TRUE(emulator->layouts().save(kagi, path, &error)) << error.toStdString();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    host::workdata::Node top;
    ASSERT_TRUE(host::workdata::parse(file.readAll(), top));
    ASSERT_EQ(top.children.size(), 1u);
    const host::workdata::Node& root = *top.children[0];
    EXPECT_EQ(root.name, "ChartLayout");
    EXPECT_EQ(*root.attribute("Type"), "kagi");
    ASSERT_EQ(root.children.size(), 1u);
    EXPECT_EQ(root.children[0]->name, "ChartWindow");
    ASSERT_EQ(root.children[0]->children.size(), 1u);
    EXPECT_EQ(root.children[0]->children[0]->attribute("Title")->left(4), "TTRC");
    QProcess lint;
    lint.start("xmllint", {"--noout", path});
    if (lint.waitForFinished(10000)) EXPECT_EQ(lint.exitCode(), 0) << lint.readAllStandardError().constData();

    ChartType type = ChartType::PointAndFigure;
    EXPECT_TRUE(emulator->layouts().typeOf(path, &type));
    EXPECT_EQ(type, ChartType::Kagi);
    void* loaded = emulator->layouts().load(ChartType::Renko, path, &error);
    ASSERT_NE(loaded, nullptr) << error.toStdString();
    EXPECT_EQ(Charts().interfaceOf(loaded), Interface("Renko"));
    EXPECT_EQ(Charts().title(loaded).toStdString(), "loaded PFWidget");  // the ChartWindow node
}

TEST_F(StandIn, LayoutsRefuseFilesThatAreNoLayoutAndLeaveThemAlone) {
    QTemporaryDir dir;
    const QString other = dir.filePath("other.xml");
    QFile file(other);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<Skin Colour=\"1\"/>\n");
    file.close();
    void* pf = Charts().create(ChartType::PointAndFigure);
    QString error;
    EXPECT_FALSE(emulator->layouts().save(pf, other, &error));
    EXPECT_FALSE(emulator->layouts().save(reinterpret_cast<void*>(0x7300), dir.filePath("x.xml"), &error));
    const std::size_t windows = Charts().widgets().size();
    EXPECT_EQ(emulator->layouts().load(ChartType::Renko, other, &error), nullptr);
    EXPECT_EQ(emulator->layouts().load(ChartType::Renko, dir.filePath("missing.xml"), &error), nullptr);
    EXPECT_EQ(Charts().widgets().size(), windows);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("<Skin Colour=\"1\"/>\n"));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("missing.xml")));
}

TEST_F(StandIn, DragsReachTheWidgetAndItsDropsAreDescribedByTheHost) {
    void* pf = Charts().create(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    EXPECT_TRUE(Charts().dragDrop(pf, host::drag::instrumentDrag("USDCHF").get(), QPoint(10, 10)));
    EXPECT_EQ(Charts().title(pf).toStdString(),
              "USDCHF name=USDCHF kind=Currency provider=TELVIX period=I30 start=0 style=0 base=yes");
    const auto describe = H().journal().find(MSG_DESCRIBE_DRAG);
    ASSERT_EQ(describe.size(), 1u);
    EXPECT_EQ(describe[0].result, 0);
    EXPECT_EQ(H().journal().find(MSG_HEAD_NODE_INFO).back().result, 0);  // the base series is known

    EXPECT_TRUE(Charts().dragDrop(pf, host::drag::primitiveDrag("TTRC", ChartType::Renko).get(), QPoint(5, 5)));
    EXPECT_NE(Charts().title(pf).indexOf("TTRC name=TTRC"), -1);
    EXPECT_NE(Charts().title(pf).indexOf("style=1"), -1);

    // Refused by the host, or not taken by the widget at all.
    EXPECT_FALSE(Charts().dragDrop(pf, host::drag::instrumentDrag("EURUSD").get(), QPoint(5, 5)));
    QMimeData text;
    text.setText("USDCHF");
    EXPECT_FALSE(Charts().dragDrop(pf, &text, QPoint(5, 5)));
    EXPECT_FALSE(Charts().dragDrop(reinterpret_cast<void*>(0x7300), &text, QPoint(5, 5)));
    EXPECT_NE(Charts().title(pf).indexOf("TTRC"), -1);
}

TEST_F(StandIn, ContextMenuChoicesFollowTheirPathHoveringOnTheWay) {
    void* pf = Charts().create(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    const QPoint at(20, 20);
    EXPECT_EQ(Charts().contextMenuEntries(pf, at), QStringList("Trade >"));
    EXPECT_EQ(Charts().contextMenuEntries(pf, at, {"Trade"}), QStringList({"Deal", "Order"}));
    std::string error;
    ASSERT_TRUE(Charts().chooseFromContextMenu(pf, at, {"Trade", "Order"}, &error)) << error;
    EXPECT_EQ(Charts().title(pf).toStdString(), "chose Order after &Trade,Order");
    EXPECT_FALSE(Charts().chooseFromContextMenu(pf, at, {"Trade", "Close"}, &error));
    EXPECT_NE(error.find("Deal, Order"), std::string::npos) << error;
    EXPECT_FALSE(Charts().chooseFromContextMenu(pf, at, {"Deal"}, &error));  // not in the top menu
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(StandIn, PrintCaptionOwnerPanelAndPropertyMessagesCarryTheirRecords) {
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_NE(renko, nullptr);
    ASSERT_EQ(Charts().print(renko), 0);
    ASSERT_EQ(emulator->dialogs().answers().size(), 1u);
    EXPECT_TRUE(QFileInfo(emulator->dialogs().answers()[0].file).isFile());

    const host::ChartWindows::Caption whole = Charts().caption(renko);
    EXPECT_EQ(whole.text.toStdString(), "printed");
    EXPECT_TRUE(whole.terminated && !whole.overrun);
    const host::ChartWindows::Caption cut = Charts().caption(renko, 4);
    EXPECT_EQ(std::make_tuple(cut.answer, cut.text.toStdString(), cut.terminated, cut.overrun),
              std::make_tuple(0, std::string("pri"), true, false));

    const host::ChartWindows::Owner owner = Charts().owner(ChartType::Renko, renko);
    EXPECT_EQ(std::make_tuple(owner.answer, owner.widget, owner.iface), std::make_tuple(0, renko, Interface("Renko")));
    const host::ChartWindows::Owner none = Charts().owner(ChartType::Kagi, renko);
    EXPECT_EQ(std::make_tuple(none.answer, none.widget, none.iface), std::make_tuple(1, Fake(0), Fake(0)));

    EXPECT_EQ(Charts().panelStatus(renko, 3, -7), 0);
    EXPECT_EQ(Charts().title(renko).toStdString(), "panel status=3 value=-7");
    EXPECT_EQ(Charts().applyProperty(renko, Fake(0x7500), 5), 0);
    EXPECT_EQ(Charts().title(renko).toStdString(), "property value=5");
    for (int answer : {Charts().print(Fake(0x7300)), Charts().caption(Fake(0x7300)).answer,
                       Charts().panelStatus(Fake(0x7300), 1, 1), Charts().applyProperty(Fake(0x7300), nullptr, 1)})
        EXPECT_EQ(answer, -1);
}
