// Undo commands against the emulator's work-data store, in-process: the records a command
// writes and what its undo takes from them. The host's undo stack is played by a small
// stand-in for 3138/3139 that keeps every record in memory.
#include <gtest/gtest.h>

#include <optional>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/ls/LineStudy.h"
#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "module/PFChartModule.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "undo/CommandFactory.h"

namespace {

struct UndoCommands : ::testing::Test {
    std::unique_ptr<host::Emulator> emulator{new host::Emulator};
    std::unique_ptr<PFChartModule> module;
    std::unique_ptr<PFChartWidget> widget;
    std::vector<coreUndoStart> records;  // committed, in order

    void SetUp() override {
        module.reset(new PFChartModule);
        module->InitializeWrap(&host::Host::callback, &host::Host::callback, emulator->host().coreHandle(), nullptr);
        host::WorkDataStore& store = emulator->workData();
        // Records for any widget (the emulator's own stack takes only its chart windows').
        emulator->host().on(MSG_UNDO_BEGIN, [this, &store](void*, std::intptr_t p1, std::intptr_t, std::string&) {
            coreUndoBegin* begin = reinterpret_cast<coreUndoBegin*>(p1);
            coreSzNode root{};
            if (!store.describe(store.root(store.createDocument(QStringLiteral("UndoRecord"))), &root)) return 1;
            begin->root = root;
            begin->recordId = std::int32_t(records.size() + 1);
            coreUndoStart start{};
            start.document = root.document;
            start.node = root.node;
            start.widget = begin->widget;
            records.push_back(start);
            return 0;
        });
        emulator->host().on(MSG_UNDO_COMMIT, [](void*, std::intptr_t, std::intptr_t, std::string&) { return 0; });
        widget.reset(new PFChartWidget(module.get(), PFChartWidget::Renko, nullptr));
        widget->resize(900, 600);
        fxwcDropInstrument drop;
        ASSERT_TRUE(emulator->charts().dropRecord("USDCHF", std::nullopt, &drop));
        ASSERT_TRUE(widget->AddSecondaryPrimitive(drop.baseHandle, drop.symbol, "", drop.periodType, drop.periodLength,
                                                  0, nullptr, 0));
    }
    void TearDown() override {
        widget.reset();
        module.reset();
        emulator.reset();
    }
    boost::shared_ptr<gx::Line> FirstLine() const {
        return widget->GetChart()->GetAreas()[0]->GetLayers()[0]->GetIndicators()[0]->GetLines()[0];
    }
    void Undo(int code, const coreUndoStart& record) {
        coreUndoRefresh result{};
        CommandFactory::Instance().Create(code)->UnExecute(0, widget.get(), const_cast<coreUndoStart*>(&record),
                                                           &result, nullptr);
        // Packed records: their fields are compared by value.
        const std::uint32_t first = result.first, third = result.third, document = record.document, node = record.node;
        void* const fourth = result.fourth;
        void* const owner = record.widget;
        EXPECT_EQ(first, document);
        EXPECT_EQ(third, node);
        EXPECT_EQ(fourth, owner);
    }
};

TEST_F(UndoCommands, AnAreaDeletedAndUndoneComesBackInItsPlace) {
    fxwcDropInstrument drop;
    ASSERT_TRUE(emulator->charts().dropRecord("TTRC", std::nullopt, &drop));
    ASSERT_TRUE(widget->AddSecondaryPrimitive(drop.baseHandle, drop.symbol, "", drop.periodType, drop.periodLength, 0,
                                              nullptr, 0));
    const QString title = widget->UpdateTitle();
    widget->RecordAreaDelete(0);
    ASSERT_EQ(records.size(), 1u);
    widget->GetChart()->DeleteArea(widget->GetChart()->GetAreas()[0]);
    EXPECT_EQ(widget->UpdateTitle(), QStringLiteral("PFChartModule, TTRC/Day"));
    Undo(CommandFactory::AreaDelete, records[0]);
    EXPECT_EQ(widget->UpdateTitle(), title);  // USD/CHF first again
}

TEST_F(UndoCommands, ADeletedLineComesBackWithOneUndo) {
    // (Lines with their line studies: tests/xml/test_line_study_layout.cpp.)
    const QString title = widget->UpdateTitle();
    FirstLine()->Select(true);
    widget->RecordLineDelete();
    gx::WidgetWalker2<gx::DeleteSelItems>(widget->GetChart(), gx::DeleteSelItems()).Walk();
    widget->AfterDelete();
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 0);
    Undo(CommandFactory::LineDelete, records.back());
    ASSERT_EQ(widget->GetChart()->GetAreaCount(), 1);
    EXPECT_EQ(widget->UpdateTitle(), title);
}

}  // namespace
