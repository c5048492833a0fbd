// The zoom state a chart window's time scroll bar saves as a "Node" of the host's work data
// and restores from it, against the emulator's store: a chart window in-process with the
// emulator's USD/CHF data.
#include <gtest/gtest.h>

#include <QSlider>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <algorithm>

#include "data/ScaleEngine.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/TimeScrollBar.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

using Tree = std::unique_ptr<CXMLWorkData>;

struct ZoomState : ::testing::Test {
    std::unique_ptr<host::Emulator> emulator{new host::Emulator};
    std::unique_ptr<PFChartModule> module;
    std::unique_ptr<PFChartWidget> widget;
    Tree tree;  // the node the scroll bar writes its "Node" under
    int total = 0;

    void SetUp() override {
        module.reset(new PFChartModule);
        module->InitializeWrap(&host::Host::callback, &host::Host::callback, emulator->host().coreHandle(), nullptr);
        widget.reset(new pf::gui::Guarded<PFChartWidget>(module.get(), PFChartWidget::PointFigure, nullptr));
        widget->resize(900, 600);
        host::WorkDataStore& store = emulator->workData();
        coreSzNode root{};
        ASSERT_TRUE(store.describe(store.root(store.createDocument(QStringLiteral("ZoomState"))), &root));
        tree.reset(new CXMLWorkData(emulator->host().coreHandle(), Handle(root.document), Handle(root.node),
                                    &host::Host::callback));
    }
    void TearDown() override {
        widget.reset();
        module.reset();
        emulator.reset();
    }
    static void* Handle(std::uint32_t word) { return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word)); }

    // USD/CHF as the window's only area, in its first display.
    void ShowUsdChf() {
        fxwcDropInstrument drop;
        ASSERT_TRUE(emulator->charts().dropRecord("USDCHF", std::nullopt, &drop));
        ASSERT_TRUE(widget->AddSecondaryPrimitive(drop.baseHandle, drop.symbol, "", drop.periodType,
                                                  drop.periodLength, 0, nullptr, 0));
        total = pf::TruncToInt(Engine().GetX1());
        ASSERT_GT(total, 300);
        ASSERT_EQ(Engine().GetColumnCount(), 300);
        ASSERT_EQ(widget->GetFreeStep(), 5);
    }
    pf::ScaleEngine& Engine() { return *widget->GetChart()->GetAreas().front()->GetEngine(); }
    CTimeScrollBar& Bar() { return *widget->GetTimeScrollBar(); }
    QSlider& Slider() { return *widget->GetToolBar()->GetZoomSlider(); }
    // The "Node" child of the tree as the host holds it.
    Tree SavedNode() {
        tree->readParameters();
        return Tree(tree->getFirstNode("Node"));
    }
    // A hand-made node: nZoomType, nScreenDataPoints and, unless -1, zoomSlider.
    Tree MadeNode(int zoomType, int screen, int slider = -1) {
        Tree node(tree->createNode("Node"));
        node->writeInteger("ObjectType", 3);
        node->writeInteger("nScreenDataPoints", screen);
        node->writeInteger("nZoomType", zoomType);
        if (slider != -1) node->writeInteger("zoomSlider", slider);
        node->writeParameters();
        return node;
    }
    std::size_t UndoSteps() { return emulator->host().journal().find(MSG_UNDO_BEGIN).size(); }
};

TEST_F(ZoomState, ASliderZoomSavedAndRestoredShowsTheSameView) {
    ShowUsdChf();
    Slider().setValue(total - 120);
    ASSERT_EQ(Engine().GetColumnCount(), 120);
    Bar().setValue(40);
    Bar().ToXml(tree.get(), pf::gui::ToolBar::ZoomKindSlider);

    Tree node = SavedNode();
    ASSERT_NE(node, nullptr);
    const std::uint32_t self = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(&Bar()));
    EXPECT_EQ(node->readInteger("ObjectType"), 3);
    EXPECT_EQ(node->readInteger("ObjHandle"), static_cast<int>(self));
    EXPECT_EQ(node->readInteger("nScreenDataPoints"), 120);
    EXPECT_EQ(node->readInteger("nZoomType"), 2);
    EXPECT_EQ(node->readInteger("zoomSlider"), total - 120);

    // Zoomed in since, then restored.
    widget->GetToolBar()->OnBnClickedZoomIn(false);
    ASSERT_NE(Engine().GetColumnCount(), 120);
    const std::size_t steps = UndoSteps();
    widget->SetZoomRecording(true);
    Bar().FromXml(node.get());
    EXPECT_EQ(Slider().value(), total - 120);
    EXPECT_EQ(Engine().GetColumnCount(), 120);
    EXPECT_EQ(Bar().GetScreenDataPoints(), 120);
    EXPECT_EQ(Bar().pageStep(), 120);
    EXPECT_EQ(Bar().maximum(), total - 120 + 5);
    EXPECT_EQ(Bar().value(), Engine().GetFirstColumn());
    EXPECT_FALSE(widget->IsZoomRecording());
    EXPECT_EQ(UndoSteps(), steps) << "restoring records nothing";

    // A zoom that left the slider where it was (a selection) is taken back too.
    Engine().SetColumnCount(50);
    widget->SetScrollRange();
    Bar().FromXml(node.get());
    EXPECT_EQ(Engine().GetColumnCount(), 120);
    EXPECT_EQ(Bar().GetScreenDataPoints(), 120);
}

TEST_F(ZoomState, ZoomTypesZeroAndOneZoomOnceAndOthersOnlyReadTheScreenCount) {
    // Without an area nothing is read.
    Tree early = MadeNode(0, 77);
    Bar().FromXml(early.get());
    EXPECT_EQ(Bar().GetScreenDataPoints(), -1);

    ShowUsdChf();
    const std::size_t steps = UndoSteps();
    Bar().FromXml(MadeNode(0, 300).get());
    EXPECT_EQ(Engine().GetColumnCount(), std::min(390, total + 5));  // zoomed out once
    EXPECT_EQ(Engine().GetFirstColumn(), 0);
    EXPECT_EQ(Bar().GetScreenDataPoints(), Engine().GetColumnCount());
    const int out = Engine().GetColumnCount();
    Bar().FromXml(MadeNode(1, out).get());
    EXPECT_EQ(Engine().GetColumnCount(), pf::TruncToInt(out / 1.3));
    EXPECT_EQ(UndoSteps(), steps);

    const int visible = Engine().GetColumnCount();
    for (const auto& made : {std::make_pair(7, 33), std::make_pair(-1, 44), std::make_pair(2, 55)}) {
        Bar().FromXml(MadeNode(made.first, made.second).get());  // type 2 without a slider value
        EXPECT_EQ(Engine().GetColumnCount(), visible) << made.first;
    }
    EXPECT_EQ(Bar().GetScreenDataPoints(), 55);
}

}  // namespace
