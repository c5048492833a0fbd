#include "host/terminal/WaitingCharts.h"

#include <QFileInfo>
#include <algorithm>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

namespace host {
namespace terminal {

WaitingCharts::WaitingCharts(Emulator& emulator) : emulator_(emulator) {}

WaitingCharts::~WaitingCharts() {
    for (const Kept& k : kept_) emulator_.workData().closeDocument(k.document);
}

void WaitingCharts::addMissing(const Workspace::Instrument& instrument, const QString& why) {
    removeMissing(instrument.name);
    missing_.push_back(Missing{instrument, why});
}

void WaitingCharts::removeMissing(const QString& name) {
    missing_.erase(std::remove_if(missing_.begin(), missing_.end(), [&name](const Missing& m) { return m.instrument.name == name; }),
                   missing_.end());
}

const WaitingCharts::Missing* WaitingCharts::missingNamed(const QString& name) const {
    for (const Missing& m : missing_)
        if (m.instrument.name == name) return &m;
    return nullptr;
}

std::vector<Workspace::Instrument> WaitingCharts::missingInstruments() const {
    std::vector<Workspace::Instrument> out;
    for (const Missing& m : missing_) out.push_back(m.instrument);
    return out;
}

void* WaitingCharts::standIn(const Workspace::Window& window, const QStringList& lacking) {
    WorkDataStore& store = emulator_.workData();
    const workdata::Node* saved = window.node ? store.node(window.node) : nullptr;
    if (!saved) return nullptr;
    void* widget = emulator_.charts().create(window.type);
    if (!widget) return nullptr;
    // The saved window as it was read, in a document of its own: the workspace's document
    // is rewritten by the next save.
    Kept k{widget, window, store.createDocument(QStringLiteral("Window")), lacking};
    void* root = store.root(k.document);
    Workspace::copyNode(store, *saved, root);
    k.window.node = root;
    k.window.layout = store.child(root, QString::fromLatin1(ChartLayouts::windowName()));
    kept_.push_back(k);
    return widget;
}

std::vector<std::pair<void*, void*> > WaitingCharts::keptNodes() const {
    std::vector<std::pair<void*, void*> > out;
    for (const Kept& k : kept_) out.push_back({k.widget, k.window.node});
    return out;
}

int WaitingCharts::waitingFor(const QString& name) const {
    return int(std::count_if(kept_.begin(), kept_.end(), [&name](const Kept& k) { return k.lacking.contains(name); }));
}

QString WaitingCharts::waitText(void* widget) const {
    for (const Kept& k : kept_) {
        if (k.widget != widget) continue;
        QStringList files;
        for (const QString& name : k.lacking) {
            const Missing* m = missingNamed(name);
            files << (m && !m->instrument.source.isEmpty() ? QFileInfo(m->instrument.source).fileName() : name);
        }
        return QStringLiteral("waiting for %1").arg(files.join(QStringLiteral(", ")));
    }
    return QString();
}

std::vector<WaitingCharts::Kept> WaitingCharts::takeReady() {
    DataCore& data = emulator_.data();
    std::vector<Kept> ready;
    for (auto it = kept_.begin(); it != kept_.end();) {
        const bool all = std::all_of(it->lacking.begin(), it->lacking.end(),
                                     [&data](const QString& name) { return data.loaded(name.toStdString()) != nullptr; });
        if (!all) {
            ++it;
            continue;
        }
        ready.push_back(*it);
        it = kept_.erase(it);
    }
    return ready;
}

void WaitingCharts::release(const Kept& kept) { emulator_.workData().closeDocument(kept.document); }

void WaitingCharts::forget(void* widget) {
    for (auto it = kept_.begin(); it != kept_.end(); ++it)
        if (it->widget == widget) {
            release(*it);
            kept_.erase(it);
            return;
        }
}

}  // namespace terminal
}  // namespace host
