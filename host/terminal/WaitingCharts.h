// Chart windows of a workspace waiting for a price file that could not be read. Opening
// such a window from its layout would lose it: the module leaves out the charts of an
// instrument the data core does not have, and the next save would keep only that. So the
// window is not opened from its layout; an empty window of its type stands in for it at its
// place, titled as waiting for the file, and the saved window (layout, chart and study
// settings) is kept as it was read, in a work-data document of its own. The instrument is
// kept too (name, file, quotes shown), so a workspace saved meanwhile holds everything it
// held. Once the instrument is loaded (the file opened again, or located elsewhere) the
// saved windows whose instruments are all there are handed back to be opened in their
// stand-ins' places. Closing a stand-in lets its saved window go.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "host/terminal/Workspace.h"

namespace host {

class Emulator;

namespace terminal {

class WaitingCharts {
public:
    explicit WaitingCharts(Emulator& emulator);
    ~WaitingCharts();
    WaitingCharts(const WaitingCharts&) = delete;
    WaitingCharts& operator=(const WaitingCharts&) = delete;

    // ---- instruments whose price file could not be read ----
    struct Missing {
        Workspace::Instrument instrument;  // as the workspace named it
        QString why;                       // why its file was not read
    };
    // Keeps `instrument` (one of that name is replaced).
    void addMissing(const Workspace::Instrument& instrument, const QString& why);
    const std::vector<Missing>& missing() const { return missing_; }
    // The missing instrument of that name; null for none.
    const Missing* missingNamed(const QString& name) const;
    // The instruments as a workspace writes them.
    std::vector<Workspace::Instrument> missingInstruments() const;
    // The instrument was loaded: no longer missing.
    void removeMissing(const QString& name);
    // Forgets every missing instrument (another workspace is opened).
    void clearMissing() { missing_.clear(); }

    // ---- windows standing in for saved ones ----
    // An empty window of the saved window's type, standing in for it until `lacking` are
    // loaded; its widget, or null when the module made none.
    void* standIn(const Workspace::Window& window, const QStringList& lacking);
    struct Kept {
        void* widget;              // the stand-in
        Workspace::Window window;  // the saved window, its nodes in `document`
        void* document;
        QStringList lacking;
    };
    const std::vector<Kept>& kept() const { return kept_; }
    // The stand-ins and the saved Window nodes they stand for, as a workspace writes them.
    std::vector<std::pair<void*, void*> > keptNodes() const;
    // The number of stand-ins waiting for instrument `name`.
    int waitingFor(const QString& name) const;
    // "waiting for usdchf.csv" for a stand-in; empty for any other window.
    QString waitText(void* widget) const;
    // The saved windows whose instruments are all loaded now, in the order they were kept;
    // they are no longer kept, and their documents live until release().
    std::vector<Kept> takeReady();
    void release(const Kept& kept);
    // The stand-in was closed: its saved window goes with it.
    void forget(void* widget);

private:
    Emulator& emulator_;
    std::vector<Missing> missing_;
    std::vector<Kept> kept_;
};

}  // namespace terminal
}  // namespace host
