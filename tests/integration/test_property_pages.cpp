// A chart window's property page through the real entry points: a double click on empty
// chart space opens it in the terminal's dialog (10052), an applied change repaints the
// window (10054) and applying the old value gives the old picture back, "Save as default"
// writes the chart type's node of the default-parameters file, a layout loaded into the
// window shows its settings in the open dialog (10053), and pages the host should not send
// change nothing.
#include <gtest/gtest.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPointer>
#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <cstring>

#include "PfhostProcess.h"
#include "ModuleHostTest.h"
#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/MainWindowService.h"
#include "host/PropertyDialog.h"
#include "host/PropertyService.h"
#include "host/WorkDataStore.h"

using host::PropertyDialog;
using host::data::ChartType;

namespace {

const QSize kSize(800, 500);

class PropertyPages : public ModuleHostTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(QDir(work.path()).mkpath(QStringLiteral("etc")));
        host::EmulatorOptions options;
        options.workFolder = work.path().toStdString();
        Start(options);
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::PropertyService& Properties() { return emulator->properties(); }
    void* Window(ChartType type) {
        void* widget = Charts().create(type);
        EXPECT_NE(widget, nullptr);
        EXPECT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
        Charts().grab(widget, kSize);
        return widget;
    }
    PropertyDialog* Open(void* widget) {
        std::string error;
        PropertyDialog* dialog = Properties().open(widget, &error);
        EXPECT_NE(dialog, nullptr) << error;
        return dialog;
    }
    void Set(PropertyDialog* dialog, const QString& name, const QString& value) {
        std::string error;
        EXPECT_TRUE(Properties().setAndApply(dialog, name, value, &error)) << name.toStdString() << ": " << error;
    }
    QString DefaultsFile() const { return work.filePath(QStringLiteral("etc/PFChartModule.rdd")); }
    // The attributes of the chart type's node in the default-parameters file.
    QDomElement DefaultsNode(const QString& name) {
        QFile file(DefaultsFile());
        if (!file.open(QIODevice::ReadOnly)) return QDomElement();
        defaults.setContent(&file);
        return defaults.documentElement().firstChildElement(name);
    }

    QTemporaryDir work;
    QDomDocument defaults;
};

}  // namespace

TEST_F(PropertyPages, ADoubleClickOnEmptySpaceShowsEverySettingOfTheWindow) {
    void* widget = Window(ChartType::PointAndFigure);
    PropertyDialog* dialog = Open(widget);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(Properties().requests(), 1);
    EXPECT_TRUE(dialog->isVisible());
    // Groups and entries carry the module's texts of their keys.
    const auto texts = [this](std::initializer_list<const char*> keys) {
        QStringList out;
        for (const char* key : keys) out << emulator->moduleText(key);
        return out;
    };
    EXPECT_EQ(dialog->groups(), texts({"G0019", "C0017Font", "G0078", "C0035SetAsDef"}));
    EXPECT_EQ(dialog->groups(), (QStringList{"Chart window", "Font", "Time scale", "Save as default"}));
    EXPECT_EQ(dialog->entries(), texts({"PF0005", "G0021", "C0004BckGrndColor", "G0036", "G0052", "G0016", "G0086",
                                        "C0017Font", "C0018FontColor", "C0004BckGrndColor", "G0021", "C0035SetAsDef"}));
    EXPECT_EQ(dialog->value("Right scale"), "1");
    EXPECT_EQ(dialog->value("Font color"), "150,150,150");
    EXPECT_EQ(dialog->value("Time scale/Background color"), "255,255,255");
    EXPECT_EQ(dialog->value("Time scale/Grid color"), "220,220,220");
    EXPECT_EQ(dialog->typeOf("Free space positions"), PROPERTY_TYPE_INT);
    EXPECT_EQ(dialog->typeOf("Font"), PROPERTY_TYPE_FONT);
    // Texts the entries do not take are refused before anything reaches the module.
    QString why;
    EXPECT_FALSE(dialog->setValue("Grid color", "red,green", &why));
    EXPECT_FALSE(dialog->setValue("Grid color", "300,0,0", &why));
    EXPECT_FALSE(dialog->setValue("Free space positions", "-4", &why));
    EXPECT_FALSE(dialog->setValue("No such entry", "1", &why));
    EXPECT_TRUE(Properties().applied().empty());
    // A second double click brings the open dialog up to date instead of opening another.
    EXPECT_EQ(Open(widget), dialog);
}

TEST_F(PropertyPages, AnAppliedChangeRepaintsTheWindowAndTheOldValueGivesTheOldPicture) {
    void* widget = Window(ChartType::PointAndFigure);
    const QImage before = Charts().grab(widget, kSize);
    PropertyDialog* dialog = Open(widget);
    ASSERT_NE(dialog, nullptr);
    const std::pair<const char*, const char*> changes[] = {
        {"Grid color", "255,0,0"},          {"Chart window/Background color", "250,250,210"},
        {"Font", "DejaVu Serif,14,bold"}, {"Right scale", "0"},
        {"Left scale", "0"},                {"Show grid", "0"},
        {"Font color", "0,0,200"},    {"Time scale/Background color", "40,40,40"},
        {"Time scale/Grid color", "255,0,255"},
    };
    for (const auto& c : changes) {
        SCOPED_TRACE(c.first);
        const QString old = dialog->value(c.first);
        Set(dialog, c.first, c.second);
        const QImage changed = Charts().grab(widget, kSize);
        EXPECT_NE(changed, before);
        EXPECT_EQ(dialog->value(c.first), c.second);
        Set(dialog, c.first, old);
        EXPECT_EQ(Charts().grab(widget, kSize), before);
    }
    EXPECT_EQ(Properties().applied(), std::vector<int>(2 * std::size(changes), 0));
    // The hidden right scale leaves its strip to the areas: the top right corner is chart.
    Set(dialog, "Right scale", "0");
    Set(dialog, "Chart window/Background color", "0,128,0");
    const QImage hidden = Charts().grab(widget, kSize);
    EXPECT_EQ(QColor(hidden.pixel(kSize.width() - 20, 200)), QColor(0, 128, 0));
}

TEST_F(PropertyPages, SaveAsDefaultWritesThisTypesNodeAndANewWindowStartsWithIt) {
    {
        QFile file(DefaultsFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<?xml version=\"1.0\"?>\n<DefaultParametersPFChart>\n"
                   "  <Kagi GridShow=\"0\" FreeStep=\"7\"/>\n</DefaultParametersPFChart>\n");
    }
    void* renko = Window(ChartType::Renko);
    PropertyDialog* dialog = Open(renko);
    ASSERT_NE(dialog, nullptr);
    const QString save = emulator->moduleText("C0035SetAsDef");
    // A change and "Save as default" in one apply: the new setting is what is stored.
    ASSERT_TRUE(dialog->setValue("Grid color", "10,20,30"));
    ASSERT_TRUE(dialog->setValue("Free space positions", "12"));
    ASSERT_TRUE(dialog->setValue(save, "1"));
    EXPECT_EQ(dialog->apply(), 0);
    EXPECT_EQ(dialog->value(save), "0");  // the box clears again

    const QDomElement node = DefaultsNode("Renko");
    ASSERT_FALSE(node.isNull());
    EXPECT_EQ(QColor(QRgb(node.attribute("GridColor").toInt())), QColor(10, 20, 30));
    EXPECT_EQ(node.attribute("FreeStep"), "12");
    // Ten settings as attributes, the font as a child node.
    EXPECT_EQ(node.attributes().count(), 10);
    EXPECT_FALSE(node.firstChildElement("AreasFont").isNull());
    EXPECT_EQ(DefaultsNode("Kagi").attribute("FreeStep"), "7");  // other types' nodes are kept
    EXPECT_TRUE(DefaultsNode("PointFigure").isNull());

    // A new Renko window starts with the stored settings and looks like the first one.
    void* second = Window(ChartType::Renko);
    EXPECT_EQ(Charts().grab(second, kSize), Charts().grab(renko, kSize));
    PropertyDialog* secondDialog = Open(second);
    ASSERT_NE(secondDialog, nullptr);
    EXPECT_EQ(secondDialog->value("Grid color"), "10,20,30");
    EXPECT_EQ(secondDialog->value("Free space positions"), "12");
    // A Point and Figure window does not.
    void* pf = Window(ChartType::PointAndFigure);
    PropertyDialog* pfDialog = Open(pf);
    ASSERT_NE(pfDialog, nullptr);
    EXPECT_NE(pfDialog->value("Grid color"), "10,20,30");
}

TEST_F(PropertyPages, ALayoutLoadedIntoTheWindowShowsInTheOpenDialog) {
    void* source = Window(ChartType::PointAndFigure);
    PropertyDialog* first = Open(source);
    ASSERT_NE(first, nullptr);
    Set(first, "Grid color", "255,0,0");
    Set(first, "Right scale", "0");
    const QString path = work.filePath(QStringLiteral("layout.xml"));
    QString why;
    ASSERT_TRUE(emulator->layouts().save(source, path, &why)) << why.toStdString();

    void* target = Window(ChartType::PointAndFigure);
    PropertyDialog* dialog = Open(target);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->value("Right scale"), "1");
    // The layout's window node, loaded into the open window with 3020.
    host::WorkDataStore& store = emulator->workData();
    void* document = store.open(path);
    ASSERT_NE(document, nullptr);
    void* node = store.child(store.root(document), host::ChartLayouts::windowName());
    ASSERT_NE(node, nullptr);
    coreSzNode record;
    ASSERT_TRUE(store.describe(node, &record));
    const int refreshes = Properties().refreshes();
    ASSERT_EQ(H().send(Charts().interfaceOf(target), MSG_LOAD_CHART, P(target), P(&record)), 0);
    EXPECT_GT(Properties().refreshes(), refreshes);
    EXPECT_EQ(dialog->value("Grid color"), "255,0,0");
    EXPECT_EQ(dialog->value("Right scale"), "0");
}

TEST_F(PropertyPages, PagesTheWindowDidNotHandOverChangeNothing) {
    void* widget = Window(ChartType::PointAndFigure);
    const QImage before = Charts().grab(widget, kSize);
    void* iface = Charts().interfaceOf(widget);
    // Before the window ever showed its page, and with a null record.
    PROPERTY_CHANGE change = {nullptr, widget, 0};
    EXPECT_EQ(H().send(iface, MSG_APPLY_PROPERTY, P(&change), 0), 0);
    EXPECT_EQ(H().send(iface, MSG_APPLY_PROPERTY, 0, 0), 0);
    PropertyDialog* dialog = Open(widget);
    ASSERT_NE(dialog, nullptr);
    // A page of the host's own in bad shape: every value buffer null, a name without its
    // terminator, a group claiming entries it lacks the pointers for.
    PROPERTY entries[3];
    PROPERTY* list[3];
    for (int i = 0; i < 3; ++i) {
        std::memset(&entries[i], 0x55, sizeof entries[i]);
        entries[i].type = PROPERTY_TYPE_COLOR;
        entries[i].value = nullptr;
        list[i] = &entries[i];
    }
    list[1] = nullptr;
    PROPERTY_GROUP group;
    std::memset(&group, 0x55, sizeof group);
    group.list.count = 3;
    group.list.items = list;
    PROPERTY_GROUP* groups[] = {&group, nullptr, nullptr, nullptr};
    PROPERTY_PAGE page;
    std::memset(&page, 0x55, sizeof page);
    page.groupCount = 4;
    page.groups = groups;
    change.page = &page;
    EXPECT_EQ(H().send(iface, MSG_APPLY_PROPERTY, P(&change), 0), 0);
    // Its values of the right type but the wrong entries: an int where the grid colour is.
    std::uint32_t red = 0xFF0000;
    entries[0].value = &red;
    entries[0].type = PROPERTY_TYPE_INT;
    EXPECT_EQ(H().send(iface, MSG_APPLY_PROPERTY, P(&change), 0), 0);
    // A window that is not listed.
    change.widget = reinterpret_cast<void*>(std::intptr_t(0x5151));
    EXPECT_EQ(H().send(iface, MSG_APPLY_PROPERTY, P(&change), 0), 0);
    EXPECT_EQ(Charts().grab(widget, kSize), before);
    // The terminal refuses a page request without a page.
    EXPECT_EQ(H().callback(emulator->mainWindow().handle(), MSG_SHOW_PROPERTY_PAGE, 0, P(widget)), 1);
    // The window goes while its dialog is open: the dialog closes with it and no longer
    // touches the page, even when a new window takes the old one's address.
    QPointer<PropertyDialog> gone(dialog);
    ASSERT_TRUE(Charts().destroy(widget));
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(Properties().current(), nullptr);
    EXPECT_EQ(dialog->apply(), -1);
    EXPECT_FALSE(dialog->refresh());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(gone.isNull());
    void* next = Window(ChartType::PointAndFigure);
    PropertyDialog* again = Open(next);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(Properties().current(), again);
}

TEST_F(PropertyPages, PfhostSetsEntriesOfThePropertyPage) {
    const QString pfhost = PfhostBeside(QStringLiteral(PF_MODULE_PATH));
    if (pfhost.isEmpty()) GTEST_SKIP() << "pfhost is not built";
    auto run = [&](const QStringList& extra, int* status) {
        return RunPfhost(pfhost,
                         QStringList{"chart", "--data", "USDCHF", "--type", "pf", "--size", "640x400", "--out",
                                     work.filePath("p.png")} + extra,
                         status, 30000);
    };
    int status = -1;
    QString out = run({"--property", "Grid color=255,0,0", "--property", "Right scale=0"}, &status);
    EXPECT_EQ(status, 0) << out.toStdString();
    EXPECT_TRUE(out.contains("2 properties applied")) << out.toStdString();
    const QImage red(work.filePath("p.png"));
    out = run({}, &status);
    EXPECT_NE(QImage(work.filePath("p.png")), red);
    out = run({"--property", "Grid colour=1,2,3"}, &status);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(out.contains("no entry \"Grid colour\"")) << out.toStdString();
    out = run({"--property", "novalue"}, &status);
    EXPECT_EQ(status, 2);
}

TEST_F(PropertyPages, TheDialogTitleAndTheWindowTitleAreMadeAnew) {
    // A window the host never asked for its caption: the title is made when the page shows.
    void* empty = Charts().create(ChartType::Kagi);
    ASSERT_NE(empty, nullptr);
    Charts().grab(empty, kSize);
    PropertyDialog* dialog = Open(empty);
    ASSERT_NE(dialog, nullptr);
    const QString prefix = emulator->moduleText("C0030Propes") + QStringLiteral(" - ");
    EXPECT_TRUE(dialog->windowTitle().startsWith(prefix)) << dialog->windowTitle().toStdString();
    EXPECT_GT(dialog->windowTitle().size(), prefix.size()) << dialog->windowTitle().toStdString();
    EXPECT_EQ(dialog->windowTitle(), prefix + Charts().chartWidget(empty)->windowTitle());

    // An applied page (10054) makes the window's title again from its instruments.
    void* widget = Window(ChartType::PointAndFigure);
    QWidget* chart = Charts().chartWidget(widget);
    const QString title = chart->windowTitle();
    EXPECT_TRUE(title.contains(QStringLiteral("USDCHF"))) << title.toStdString();
    PropertyDialog* second = Open(widget);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->windowTitle(), prefix + title);
    chart->setWindowTitle(QStringLiteral("stale"));
    Set(second, "Free space positions", "9");
    EXPECT_EQ(chart->windowTitle(), title);
}

// A terminal in another language shows the page in it: every text comes from the module's
// translation, none is a literal of the module.
TEST_F(PropertyPages, ThePageSpeaksTheTerminalsLanguage) {
    const std::vector<std::pair<const char*, const char*> > chinese = {
        {"PF0005", "\u663E\u793A\u7F51\u683C"}, {"G0021", "\u7F51\u683C\u989C\u8272"},
        {"G0019", "\u56FE\u8868\u7A97\u53E3"}, {"C0035SetAsDef", "\u8BBE\u4E3A\u9ED8\u8BA4"}};
    for (const auto& text : chinese)
        emulator->core().setTranslation("English", QString::fromLatin1(text.first), QString::fromUtf8(text.second));
    void* widget = Window(ChartType::PointAndFigure);
    PropertyDialog* dialog = Open(widget);
    ASSERT_NE(dialog, nullptr);
    for (const auto& text : chinese) {
        const QString shown = QString::fromUtf8(text.second);
        EXPECT_TRUE(dialog->entries().contains(shown) || dialog->groups().contains(shown)) << text.first;
    }
    EXPECT_FALSE(dialog->entries().contains(QStringLiteral("Show grid")));
}
