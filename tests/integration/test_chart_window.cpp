// The real libPFChartModule.so.1 as the terminal uses a chart window: created inside a
// host window (5003), filled by drops of instruments (5007), kept current by data notices
// (3009) and destroyed (5004, announced with 3150). Everything goes through the emulator's
// chart windows; the module is reached only through its entry points.
#include <gtest/gtest.h>

#include <QImage>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPointer>
#include <QSet>
#include <QWidget>
#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/data/ChartObject.h"

using host::data::ChartType;

namespace {

class ChartWindow : public ModuleHostTest {
protected:
    void SetUp() override { Load(); }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::DataCore& Data() { return emulator->data(); }
    void* Interface(const char* name) { return emulator->core().componentObject(name); }

    // The one widget the module put into the window's container.
    QWidget* ChartOf(void* widget) {
        QWidget* container = Charts().container(widget);
        if (!container) return nullptr;
        const auto children = container->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        return children.size() == 1 ? children[0] : nullptr;
    }
    static int Colours(const QImage& image) {
        QSet<QRgb> seen;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3) seen.insert(image.pixel(x, y));
        return seen.size();
    }
};

}  // namespace

TEST_F(ChartWindow, StartUpRegistersTheStatusPanesWithTheMainWindowsLabels) {
    emulator->startUp();
    ASSERT_EQ(emulator->mainWindow().statusPanes().size(), 1u);
    const coreStatusBarPanes* panes = emulator->mainWindow().statusPanes()[0];
    EXPECT_EQ(QWidget::find(WId(panes->windowId[CORE_STATUS_PANE_TIME])), emulator->mainWindow().timeLabel());
    EXPECT_EQ(QWidget::find(WId(panes->windowId[CORE_STATUS_PANE_PRICE])), emulator->mainWindow().priceLabel());
}

TEST_F(ChartWindow, EachInterfaceMakesItsWidgetInsideTheWindowItIsGiven) {
    emulator->startUp();
    const std::pair<ChartType, const char*> kinds[] = {
        {ChartType::PointAndFigure, "Points and Figures"}, {ChartType::Renko, "Renko"}, {ChartType::Kagi, "Kagi"}};
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.second);
        EXPECT_EQ(Charts().query(kind.first), 1);  // 5020
        void* widget = Charts().create(kind.first);
        ASSERT_NE(widget, nullptr);
        const host::Journal::Entry create = H().journal().entries()[LastIndexOf(MSG_WC_CREATE)];
        EXPECT_EQ(create.result, 0);
        EXPECT_EQ(Charts().interfaceOf(widget), Interface(kind.second));
        EXPECT_EQ(Charts().subWindow(widget)->widget(), Charts().container(widget));
        QWidget* chart = ChartOf(widget);
        ASSERT_NE(chart, nullptr);
        EXPECT_TRUE(chart->isVisible());
        EXPECT_EQ(chart->size(), Charts().container(widget)->size());  // filled by 5005
        EXPECT_EQ(Charts().show(widget), 0);
        // An empty chart window still paints something: its name and the hint to add data.
        // The grab resizes the container, and the host passes the resize on (5005).
        const QImage image = Charts().grab(widget, QSize(400, 300));
        EXPECT_EQ(image.size(), QSize(400, 300));
        EXPECT_EQ(chart->size(), QSize(400, 300));
        EXPECT_GT(Colours(image), 1);
    }
    EXPECT_EQ(Charts().widgets().size(), 3u);
    EXPECT_EQ(emulator->mainWindow().mdiArea()->subWindowList().size(), 3);
}

TEST_F(ChartWindow, DestroyIsAnnouncedAndOnlyTheOwningInterfaceDeletes) {
    emulator->startUp();
    void* pf = Charts().create(ChartType::PointAndFigure);
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_TRUE(pf && renko);
    QPointer<QWidget> pfChart = ChartOf(pf);
    ASSERT_FALSE(pfChart.isNull());

    // Another interface's widget: the host is told first, with the window's own host handle,
    // then nothing is deleted. The host hears the module switch's 0 (the interface answers
    // 1, which is not passed on): what the message does is what tells.
    ASSERT_TRUE(Charts().destroyedRecords().empty());
    EXPECT_EQ(H().send(Interface("Renko"), MSG_WC_DESTROY, P(pf)), 0);
    EXPECT_FALSE(pfChart.isNull());
    ASSERT_EQ(Charts().destroyedRecords().size(), 1u);
    EXPECT_EQ(Charts().destroyedRecords().back().widget, pf);
    EXPECT_EQ(Charts().destroyedRecords().back().hostHandle, emulator->core().components()[0].handle);
    // An address no interface lists is never read: its record carries no host handle.
    void* const invented = reinterpret_cast<void*>(std::intptr_t(0x5150));
    EXPECT_EQ(H().send(Interface("Points and Figures"), MSG_WC_DESTROY, P(invented)), 0);
    ASSERT_EQ(Charts().destroyedRecords().size(), 2u);
    EXPECT_EQ(Charts().destroyedRecords().back().widget, invented);
    EXPECT_EQ(Charts().destroyedRecords().back().hostHandle, nullptr);
    EXPECT_EQ(Charts().widgets(), (std::vector<void*>{pf, renko}));

    ASSERT_TRUE(Charts().destroy(pf));
    ASSERT_FALSE(Charts().destroyedRecords().empty());
    const fxwcWindowDestroyed gone = Charts().destroyedRecords().back();
    EXPECT_EQ(gone.widget, pf);
    EXPECT_EQ(gone.hostHandle, emulator->core().components()[0].handle);
    EXPECT_TRUE(pfChart.isNull());
    EXPECT_EQ(Charts().widgets(), std::vector<void*>{renko});
    EXPECT_FALSE(Charts().destroy(pf));

    // An emulator closed with a window open destroys it while the module is still loaded.
    QPointer<QWidget> left = ChartOf(renko);
    ASSERT_FALSE(left.isNull());
    emulator.reset();
    EXPECT_TRUE(left.isNull());
}

TEST_F(ChartWindow, DroppedInstrumentBecomesASubscribedChartOfTheWindowsType) {
    emulator->startUp();
    void* pf = Charts().create(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    const int before = Colours(Charts().grab(pf, QSize(800, 600)));
    ASSERT_EQ(Charts().drop(pf, {"USDCHF"}), 0);

    std::vector<unsigned int> asked;
    void* object = nullptr;
    for (const auto& e : SentDuring(LastIndexOf(MSG_WC_DROP_INSTRUMENTS))) {
        asked.push_back(e.message);
        if (e.message == MSG_HEAD_NODE_INFO) {
            EXPECT_EQ(reinterpret_cast<void*>(e.param1), Data().baseHandle("USDCHF"));
        }
        if (e.message == MSG_DPA_SUBSCRIBE) object = reinterpret_cast<void*>(e.param1);
    }
    for (unsigned int m : {MSG_HEAD_NODE_INFO, MSG_CREATE_DPA, MSG_DPA_SUBSCRIBE, MSG_DPA_LIST})
        EXPECT_NE(std::find(asked.begin(), asked.end(), m), asked.end()) << m;
    // The object is made (3008), the window subscribed to it (3013), and only then is its
    // first array asked for (3042 with the object's handle).
    std::vector<unsigned int> making;
    for (const auto& e : SentDuring(LastIndexOf(MSG_WC_DROP_INSTRUMENTS)))
        if (e.message == MSG_CREATE_DPA || e.message == MSG_DPA_SUBSCRIBE ||
            (e.message == MSG_DPA_LIST && reinterpret_cast<void*>(e.param1) == object))
            making.push_back(e.message);
    ASSERT_GE(making.size(), 3u);
    EXPECT_EQ(std::vector<unsigned int>(making.begin(), making.begin() + 3),
              (std::vector<unsigned int>{MSG_CREATE_DPA, MSG_DPA_SUBSCRIBE, MSG_DPA_LIST}));
    const host::data::ChartObject* chart = Data().chart(object);
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(chart->type(), ChartType::PointAndFigure);
    EXPECT_EQ(chart->instrument().name(), "USDCHF");
    EXPECT_EQ(Data().subscriptionCount(object), 1u);

    EXPECT_FALSE(Charts().title(pf).isEmpty());
    EXPECT_EQ(Charts().subWindow(pf)->windowTitle(), Charts().title(pf));
    EXPECT_GT(Colours(Charts().grab(pf, QSize(800, 600))), before);  // the figures are drawn

    // One instrument the host does not know: nothing is sent for any of them.
    const std::size_t drops = H().journal().find(MSG_WC_DROP_INSTRUMENTS).size();
    EXPECT_EQ(Charts().drop(pf, {"TTRC", "NOSUCH"}), -1);
    EXPECT_EQ(H().journal().find(MSG_WC_DROP_INSTRUMENTS).size(), drops);
}

TEST_F(ChartWindow, ReplayedQuotesReachTheWindowAndChangeItsPicture) {
    host::InstrumentOptions held;
    held.name = "USDCHF";
    held.holdBack = 500;
    ASSERT_NE(Data().loadInstrument(host::DataCore::builtInPath("USDCHF"), held), nullptr);
    emulator->startUp();
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_NE(renko, nullptr);
    ASSERT_EQ(Charts().drop(renko, {"USDCHF"}), 0);
    const QImage before = Charts().grab(renko, QSize(800, 600));

    Data().clearNotices();
    ASSERT_EQ(Data().replay("USDCHF", 500), 500u);
    ASSERT_FALSE(Data().notices().empty());
    for (const auto& n : Data().notices()) {
        EXPECT_EQ(n.target, Interface("Renko"));
        EXPECT_EQ(n.subscriber, renko);
        EXPECT_EQ(n.result, 0);
    }
    EXPECT_NE(Charts().grab(renko, QSize(800, 600)), before);
}

TEST_F(ChartWindow, DataNoticesForWidgetsTheInterfaceDoesNotListChangeNothing) {
    emulator->startUp();
    void* kagi = Charts().create(ChartType::Kagi);
    ASSERT_NE(kagi, nullptr);
    ASSERT_EQ(Charts().drop(kagi, {"USDCHF"}), 0);
    const QImage before = Charts().grab(kagi, QSize(600, 400));

    void* object = Data().createChart("USDCHF", ChartType::Kagi, {0.0010, 0, 0});
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.provider = Data().providerInterface(ChartType::Kagi);
    update.handle = object;
    update.subscriber = reinterpret_cast<void*>(std::intptr_t(0x4200));
    EXPECT_EQ(H().send(Interface("Kagi"), MSG_DATA_UPDATED, P(&update)), 0);
    // The widget of another interface is not touched either.
    update.subscriber = kagi;
    EXPECT_EQ(H().send(Interface("Renko"), MSG_DATA_UPDATED, P(&update)), 0);
    EXPECT_EQ(Charts().grab(kagi, QSize(600, 400)), before);
}
