// A chart window's whole layout through the real entry points: three areas, two layers in
// one of them, four indicators of different instruments and periods, settings that differ
// from the defaults. Saved with 3021, loaded with 3020 into a fresh window, saved again:
// the document holds the node tree and attribute order the module writes, is valid XML, and
// the fresh window paints the same picture pixel for pixel. Default parameters come from the
// module's file in the work folder.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <cmath>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

using host::data::ChartType;

namespace {

class LayoutRoundTrip : public ModuleHostTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(work.isValid());
        ASSERT_TRUE(QDir(work.path()).mkpath(QStringLiteral("etc")));
        host::EmulatorOptions options;
        options.workFolder = work.path().toStdString();
        Load(options);
        // Two more series: hourly and weekly quotes.
        ASSERT_NE(Data().loadInstrument(WriteSeries("HOURLY", 3600, 1.10), host::InstrumentOptions{"HOURLY", -1}),
                  nullptr);
        ASSERT_NE(Data().loadInstrument(WriteSeries("WEEKLY", 7 * 86400, 55.0), host::InstrumentOptions{"WEEKLY", -1}),
                  nullptr);
        emulator->startUp();
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::WorkDataStore& Store() { return emulator->workData(); }
    host::DataCore& Data() { return emulator->data(); }
    void* Renko() { return emulator->core().componentObject("Renko"); }

    // A price series of 600 quotes `step` seconds apart, as a CSV file.
    std::string WriteSeries(const char* name, int step, double start) {
        const QString path = work.filePath(QString::fromLatin1(name) + QStringLiteral(".csv"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("time,close\n");
        for (int i = 0; i < 600; ++i) {
            const double price = start * (1.0 + 0.08 * std::sin(i / 17.0) + 0.03 * std::sin(i / 5.0));
            file.write(QByteArray::number(946684800 + qint64(step) * i) + "," + QByteArray::number(price, 'f', 4) + "\n");
        }
        return path.toStdString();
    }
    // The default-parameters file with a "Renko" node of the given settings.
    void WriteDefaults(int gridShow, int freeStep, const char* areaColor) {
        void* document = Store().open(work.filePath(QStringLiteral("etc/PFChartModule.rdd")));
        ASSERT_NE(document, nullptr);
        void* root = Store().root(document);
        if (!root) root = Store().createChild(document, QStringLiteral("DefaultParametersPFChart"));
        void* renko = Store().child(root, QStringLiteral("Renko"));
        if (!renko) renko = Store().createChild(root, QStringLiteral("Renko"));
        ASSERT_NE(renko, nullptr);
        const QColor area(QString::fromLatin1(areaColor));
        Store().setAttribute(renko, QStringLiteral("GridShow"), QString::number(gridShow));
        Store().setAttribute(renko, QStringLiteral("LScaleShow"), QStringLiteral("0"));
        Store().setAttribute(renko, QStringLiteral("FreeStep"), QString::number(freeStep));
        Store().setAttribute(renko, QStringLiteral("AreaColor"), QString::number(qint32(area.rgb())));
        Store().setAttribute(renko, QStringLiteral("GridColor"), QString::number(qint32(QColor(200, 210, 240).rgb())));
        Store().setAttribute(renko, QStringLiteral("AreasFontColor"), QString::number(qint32(QColor(90, 30, 30).rgb())));
        ASSERT_TRUE(Store().save(renko));
    }
    // A fresh node "Window" under the root "Layout" of a new document `name`.
    void* LayoutNode(const QString& name) {
        void* document = Store().open(work.filePath(name));
        void* root = document ? Store().createChild(document, QStringLiteral("Layout")) : nullptr;
        return root ? Store().createChild(root, QStringLiteral("Window")) : nullptr;
    }
    int Send(unsigned int message, void* widget, void* node) {
        coreSzNode record;
        if (!Store().describe(node, &record)) return -1;
        return H().send(Renko(), message, P(widget), P(&record));
    }
    // Node names below `node`, depth first, indented by level.
    static QStringList Tree(const host::workdata::Node& node, int level = 0) {
        QStringList out;
        for (const auto& c : node.children) {
            out << QString(level * 2, QLatin1Char(' ')) + c->name;
            out << Tree(*c, level + 1);
        }
        return out;
    }
    // The attribute names of a node, sorted: a node's attributes reach the host as one set,
    // ordered by name.
    static QStringList Keys(const host::workdata::Node* node) {
        QStringList out;
        for (const auto& a : node->attributes) out << a.first;
        out.sort();
        return out;
    }
    static QStringList Sorted(QStringList list) {
        list.sort();
        return list;
    }

    QTemporaryDir work;
};

TEST_F(LayoutRoundTrip, ThreeAreasTwoLayersFourIndicatorsComeBackAsTheyWere) {
    WriteDefaults(0, 9, "#fffdf0");
    void* first = Charts().create(ChartType::Renko);
    ASSERT_NE(first, nullptr);
    for (const char* name : {"USDCHF", "TTRC", "HOURLY"}) ASSERT_EQ(Charts().drop(first, {name}), 0);
    void* saved = LayoutNode(QStringLiteral("one.xml"));
    ASSERT_EQ(Send(MSG_SAVE_CHART, first, saved), 0);

    // A second layer in the first area, with the weekly series: added to the document as
    // a host would, the module cannot make one from a drop.
    const host::workdata::Node* widgetNode = Store().node(Store().child(saved, QStringLiteral("PFWidget")));
    ASSERT_NE(widgetNode, nullptr);
    const host::workdata::Node* chartNode = widgetNode->children.back().get();
    ASSERT_EQ(chartNode->name, QStringLiteral("PFChart"));
    void* firstArea = chartNode->children.at(0)->handle;
    void* layer = Store().createChild(firstArea, QStringLiteral("PFLayer"));
    void* weekly = Store().createChild(layer, QStringLiteral("PFIndicator"));
    Store().setAttribute(weekly, QStringLiteral("InstrumentName"), QStringLiteral("WEEKLY"));
    Store().setAttribute(weekly, QStringLiteral("InstrumentPeriodChar"), QString::number(int('W')));
    Store().setAttribute(weekly, QStringLiteral("InstrumentPeriodLen"), QStringLiteral("1"));
    Store().setAttribute(weekly, QStringLiteral("VisibleFigures"), QStringLiteral("40"));

    void* middle = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, middle, saved), 0);
    EXPECT_EQ(Charts().title(middle),
              QStringLiteral("PFChartModule, USDCHF/30 Min, WEEKLY/Week, TTRC/Day, HOURLY/1 Hour"));
    void* again = LayoutNode(QStringLiteral("two.xml"));
    ASSERT_EQ(Send(MSG_SAVE_CHART, middle, again), 0);
    ASSERT_TRUE(Store().save(again));
    EXPECT_EQ(QProcess::execute(QStringLiteral("xmllint"), {QStringLiteral("--noout"), Store().path(again)}), 0);

    const QStringList expected = {
        "PFWidget",       "  AreasFont",     "  PFChart",       "    PFArea",       "      PFLayer",
        "        PFIndicator", "          PFLine", "      PFLayer",   "        PFIndicator", "          PFLine",
        "    PFArea",     "      PFLayer",   "        PFIndicator", "          PFLine", "    PFArea",
        "      PFLayer",  "        PFIndicator", "          PFLine"};
    EXPECT_EQ(Tree(*Store().node(again)), expected);
    const host::workdata::Node* w = Store().node(Store().child(again, QStringLiteral("PFWidget")));
    EXPECT_EQ(Keys(w), Sorted({"GridColor", "AreaColor", "GridShow", "LScaleShow", "RScaleShow", "FreeStep",
                               "bAutoScroll", "AreasFontColor", "TSBackgroundColor", "TSGridColor"}));
    EXPECT_EQ(*w->attribute(QStringLiteral("FreeStep")), QStringLiteral("9"));
    EXPECT_EQ(*w->attribute(QStringLiteral("GridShow")), QStringLiteral("0"));
    const host::workdata::Node* indicator = w->children.back()->children[0]->children[0]->children[0].get();
    EXPECT_EQ(Keys(indicator),
              Sorted({"InstrumentName", "InstrumentType", "NameProvider", "InstrumentPeriodChar", "InstrumentPeriodLen",
                      "InstrumentPeriodStartTime", "PrimitiveStyle", "StartPosition", "VisibleFigures", "nArea",
                      "nLayer", "ObjectType", "FInterface", "FProvider", "FName"}));
    EXPECT_EQ(*indicator->attribute(QStringLiteral("InstrumentName")), QStringLiteral("USDCHF"));
    const QStringList lineKeys = Keys(indicator->children[0].get());
    EXPECT_TRUE(lineKeys.contains(QStringLiteral("Index")) && lineKeys.contains(QStringLiteral("FirstVisibleFigure")));
    EXPECT_TRUE(lineKeys.contains(QStringLiteral("DpaInstrument")));

    // New defaults: a fresh window starts otherwise, and the layout brings the saved ones back.
    WriteDefaults(1, 3, "#e0ffe0");
    void* last = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, last, again), 0);
    const QImage a = Charts().grab(middle, QSize(1000, 700));
    const QImage b = Charts().grab(last, QSize(1000, 700));
    EXPECT_EQ(a.size(), b.size());
    EXPECT_TRUE(a == b) << "the loaded window draws differently";
}

// How many children named `name` a node has.
int ChildCount(const host::workdata::Node* node, const char* name) {
    int n = 0;
    if (node)
        for (const auto& c : node->children) n += c->name == QLatin1String(name);
    return n;
}

TEST_F(LayoutRoundTrip, FortyAreasAndTwentyLayersComeBackWhole) {
    void* first = Charts().create(ChartType::Renko);
    ASSERT_NE(first, nullptr);
    const char* names[] = {"USDCHF", "TTRC", "HOURLY", "WEEKLY"};
    for (int i = 0; i < 40; ++i) ASSERT_EQ(Charts().drop(first, {names[i % 4]}), 0);
    void* saved = LayoutNode(QStringLiteral("forty.xml"));
    ASSERT_EQ(Send(MSG_SAVE_CHART, first, saved), 0);
    const host::workdata::Node* chartNode =
        Store().node(Store().child(Store().child(saved, QStringLiteral("PFWidget")), QStringLiteral("PFChart")));
    ASSERT_EQ(ChildCount(chartNode, "PFArea"), 40);
    void* copy = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, copy, saved), 0);
    EXPECT_EQ(Charts().title(copy), Charts().title(first));
    EXPECT_TRUE(Charts().grab(copy, QSize(1000, 1400)) == Charts().grab(first, QSize(1000, 1400)))
        << "forty areas load differently";

    // Twenty layers in the first area, one indicator each, as a host could write them.
    void* firstArea = chartNode->children.at(0)->handle;
    for (int i = 1; i < 20; ++i) {
        void* layer = Store().createChild(firstArea, QStringLiteral("PFLayer"));
        void* indicator = Store().createChild(layer, QStringLiteral("PFIndicator"));
        Store().setAttribute(indicator, QStringLiteral("InstrumentName"), QString::fromLatin1(names[i % 4]));
        Store().setAttribute(indicator, QStringLiteral("InstrumentPeriodLen"), QStringLiteral("0"));
    }
    void* second = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, second, saved), 0);
    void* again = LayoutNode(QStringLiteral("forty-again.xml"));
    ASSERT_EQ(Send(MSG_SAVE_CHART, second, again), 0);
    const host::workdata::Node* chartAgain =
        Store().node(Store().child(Store().child(again, QStringLiteral("PFWidget")), QStringLiteral("PFChart")));
    ASSERT_EQ(ChildCount(chartAgain, "PFArea"), 40);
    EXPECT_EQ(ChildCount(chartAgain->children.at(0).get(), "PFLayer"), 20);

    // What the module saved loads pixel for pixel.
    void* third = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, third, again), 0);
    EXPECT_EQ(Charts().title(third), Charts().title(second));
    const QImage a = Charts().grab(second, QSize(1000, 1400));
    const QImage b = Charts().grab(third, QSize(1000, 1400));
    EXPECT_TRUE(a == b) << "the loaded window draws differently";
}

TEST_F(LayoutRoundTrip, ALayoutThatBringsNoChartLeavesTheWindowEmpty) {
    const QSize size(600, 400);
    const QImage empty = Charts().grab(Charts().create(ChartType::Renko), size);
    // The window's settings and nothing else; then a chart whose only instrument the host
    // does not have.
    void* settingsOnly = LayoutNode(QStringLiteral("settings.xml"));
    ASSERT_NE(Store().createChild(settingsOnly, QStringLiteral("PFWidget")), nullptr);
    void* unknown = LayoutNode(QStringLiteral("unknown.xml"));
    void* chart = Store().createChild(Store().createChild(unknown, QStringLiteral("PFWidget")), QStringLiteral("PFChart"));
    void* indicator = Store().createChild(
        Store().createChild(Store().createChild(chart, QStringLiteral("PFArea")), QStringLiteral("PFLayer")),
        QStringLiteral("PFIndicator"));
    Store().setAttribute(indicator, QStringLiteral("InstrumentName"), QStringLiteral("NOSUCH"));
    for (void* node : {settingsOnly, unknown}) {
        void* window = Charts().create(ChartType::Renko);
        const std::size_t at = H().journal().entries().size();
        ASSERT_EQ(Send(MSG_LOAD_CHART, window, node), 0);
        EXPECT_EQ(Charts().grab(window, size), empty);
        // Nothing was subscribed to: no data object is left for the window.
        for (std::size_t i = at; i < H().journal().entries().size(); ++i)
            EXPECT_NE(H().journal().entries()[i].message, unsigned(MSG_DPA_SUBSCRIBE));
    }
}

TEST_F(LayoutRoundTrip, HandEditedDocumentsLoadWhatTheyCan) {
    void* node = LayoutNode(QStringLiteral("edited.xml"));
    void* widgetNode = Store().createChild(node, QStringLiteral("PFWidget"));
    Store().setAttribute(widgetNode, QStringLiteral("FreeStep"), QStringLiteral("lots"));
    void* chart = Store().createChild(widgetNode, QStringLiteral("PFChart"));
    Store().setAttribute(chart, QStringLiteral("AreaCount"), QStringLiteral("1000000"));
    auto indicator = [&](const char* name, const char* periodLength) {
        void* area = Store().createChild(chart, QStringLiteral("PFArea"));
        Store().setAttribute(area, QStringLiteral("LayerCount"), QStringLiteral("x"));
        void* layer = Store().createChild(area, QStringLiteral("PFLayer"));
        void* i = Store().createChild(layer, QStringLiteral("PFIndicator"));
        Store().setAttribute(i, QStringLiteral("InstrumentName"), QString::fromLatin1(name));
        Store().setAttribute(i, QStringLiteral("InstrumentPeriodLen"), QString::fromLatin1(periodLength));
        Store().setAttribute(i, QStringLiteral("StartPosition"), QStringLiteral("-99999"));
        Store().setAttribute(i, QStringLiteral("VisibleFigures"), QStringLiteral("2147483647"));
    };
    indicator("NOSUCH", "0");    // unknown instrument
    indicator("USDCHF", "-30");  // negative period
    indicator("TTRC", "0");      // the instrument's own period
    Store().createChild(chart, QStringLiteral("PFArea"));  // an area with nothing in it
    void* window = Charts().create(ChartType::Renko);
    ASSERT_EQ(Send(MSG_LOAD_CHART, window, node), 0);
    EXPECT_EQ(Charts().title(window), QStringLiteral("PFChartModule, TTRC/Day"));
    EXPECT_FALSE(Charts().grab(window, QSize(600, 400)).isNull());
    // Loading or saving for a window the interface did not make touches nothing.
    coreSzNode record;
    ASSERT_TRUE(Store().describe(node, &record));
    EXPECT_EQ(H().send(Renko(), MSG_LOAD_CHART, 0x4242, P(&record)), 0);
    EXPECT_EQ(H().send(Renko(), MSG_SAVE_CHART, P(window), 0), 0);
    // A node without a "PFWidget" child leaves the window as it was.
    void* bare = LayoutNode(QStringLiteral("bare.xml"));
    ASSERT_EQ(Send(MSG_LOAD_CHART, window, bare), 0);
    EXPECT_EQ(Charts().title(window), QStringLiteral("PFChartModule, TTRC/Day"));
}

}  // namespace
