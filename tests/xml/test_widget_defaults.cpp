// A chart window's settings and the module's default-parameters file, against the emulator's
// work-data store: a new window starts from its chart type's node, and "Save as default"
// rewrites that node alone.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "gui/PFChartWidget.h"
#include "gx/Grid.h"
#include "gx/LRScale.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"
#include "module/PFChartModule.h"

namespace {

struct WidgetDefaults : ::testing::Test {
    QTemporaryDir work;
    std::unique_ptr<host::Emulator> emulator;
    std::unique_ptr<PFChartModule> module;
    QString file;

    void SetUp() override {
        ASSERT_TRUE(QDir(work.path()).mkpath(QStringLiteral("etc")));
        file = work.filePath(QStringLiteral("etc/PFChartModule.rdd"));
        host::EmulatorOptions options;
        options.workFolder = work.path().toStdString();
        emulator.reset(new host::Emulator(options));
        // The module's classes in this process, talking to the emulator as the terminal's
        // module does.
        module.reset(new PFChartModule);
        module->InitializeWrap(&host::Host::callback, &host::Host::callback, emulator->host().coreHandle(), nullptr);
    }
    void TearDown() override {
        module.reset();
        emulator.reset();
    }
    // The defaults file with a node per chart type; FreeStep tells them apart.
    void WriteDefaults() {
        host::WorkDataStore& store = emulator->workData();
        void* document = store.open(file);
        // A window made before may have opened the file already, and given it its root.
        void* root = store.root(document);
        if (!root) root = store.createChild(document, QStringLiteral("DefaultParametersPFChart"));
        int step = 20;
        for (const char* type : {"PointFigure", "Renko", "Kagi"}) {
            void* node = store.createChild(root, QString::fromLatin1(type));
            store.setAttribute(node, QStringLiteral("FreeStep"), QString::number(step++));
            store.setAttribute(node, QStringLiteral("GridShow"), QStringLiteral("0"));
            store.setAttribute(node, QStringLiteral("AreaColor"), QString::number(qint32(QColor(10, 20, 30, 40).rgb())));
        }
        ASSERT_TRUE(store.save(root));
    }
    QString Attribute(const char* type, const char* key) {
        host::WorkDataStore& store = emulator->workData();
        void* root = store.root(store.open(file));
        const host::workdata::Node* node = store.node(store.child(root, QString::fromLatin1(type)));
        const QString* value = node ? node->attribute(QString::fromLatin1(key)) : nullptr;
        return value ? *value : QString();
    }
};

TEST_F(WidgetDefaults, NewWindowsStartFromTheirTypesNode) {
    {
        PFChartWidget plain(module.get(), PFChartWidget::Renko, nullptr);  // no file yet
        EXPECT_EQ(plain.GetFreeStep(), 5);
        EXPECT_TRUE(plain.GetGrid()->IsShown());
    }
    WriteDefaults();
    PFChartWidget renko(module.get(), PFChartWidget::Renko, nullptr);
    EXPECT_EQ(renko.GetFreeStep(), 21);
    EXPECT_FALSE(renko.GetGrid()->IsShown());
    EXPECT_EQ(renko.GetAreasColor(), QColor(10, 20, 30));  // read back fully opaque
    EXPECT_EQ(renko.GetLeftScale()->GetBackgroundColor(), QColor(10, 20, 30));
    PFChartWidget kagi(module.get(), PFChartWidget::Kagi, nullptr);
    EXPECT_EQ(kagi.GetFreeStep(), 22);
    // Keys the node lacks take their defaults: bAutoScroll off.
    EXPECT_FALSE(kagi.IsAutoScroll());
    PFChartWidget other(module.get(), 7, nullptr);  // no node for an unknown chart type
    EXPECT_EQ(other.GetFreeStep(), 5);
}

TEST_F(WidgetDefaults, SaveAsDefaultRewritesOnlyTheWindowsNode) {
    WriteDefaults();
    PFChartWidget renko(module.get(), PFChartWidget::Renko, nullptr);
    renko.SetFreeStep(42);
    renko.GetGrid()->SetShown(true);
    renko.setStartParam();
    EXPECT_EQ(Attribute("Renko", "FreeStep"), QStringLiteral("42"));
    EXPECT_EQ(Attribute("Renko", "GridShow"), QStringLiteral("1"));
    EXPECT_EQ(Attribute("PointFigure", "FreeStep"), QStringLiteral("20"));
    EXPECT_EQ(Attribute("Kagi", "FreeStep"), QStringLiteral("22"));
    EXPECT_EQ(Attribute("Kagi", "GridShow"), QStringLiteral("0"));
    // The host stored the file: a new window reads the saved values back from disk.
    QFile saved(file);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_TRUE(saved.readAll().contains("42"));
    PFChartWidget again(module.get(), PFChartWidget::Renko, nullptr);
    EXPECT_EQ(again.GetFreeStep(), 42);
}

}  // namespace
