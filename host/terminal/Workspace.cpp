#include "host/terminal/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QWidget>
#include <algorithm>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/WorkDataStore.h"
#include "host/terminal/BlotterRecords.h"
#include "host/data/Instrument.h"
#include "host/terminal/ChartDescription.h"
#include "host/terminal/WindowSettings.h"
#include "host/workdata/WorkTree.h"

namespace host {
namespace terminal {

namespace {

const char* const kTypeWords[] = {"pf", "renko", "kagi"};
// Sub-windows smaller than this are not taken from a document.
const int kMinSide = 40;
// Nor larger than this.
const int kMaxSide = 20000;

bool fail(QString* error, const QString& why) {
    if (error) *error = why;
    return false;
}

QString attribute(const workdata::Node& node, const char* name) {
    const QString* value = node.attribute(QString::fromLatin1(name));
    return value ? *value : QString();
}

bool number(const workdata::Node& node, const char* name, long low, long high, long* out) {
    bool ok = false;
    const long value = attribute(node, name).toLong(&ok);
    if (!ok || value < low || value > high) return false;
    *out = value;
    return true;
}

// A base64 attribute as bytes; empty when missing or not base64 at all.
QByteArray base64(const workdata::Node& node, const char* name) {
    const QByteArray::FromBase64Result r =
        QByteArray::fromBase64Encoding(attribute(node, name).toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return r ? r.decoded : QByteArray();
}

}  // namespace

QString Workspace::defaultPath() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return config.isEmpty() ? QString() : QDir(config).filePath(QStringLiteral("pfhost/terminal-workspace.xml"));
}

QString Workspace::typeWord(data::ChartType type) { return QString::fromLatin1(kTypeWords[int(type)]); }

bool Workspace::read(WorkDataStore& store, const QString& path, Contents* contents, QString* error,
                     QStringList* skipped) {
    if (!QFile::exists(path)) return fail(error, QStringLiteral("no file %1").arg(path));
    void* document = store.open(path, error);
    if (!document) return false;
    void* root = store.root(document);
    const workdata::Node* top = root ? store.node(root) : nullptr;
    if (!top || top->name != QLatin1String(rootName()))
        return fail(error, QStringLiteral("%1 is not a workspace (its root is not %2)").arg(path, QLatin1String(rootName())));
    Contents c;
    c.language = attribute(*top, "Language");
    long value = 0;
    if (number(*top, "PriceType", 0, 2, &value)) c.priceType = int(value);
    if (number(*top, "ReplaySpeed", 1, 1000000, &value)) c.replaySpeed = int(value);
    c.mainGeometry = base64(*top, "MainGeometry");
    c.docks = base64(*top, "Docks");
    c.latestPrices = attribute(*top, "LatestPrices") != QLatin1String("0");
    c.exportFolder = attribute(*top, "ExportFolder");
    c.trades = BlotterRecords::read(*top, skipped);
    for (const auto& child : top->children) {
        const workdata::Node& n = *child;
        if (n.name == QLatin1String("Instrument")) {
            Instrument i;
            i.name = attribute(n, "Name");
            i.source = attribute(n, "Source");
            if (i.source.isEmpty()) i.source = QString::fromStdString(DataCore::builtInPath(i.name.toStdString()));
            long live = -1;
            if (number(n, "Live", 0, 2147483647L, &live)) i.live = live;
            if (i.name.isEmpty()) {
                if (skipped) *skipped << QStringLiteral("an instrument without a name");
                continue;
            }
            c.instruments.push_back(i);
        } else if (n.name == QLatin1String("Window")) {
            Window w;
            const QString word = attribute(n, "Type");
            long x = 0, y = 0, width = 0, height = 0;
            const workdata::Node* layout = nullptr;
            for (const auto& g : n.children)
                if (g->name == QLatin1String(ChartLayouts::windowName())) layout = g.get();
            if (!data::parseChartType(word.toStdString(), &w.type) || !layout) {
                if (skipped) *skipped << QStringLiteral("a window of type \"%1\"%2").arg(word, layout ? QString() : QStringLiteral(" without a layout"));
                continue;
            }
            if (number(n, "X", -kMaxSide, kMaxSide, &x) && number(n, "Y", -kMaxSide, kMaxSide, &y) &&
                number(n, "Width", kMinSide, kMaxSide, &width) && number(n, "Height", kMinSide, kMaxSide, &height))
                w.geometry = QRect(int(x), int(y), int(width), int(height));
            w.state = attribute(n, "State");
            w.active = attribute(n, "Active") == QLatin1String("1");
            w.layout = layout->handle;
            w.node = n.handle;
            c.windows.push_back(w);
        }
    }
    *contents = c;
    return true;
}

QString Workspace::languageOf(const QString& path) {
    QFile file(path);
    workdata::Node top;
    if (!file.open(QIODevice::ReadOnly) || !workdata::parse(file.readAll(), top)) return QString();
    for (const auto& root : top.children)
        if (root->name == QLatin1String(rootName())) return attribute(*root, "Language");
    return QString();
}

bool Workspace::write(Emulator& emulator, const QString& path, const Contents& choices, QString* error) {
    const QFileInfo file(path);
    if (!file.absoluteDir().exists() && !QDir().mkpath(file.absolutePath()))
        return fail(error, QStringLiteral("the folder %1 could not be made").arg(file.absolutePath()));
    WorkDataStore& store = emulator.workData();
    void* document = store.open(path, error);
    if (!document) return false;
    void* root = store.root(document);
    if (root && store.node(root)->name != QLatin1String(rootName()))
        return fail(error, QStringLiteral("%1 holds something other than a workspace; not replaced").arg(path));
    if (root)
        store.clear(root);
    else
        root = store.createChild(document, QString::fromLatin1(rootName()));
    if (!root) return fail(error, QStringLiteral("%1: the workspace could not be made").arg(path));
    store.setAttribute(root, QStringLiteral("Version"), QStringLiteral("1"));
    store.setAttribute(root, QStringLiteral("Language"), choices.language);
    store.setAttribute(root, QStringLiteral("PriceType"), QString::number(choices.priceType));
    store.setAttribute(root, QStringLiteral("ReplaySpeed"), QString::number(choices.replaySpeed));
    store.setAttribute(root, QStringLiteral("LatestPrices"), choices.latestPrices ? QStringLiteral("1") : QStringLiteral("0"));
    if (!choices.exportFolder.isEmpty()) store.setAttribute(root, QStringLiteral("ExportFolder"), choices.exportFolder);
    if (!choices.mainGeometry.isEmpty())
        store.setAttribute(root, QStringLiteral("MainGeometry"), QString::fromLatin1(choices.mainGeometry.toBase64()));
    if (!choices.docks.isEmpty())
        store.setAttribute(root, QStringLiteral("Docks"), QString::fromLatin1(choices.docks.toBase64()));

    DataCore& data = emulator.data();
    for (const std::string& name : data.instrumentNames()) {
        const data::Instrument* i = data.loaded(name);
        if (!i) continue;
        void* node = store.createChild(root, QStringLiteral("Instrument"));
        store.setAttribute(node, QStringLiteral("Name"), QString::fromStdString(name));
        // The example instruments are found by name on any machine; other files by path.
        const bool example = i->source() == DataCore::builtInPath(name);
        store.setAttribute(node, QStringLiteral("Source"), example ? QString() : QString::fromStdString(i->source()));
        store.setAttribute(node, QStringLiteral("Live"), QString::number(i->quotes().size()));
    }

    // Instruments kept while their price file is missing, as they were read.
    for (const Instrument& i : choices.instruments) {
        if (data.loaded(i.name.toStdString())) continue;
        void* node = store.createChild(root, QStringLiteral("Instrument"));
        store.setAttribute(node, QStringLiteral("Name"), i.name);
        const bool example = i.source.toStdString() == DataCore::builtInPath(i.name.toStdString());
        store.setAttribute(node, QStringLiteral("Source"), example ? QString() : i.source);
        if (i.live >= 0) store.setAttribute(node, QStringLiteral("Live"), QString::number(i.live));
    }

    ChartWindows& charts = emulator.charts();
    QMdiArea* area = emulator.mainWindow().mdiArea();
    QMdiSubWindow* active = area->currentSubWindow();
    for (QMdiSubWindow* sub : area->subWindowList(QMdiArea::StackingOrder)) {
        void* widget = nullptr;
        for (void* w : charts.widgets())
            if (charts.subWindow(w) == sub) widget = w;
        data::ChartType type;
        if (!widget || !charts.typeOf(widget, &type)) continue;
        // The place of the window on the screen, for the saved window it stands for as well.
        const auto place = [&](void* node) {
            const QRect g = sub->isMaximized() || sub->isMinimized() ? sub->normalGeometry() : sub->geometry();
            store.setAttribute(node, QStringLiteral("X"), QString::number(g.x()));
            store.setAttribute(node, QStringLiteral("Y"), QString::number(g.y()));
            store.setAttribute(node, QStringLiteral("Width"), QString::number(g.width()));
            store.setAttribute(node, QStringLiteral("Height"), QString::number(g.height()));
            store.setAttribute(node, QStringLiteral("State"),
                               sub->isMaximized() ? QStringLiteral("maximized")
                                                  : sub->isMinimized() ? QStringLiteral("minimized") : QStringLiteral("normal"));
            store.setAttribute(node, QStringLiteral("Active"), sub == active ? QStringLiteral("1") : QStringLiteral("0"));
        };
        const auto kept = std::find_if(choices.kept.begin(), choices.kept.end(),
                                       [widget](const std::pair<void*, void*>& k) { return k.first == widget; });
        const workdata::Node* saved = kept != choices.kept.end() ? store.node(kept->second) : nullptr;
        if (saved) {
            // Written as any window is (type and place first), with the layout and settings read.
            void* node = store.createChild(root, QStringLiteral("Window"));
            store.setAttribute(node, QStringLiteral("Type"), typeWord(type));
            place(node);
            copyNode(store, *saved, node);
            place(node);
            if (windowCharts(data, widget).empty()) continue;
        }
        void* node = store.createChild(root, QStringLiteral("Window"));
        store.setAttribute(node, QStringLiteral("Type"), typeWord(type));
        place(node);
        void* layout = store.createChild(node, QString::fromLatin1(ChartLayouts::windowName()));
        QString why;
        if (!emulator.layouts().saveInto(widget, layout, &why))
            return fail(error, QStringLiteral("%1: window \"%2\": %3").arg(path, charts.title(widget), why));
        saveWindowSettings(emulator, widget, node);
    }
    if (!BlotterRecords::write(store, root, emulator.dealing().blotter()))
        return fail(error, QStringLiteral("%1: the blotter could not be written").arg(path));
    return store.save(root, error);
}

QStringList Workspace::instrumentsOf(Emulator& emulator, const Window& window) {
    QStringList out;
    const workdata::Node* node = window.node ? emulator.workData().node(window.node) : nullptr;
    if (node)
        for (const SavedChart& c : savedCharts(*node))
            if (!c.instrument.isEmpty() && !out.contains(c.instrument)) out << c.instrument;
    return out;
}

void Workspace::copyNode(WorkDataStore& store, const workdata::Node& from, void* into) {
    for (const auto& a : from.attributes) store.setAttribute(into, a.first, a.second);
    for (const auto& child : from.children) {
        void* made = store.createChild(into, child->name);
        if (made) copyNode(store, *child, made);
    }
}

std::vector<void*> Workspace::open(Emulator& emulator, const Contents& contents, QStringList* problems,
                                   const StandIn& standIn) {
    std::vector<void*> made;
    ChartWindows& charts = emulator.charts();
    QMdiSubWindow* active = nullptr;
    for (const Window& w : contents.windows) {
        QStringList lacking;
        for (const QString& name : instrumentsOf(emulator, w))
            if (!emulator.data().loaded(name.toStdString())) lacking << name;
        void* widget = standIn && !lacking.isEmpty() ? standIn(w, lacking) : openWindow(emulator, w, problems);
        if (!widget) continue;
        made.push_back(widget);
        QMdiSubWindow* sub = charts.subWindow(widget);
        if (!sub) continue;
        if (w.geometry.isValid()) sub->setGeometry(w.geometry);
        if (w.state == QLatin1String("maximized"))
            sub->showMaximized();
        else if (w.state == QLatin1String("minimized"))
            sub->showMinimized();
        if (w.active) active = sub;
    }
    if (active) emulator.mainWindow().mdiArea()->setActiveSubWindow(active);
    return made;
}

void* Workspace::openWindow(Emulator& emulator, const Window& w, QStringList* problems) {
    QString why;
    std::vector<std::int32_t> studies = emulator.studies().ids();
    std::sort(studies.begin(), studies.end());
    // The window's charts are made with their saved settings, each instrument's in turn.
    const workdata::Node* node = w.node ? emulator.workData().node(w.node) : nullptr;
    std::vector<SavedChart> saved = node ? savedCharts(*node) : std::vector<SavedChart>();
    emulator.data().setSettingsChooser(
        [&saved](const std::string& instrument, data::ChartType, data::ChartSettings* settings) {
            const QString name = QString::fromStdString(instrument);
            for (auto it = saved.begin(); it != saved.end(); ++it)
                if (it->instrument == name) {
                    *settings = it->settings;
                    saved.erase(it);
                    return true;
                }
            return false;
        });
    void* widget = emulator.layouts().loadFrom(w.type, w.layout, &why);
    emulator.data().setSettingsChooser(nullptr);
    if (!widget) {
        if (problems) *problems << QStringLiteral("a %1 window: %2").arg(typeWord(w.type), why);
        return nullptr;
    }
    if (node) restoreWindowSettings(emulator, widget, *node, studies, problems);
    return widget;
}

}  // namespace terminal
}  // namespace host
