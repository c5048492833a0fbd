// The terminal the fuzz targets that play the host run against: the application, the
// emulator with the real module loaded (dlopen), the fonts and an instrument are set up once
// per process; a chart window of each type with the instrument is kept from one input to
// the next, so that an input pays only for what it does.
//
// Per input: Begin() makes again the kept windows the input before destroyed; End()
// destroys every other window the input made, undoes what is left on the terminal's undo
// stack, puts the study tool down, and forgets the journal. A property dialog closes with
// its window; those of the kept windows stay open, as the windows do. The kept windows and the
// instrument are made anew every kRecycle inputs, so that what inputs leave behind (zoom,
// closed areas, replayed quotes) stays bounded, and when the copies of price arrays handed
// to the module (HostReplies.h) are all used: a copy must outlive every window shown it.
// PF_FUZZ_FRESH=1 makes every window anew for every input, to reproduce a finding on its own.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMainWindow>
#include <QMenu>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"

namespace fuzz {

inline host::Emulator* g_emulator = nullptr;
inline FuzzedDataProvider* g_input = nullptr;  // set while one input runs
inline std::vector<QWidget*> g_containers;     // parents the fuzzer offers to 5003
inline QString g_layoutPath;
inline const char* const kInstrument = "FZ";

// A window made by 5003 from the fuzzer's own record.
struct Window {
    void* widget;
    void* iface;
};
inline std::vector<Window> g_ownWindows;
inline std::vector<void*> g_destroyed;  // widget addresses that were live once
// The kept windows, one per chart type; null once destroyed.
inline std::array<void*, 3> g_kept{};
inline int g_inputsSinceRecycle = 0;
const int kRecycle = 256;

// Copies of the host's data point arrays with random prices (HostReplies.h), handed out in
// place of the originals. They live until every window that was shown them is gone.
inline std::deque<std::pair<fxDataPointArray, std::vector<unsigned char>>> g_arrayCopies;
// At most this many at once: when they are all handed out, the windows go.
inline const std::size_t kMaxArrayCopies = 32;

inline void* Iface(int type) {
    return g_emulator->core().componentObject(type == 0 ? "Points and Figures" : type == 1 ? "Renko" : "Kagi");
}

inline std::vector<void*> LiveWidgets() {
    std::vector<void*> out = g_emulator->charts().widgets();
    for (const Window& w : g_ownWindows) out.push_back(w.widget);
    return out;
}

inline bool Live(void* widget) {
    const std::vector<void*> live = g_emulator->charts().widgets();
    return widget && std::find(live.begin(), live.end(), widget) != live.end();
}

inline bool Kept(void* widget) { return widget && std::find(g_kept.begin(), g_kept.end(), widget) != g_kept.end(); }

// What escapes from the module into the terminal ends the run: a person's event reaching
// the terminal's event loop with an exception in flight ends the terminal.
template <class Step>
void Unescaped(const char* what, Step&& step) {
    try {
        step();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "==== an exception escaped the module during %s: %s\n", what, e.what());
        std::abort();
    } catch (...) {
        std::fprintf(stderr, "==== an exception escaped the module during %s\n", what);
        std::abort();
    }
}

// Nobody looks at the fuzzer's screen: the terminal's dialogs and menus are used but never
// painted (their updates are off from the moment they show). Chart widgets are painted
// when an input asks for a picture (ChartWindows::grab), and printing paints as it does.
class Unpainted : public QObject {
protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && watched->isWidgetType()) {
            QWidget* w = static_cast<QWidget*>(watched);
            if (w->isWindow() && (qobject_cast<QDialog*>(w) || qobject_cast<QMenu*>(w))) w->setUpdatesEnabled(false);
        }
        return QObject::eventFilter(watched, event);
    }
};

inline void LoadInstrument() {
    host::InstrumentOptions options;
    options.name = kInstrument;
    options.live = 300;
    if (!g_emulator->data().loadInstrument(std::string(PF_EXAMPLES_DIR) + "/ttrc-daily.csv", options)) std::abort();
}

// Once per process. `name` names the layout file in the temporary folder.
inline void SetUp(int* argc, char*** argv, const char* name) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(*argc, *argv);
    qApp->installEventFilter(new Unpainted);
    g_emulator = new host::Emulator();
    // Two dealings, one with two accounts: the context menu offers trades.
    void* alpha = g_emulator->dealing().addDealing("DEALING_ALPHA");
    void* beta = g_emulator->dealing().addDealing("DEALING_BETA");
    g_emulator->dealing().addAccount(alpha, 1, QStringLiteral("One"));
    g_emulator->dealing().addAccount(alpha, 2, QStringLiteral("Two"));
    g_emulator->dealing().addAccount(beta, 3, QStringLiteral("Three"));
    if (!g_emulator->loadModule()) std::abort();
    g_emulator->startUp();
    // The windows are not shown: nothing is painted unless an input asks for a picture
    // (ChartWindows::grab), where a shown window would repaint after every event.
    g_emulator->mainWindow().window()->hide();
    g_emulator->dialogs().setPrinting(host::DialogAnswerer::Printing::Reject);
    LoadInstrument();
    for (int i = 0; i < 2; ++i) {
        QWidget* container = new QWidget;
        container->resize(640, 480);
        container->winId();
        g_containers.push_back(container);
    }
    g_layoutPath = QDir::temp().filePath(QStringLiteral("%1_%2.xml").arg(QLatin1String(name)).arg(QCoreApplication::applicationPid()));
}

// The kept windows the input before destroyed are made again, with the instrument.
inline void Begin(FuzzedDataProvider& in) {
    host::ChartWindows& charts = g_emulator->charts();
    for (std::size_t t = 0; t < g_kept.size(); ++t) {
        if (g_kept[t] && Live(g_kept[t])) continue;
        Unescaped("making a kept window", [&] {
            g_kept[t] = charts.create(host::data::ChartType(t));
            if (g_kept[t]) charts.drop(g_kept[t], {kInstrument});
        });
    }
    g_input = &in;
}

inline void DestroyKept() {
    for (void*& w : g_kept) {
        if (w && Live(w) && g_emulator->charts().destroy(w)) g_destroyed.push_back(w);
        w = nullptr;
    }
}

inline void End() {
    g_input = nullptr;
    Unescaped("cleaning up", [] {
        host::ChartWindows& charts = g_emulator->charts();
        g_emulator->studies().clearTool();
        for (const Window& w : std::vector<Window>(g_ownWindows)) {
            g_emulator->host().send(w.iface, MSG_WC_DESTROY, reinterpret_cast<std::intptr_t>(w.widget), 0);
            g_destroyed.push_back(w.widget);
        }
        g_ownWindows.clear();
        for (void* w : charts.widgets())
            if (!Kept(w) && charts.destroy(w)) g_destroyed.push_back(w);
        // What is left on the undo stack goes back to its windows (or to interfaces whose
        // windows are gone); a step the module refuses is dropped all the same.
        for (std::size_t i = g_emulator->undo().records().size(); i > 0 && g_emulator->undo().undo().sent; --i) {
        }
        const bool fresh = qEnvironmentVariableIsSet("PF_FUZZ_FRESH");
        const bool recycle = fresh || ++g_inputsSinceRecycle >= kRecycle;
        if (recycle || g_arrayCopies.size() >= kMaxArrayCopies) {
            DestroyKept();
            charts.destroyAll();
            g_arrayCopies.clear();
            // The chart leaves the studies of the windows it destroyed to the terminal.
            g_emulator->studies().forgetStudies();
        }
        if (recycle) {
            g_inputsSinceRecycle = 0;
            g_emulator->data().removeInstrument(kInstrument);
            LoadInstrument();
        }
        QApplication::processEvents();
    });
    g_emulator->host().journal().clear();
    g_emulator->studies().forget();
    g_emulator->data().clearNotices();
    g_emulator->undo().forgetReplies();
    g_emulator->charts().forgetDestroyed();
    if (g_destroyed.size() > 256) g_destroyed.erase(g_destroyed.begin(), g_destroyed.end() - 128);
}

}  // namespace fuzz
