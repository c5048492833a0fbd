// The terminal's workspace: saved on request and on quit, opened from the File menu with the
// price files it needs read in the background, and the main window's place and panels.
#include <QAction>
#include <QFileInfo>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProgressBar>
#include <algorithm>
#include <memory>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/data/Instrument.h"
#include "host/terminal/AccountsPanel.h"
#include "host/terminal/ChartDescription.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/LatestPrices.h"
#include "host/terminal/PriceFileLoader.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/WaitingCharts.h"
#include "host/terminal/WindowArrangement.h"

namespace host {
namespace terminal {

Workspace::Contents Terminal::choices() const {
    Workspace::Contents c;
    c.language = language_;
    c.priceType = priceType_;
    c.replaySpeed = replay_->speed();
    c.mainGeometry = window()->saveGeometry();
    c.docks = window()->saveState(Workspace::kDocksVersion);
    c.latestPrices = latest_->enabled();
    c.exportFolder = exportFolder_;
    // What waits for a missing price file is saved as it was read.
    c.instruments = waiting_->missingInstruments();
    c.kept = waiting_->keptNodes();
    return c;
}

void Terminal::restoreMainWindow(const Workspace::Contents& contents) {
    QMainWindow* main = window();
    // Qt checks what it reads: a value of another version or nonsense is refused and the
    // window stays as it is.
    if (!contents.mainGeometry.isEmpty() && !main->restoreGeometry(contents.mainGeometry))
        showMessage(tr("Workspace: the main window's saved place was not readable; kept as it is."));
    if (options_.sizeGiven) main->resize(options_.size);
    if (!contents.docks.isEmpty() && !main->restoreState(contents.docks, Workspace::kDocksVersion))
        showMessage(tr("Workspace: the panels' saved arrangement was not readable; kept as it is."));
    // The workspace's options and blotter come with its windows.
    latest_->setEnabled(contents.latestPrices);
    if (QAction* latest = action(QStringLiteral("latestPrices"))) latest->setChecked(contents.latestPrices);
    emulator_.dealing().setBlotter(contents.trades);
    exportFolder_ = contents.exportFolder;
}

bool Terminal::saveWorkspace(const QString& path) {
    const QString target = path.isEmpty() ? workspacePath_ : path;
    if (target.isEmpty()) return false;
    QString error;
    if (!Workspace::write(emulator_, target, choices(), &error)) {
        showMessage(tr("The workspace was not saved: %1").arg(error), true);
        return false;
    }
    workspacePath_ = target;
    showMessage(tr("Workspace saved to %1").arg(target));
    return true;
}

bool Terminal::openWorkspace(const QString& path) {
    // The windows open now are kept in their own workspace first. (Saving into the file
    // about to be read would replace what it holds.)
    if (!workspacePath_.isEmpty() && QFileInfo(workspacePath_) != QFileInfo(path)) saveWorkspace();
    Workspace::Contents contents;
    QString error;
    QStringList skipped;
    if (!Workspace::read(emulator_.workData(), path, &contents, &error, &skipped)) {
        showMessage(tr("The workspace could not be opened: %1. Nothing was changed.").arg(error), true);
        return false;
    }
    // Instruments the windows need and the data core does not have yet are read in the
    // background; those being read already are waited for. Each is split at its saved
    // live count when it arrives.
    liveCounts_.clear();
    // The missing files of the workspace left are forgotten with its windows.
    waiting_->clearMissing();
    int reading = 0;
    for (const Workspace::Instrument& i : contents.instruments) {
        if (i.live >= 0) liveCounts_.push_back({i.name, i.live});
        if (emulator_.data().loaded(i.name.toStdString())) continue;
        const bool inFlight = std::any_of(loaders_.begin(), loaders_.end(), [&i](const PriceFileLoader* l) {
            return QFileInfo(l->path()) == QFileInfo(i.source);
        });
        if (inFlight) continue;
        startLoader(i.source, i.name)->start();
        ++reading;
    }
    pendingOpen_.waiting = true;
    pendingOpen_.path = path;
    pendingOpen_.contents = contents;
    pendingOpen_.problems = skipped;
    if (loaders_.empty()) {
        finishOpenWorkspace();
    } else {
        showMessage(reading ? tr("Opening workspace %1: reading %2 price files...").arg(path).arg(reading)
                            : tr("Opening workspace %1 once the price files being read are in...").arg(path));
        refresh();
    }
    return true;
}

void Terminal::splitAt(const QString& name, long live) {
    DataCore& data = emulator_.data();
    data::Instrument* old = data.loaded(name.toStdString());
    if (!old || live < 0 || old->quotes().size() == std::size_t(live)) return;
    // The data core splits an instrument when it takes it: the quotes, held back ones
    // included, go into a fresh instrument that replaces the old one (no window shows it
    // now, and the chart objects made from it go with it).
    std::unique_ptr<data::Instrument> copy(
        new data::Instrument(old->name(), old->period(), old->precision(), old->hasOhlc()));
    copy->setSource(old->source());
    for (const data::Quote& q : old->quotes()) copy->append(q);
    data::Quote q;
    while (old->takePending(&q)) copy->append(q);
    if (old->pendingCount() > 0) return;  // a queue the instrument itself refused: left alone
    data.removeInstrument(name.toStdString());
    DataCore::LoadOptions split;
    split.live = live;
    std::string why;
    if (!data.addInstrument(std::move(copy), split, &why))
        showMessage(tr("Workspace: %1 could not be split at its saved quotes: %2").arg(name, QString::fromStdString(why)), true);
}

void Terminal::finishOpenWorkspace() {
    PendingOpen open = pendingOpen_;
    pendingOpen_ = PendingOpen();
    liveCounts_.clear();
    emulator_.charts().destroyAll();
    for (const Workspace::Instrument& i : open.contents.instruments) splitAt(i.name, i.live);
    if (open.contents.replaySpeed > 0) replay_->setSpeed(open.contents.replaySpeed);
    restoreMainWindow(open.contents);
    openWindows(open.contents, open.problems);
    workspacePath_ = open.path;
    instruments_->refresh();
    accounts_->refresh();
    refresh();
    showMessage(tr("Workspace %1 opened").arg(open.path));
    emit workspaceOpened(open.path);
}

void Terminal::openWindows(const Workspace::Contents& contents, QStringList problems) {
    // Every instrument of the workspace that is not in is kept (its loader said why); one
    // that came from another file after all is not missing.
    for (const Workspace::Instrument& i : contents.instruments) {
        if (emulator_.data().loaded(i.name.toStdString()))
            waiting_->removeMissing(i.name);
        else if (!waiting_->missingNamed(i.name))
            waiting_->addMissing(i, tr("not read"));
    }
    const auto standIn = [this](const Workspace::Window& w, const QStringList& lacking) {
        return waiting_->standIn(w, lacking);
    };
    for (void* w : Workspace::open(emulator_, contents, &problems, standIn))
        arrangement_->adopt(emulator_.charts().subWindow(w));
    for (const QString& p : problems) showMessage(tr("Workspace: %1").arg(p), true);
    // One message for each missing file, however many windows wait for it.
    for (const WaitingCharts::Missing& m : waiting_->missing()) {
        const int windows = waiting_->waitingFor(m.instrument.name);
        const QString waits = windows == 0 ? tr("The workspace keeps it")
                              : windows == 1 ? tr("One chart window waits for it, keeping its charts and settings")
                                             : tr("%1 chart windows wait for it, keeping their charts and settings").arg(windows);
        showMessage(tr("%1: its price file %2 could not be read (%3). %4; open the file (File > Open price file) or "
                       "locate it (File > Locate missing price file).")
                        .arg(m.instrument.name, m.instrument.source, m.why, waits),
                    true);
    }
    updateTitles();
}

bool Terminal::workspaceInstrument(const QString& name, Workspace::Instrument* instrument) const {
    const Workspace::Contents* contents =
        pendingOpen_.waiting ? &pendingOpen_.contents : !ready_ && haveStartWorkspace_ ? &startContents_ : nullptr;
    if (!contents) return false;
    for (const Workspace::Instrument& i : contents->instruments)
        if (i.name == name) {
            *instrument = i;
            return true;
        }
    return false;
}

bool Terminal::locate(const QString& name, const QString& path) {
    if (!waiting_->missingNamed(name)) return false;
    startLoader(path, name)->start();
    showMessage(tr("Reading %1 as the price file of %2...").arg(QFileInfo(path).fileName(), name));
    refresh();
    return true;
}

void Terminal::reattach() {
    std::vector<WaitingCharts::Kept> ready = waiting_->takeReady();
    if (ready.empty()) return;
    ChartWindows& charts = emulator_.charts();
    QMdiSubWindow* active = emulator_.mainWindow().mdiArea()->currentSubWindow();
    // Each saved window takes its stand-in's place, size, state and stacking; a stand-in
    // that shows charts of its own stays.
    Workspace::Contents contents;
    for (const WaitingCharts::Kept& k : ready) {
        Workspace::Window w = k.window;
        if (QMdiSubWindow* sub = charts.subWindow(k.widget)) {
            w.geometry = sub->isMaximized() || sub->isMinimized() ? sub->normalGeometry() : sub->geometry();
            w.state = sub->isMaximized() ? QStringLiteral("maximized") : sub->isMinimized() ? QStringLiteral("minimized") : QStringLiteral("normal");
            w.active = sub == active;
        }
        if (windowCharts(emulator_.data(), k.widget).empty()) charts.destroy(k.widget);
        contents.windows.push_back(w);
    }
    QStringList problems;
    const std::vector<void*> made = Workspace::open(emulator_, contents, &problems);
    for (void* w : made) arrangement_->adopt(charts.subWindow(w));
    for (const WaitingCharts::Kept& k : ready) waiting_->release(k);
    for (const QString& p : problems) showMessage(tr("Workspace: %1").arg(p), true);
    if (!made.empty())
        showMessage(made.size() == 1 ? tr("The chart window that waited for its price file is open again.")
                                     : tr("%1 chart windows that waited for their price file are open again.").arg(made.size()));
    refresh();
}

}  // namespace terminal
}  // namespace host
