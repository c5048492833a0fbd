// The terminal's workspace: every chart window with its layout and its place on the screen,
// the instruments the windows show (with how far their replay has gone) and the terminal's
// choices, in one work-data document:
//
//   <Workspace Version="1" Language="English" PriceType="0" ReplaySpeed="100" LatestPrices="1"
//              MainGeometry="AdnQywAD…" Docks="AAAA/wAA…">
//     <Instrument Name="USDCHF" Source="" Live="60497"/>   (an example: found by name)
//     <Instrument Name="EURUSD" Source="/data/eurusd.csv" Live="1200"/>
//     <Window Type="pf" X="0" Y="0" Width="640" Height="420" State="normal" Active="1">
//       <ChartWindow> … </ChartWindow>     the node of 3021 and 3020: the module's layout
//       <Chart …/> <Study …/>              the terminal's settings of its charts and studies
//                                          (WindowSettings.h)
//     </Window>
//     <Blotter> <Trade …/> … </Blotter>  every deal and order booked (BlotterRecords.h)
//   </Workspace>
//
// Windows are kept bottom first, so that opening them in order stacks them as they were.
// State is normal, maximized or minimized. Live is the number of an instrument's quotes the
// charts had; the rest of its file waits for the replay again. MainGeometry and Docks are the
// main window's place and size and its panels' arrangement (QMainWindow::saveGeometry and
// saveState, base64); missing or unreadable, the window keeps what it has. `pfhost show`
// prints the document.
#pragma once

#include <QByteArray>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>
#include <vector>

#include "host/DealingService.h"
#include "host/data/ChartType.h"

namespace host {

class Emulator;
class WorkDataStore;

namespace workdata {
struct Node;
}

namespace terminal {

class Workspace {
public:
    struct Instrument {
        QString name;
        QString source;
        long live = -1;  // -1: not said
    };
    struct Window {
        data::ChartType type = data::ChartType::PointAndFigure;
        QRect geometry;    // of the sub-window in the window area
        QString state;     // "normal", "maximized", "minimized"
        bool active = false;
        void* layout = nullptr;  // the ChartWindow node in the work-data store
        void* node = nullptr;    // the Window node: the window's chart and study settings
    };
    struct Contents {
        QString language;
        int priceType = 0;   // 0 middle, 1 bid, 2 ask
        int replaySpeed = 0; // quotes per second; 0: not said
        QByteArray mainGeometry;  // QMainWindow::saveGeometry; empty: not said or not readable
        QByteArray docks;         // QMainWindow::saveState; the same
        bool latestPrices = true;  // Options > Show the latest prices in new charts
        QString exportFolder;      // where the last picture or PDF was exported; empty: not said
        std::vector<Instrument> instruments;
        std::vector<Window> windows;
        std::vector<DealingService::Trade> trades;  // the blotter (BlotterRecords.h)
        // Written only: windows standing in for saved windows whose price file is missing
        // (WaitingCharts.h), each with the Window node it stands for, written in its place
        // as it was read.
        std::vector<std::pair<void*, void*> > kept;  // widget, Window node
    };

    static const char* rootName() { return "Workspace"; }
    // The version of the panels' arrangement handed to saveState and restoreState.
    static const int kDocksVersion = 1;

    // The workspace the terminal keeps when none is named: terminal-workspace.xml in the
    // pfhost folder of the user's configuration location ($XDG_CONFIG_HOME/pfhost, or
    // ~/.config/pfhost). Empty when the system names no such location.
    static QString defaultPath();

    // Reads a workspace document through the store. False, with the reason in `error`, for
    // a file that is missing, unreadable, not XML or not a workspace; entries that make no
    // sense (an unknown chart type, a window without a layout) are left out and named in
    // `skipped`.
    static bool read(WorkDataStore& store, const QString& path, Contents* contents, QString* error,
                     QStringList* skipped = nullptr);
    // The Language attribute of a workspace file, read without a store (before the module
    // starts, which takes its language at start-up); empty when there is none.
    static QString languageOf(const QString& path);

    // Writes every chart window of the emulator (their layouts through 3021), the loaded
    // instruments and the choices in `contents` into the document at `path`, which must be
    // new or a workspace; its folder is made when missing. Of its lists, `instruments` are
    // those not loaded that are kept all the same (a missing price file) and `kept` the saved
    // windows written for the windows standing in for them (a stand-in that shows charts of
    // its own is written as well); the main window's geometry and docks are written when not
    // empty. False with `error` set, the file unchanged.
    static bool write(Emulator& emulator, const QString& path, const Contents& choices, QString* error);

    // Opens the windows of `contents` (5003 and 3020 each), places them and makes the active
    // one active. A window showing an instrument the data core has not loaded is not opened
    // from its layout (the module would leave out what it cannot show) but handed to
    // `standIn` with those instruments, when given; the window it returns is placed instead.
    // The windows' widgets, in order; windows the module refused are named in `problems`.
    using StandIn = std::function<void*(const Window& window, const QStringList& lacking)>;
    static std::vector<void*> open(Emulator& emulator, const Contents& contents, QStringList* problems,
                                   const StandIn& standIn = StandIn());
    // One window of a workspace opened from its layout, with its charts' and studies'
    // settings; null (the reason in `problems`) when the module refused it.
    static void* openWindow(Emulator& emulator, const Window& window, QStringList* problems);
    // The instruments the charts of a saved window show (its Chart elements).
    static QStringList instrumentsOf(Emulator& emulator, const Window& window);
    // Copies the attributes and children of `from` into the work-data node `into`.
    static void copyNode(WorkDataStore& store, const workdata::Node& from, void* into);

    // "pf", "renko", "kagi".
    static QString typeWord(data::ChartType type);
};

}  // namespace terminal
}  // namespace host
