// The emulated terminal as a desktop application (`pfhost terminal`): the emulator's main
// window, with its window area of chart windows and the status bar panes the module writes,
// becomes a terminal a person can use. Around it:
//   docked panels  Instruments, Accounts and day-off, Blotter, Journal;
//   menus          File (price files, workspace, print, export), Edit (undo), Chart (new
//                  Point and Figure / Renko / Kagi window, add instrument, properties,
//                  close), Tools (line studies), Replay, Options (price type, language),
//                  Window;
//   replay         play, pause, step, speed: held-back quotes fed into the data core, so every
//                  chart grows through 3009;
//   workspace      every chart window with its layout and place, restored at start, saved on
//                  quit and on request (Workspace.h).
// Everything goes through the emulator's services and the module's messages; nothing here
// draws a chart. Price files are read in the background (PriceFileLoader).
#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "host/DealingService.h"
#include "host/data/ChartType.h"
#include "host/terminal/Workspace.h"

class QAction;
class QActionGroup;
class QLabel;
class QMainWindow;
class QMdiSubWindow;
class QMenu;
class QPrinter;
class QProgressBar;
class QToolBar;

namespace host {

class Emulator;

namespace terminal {

class AccountsPanel;
class BlotterPanel;
class ChartSettingsDialog;
class InstrumentPanel;
class JournalPanel;
class LatestPrices;
class PriceFileLoader;
class ProblemBoxes;
class ReplayFeed;
class StudyDialog;
class TerminalPrint;
class WaitingCharts;
class WindowArrangement;

struct TerminalOptions {
    QStringList files;        // price files to open besides the example instruments
    QString workspace;        // restored at start, saved on quit; empty: none until saved as
    QString screenshot;       // once every window has painted, the main window into this PNG
    bool quit = false;        // and then quit
    // Last quotes of each price file opened that wait for the replay (--hold-back; Replay >
    // Hold back changes it for the files opened next). None unless asked: an opened file is
    // shown whole. One quote always stays for the charts.
    std::size_t holdBack = 0;
    int replaySpeed = 100;    // quotes per second
    QSize size{1400, 900};    // of the main window
    bool sizeGiven = false;   // `size` was asked for: it wins over the workspace's geometry
    bool examples = true;     // the example instruments (USD/CHF, TTRC) are opened too
    // Chart windows opened at start with one instrument each, tiled, when the workspace
    // brings no windows of its own.
    std::vector<std::pair<data::ChartType, QString> > windows;
    std::size_t replay = 0;   // quotes fed once everything is open
    QString journalFilter;    // shown in front, filtered, when not empty
};

class Terminal : public QObject {
    Q_OBJECT
public:
    // The emulator must have been started (module loaded, start-up messages sent).
    Terminal(Emulator& emulator, const TerminalOptions& options, QObject* parent = nullptr);
    ~Terminal() override;

    // Opens the price files, then the workspace; ready() follows once all is open.
    void start();
    bool isReady() const { return ready_; }

    QMainWindow* window() const;
    Emulator& emulator() { return emulator_; }
    ReplayFeed& replay() { return *replay_; }
    InstrumentPanel* instruments() const { return instruments_; }
    AccountsPanel* accounts() const { return accounts_; }
    BlotterPanel* blotter() const { return blotter_; }
    JournalPanel* journal() const { return journal_; }
    ProblemBoxes* problemBoxes() const { return problemBoxes_; }
    LatestPrices& latestPrices() { return *latest_; }
    // An action by its object name ("newPf", "undo", "play" ...); null when there is none.
    QAction* action(const QString& name) const;

    // ---- what the menus do, for the keyboard, the mouse and tests alike ----
    // A new chart window (5003); its widget, or null.
    void* newChart(data::ChartType type);
    // The chart window in front; null for none.
    void* activeChart() const;
    // Closes the active window (5004); false when there is none.
    bool closeActiveChart();
    // The instrument dropped on the active chart (5007); false without one.
    bool addToActiveChart(const QString& instrument);
    // Opens a price file in the background; its instrument joins when read.
    void openPriceFile(const QString& path);
    bool loading() const;
    // The last quotes of each price file opened from now on that wait for the replay (none
    // at first unless --hold-back said); Replay > Hold back sets it.
    void setHoldBack(std::size_t quotes);
    std::size_t holdBack() const { return holdBack_; }
    // Undoes the top step of the undo stack (3140); false when it is empty or refused.
    bool undo();
    // The price type for every chart (3545: 0 middle, 1 bid, 2 ask), then the module's advice
    // (3546), shown in the status bar and returned.
    QString setPriceType(int type);
    QString askPriceType();
    // The line-study tool the next clicks on a chart draw with (a type name as the chart
    // knows it, "HLine" ...); empty for the pointer. False for an unknown type.
    bool chooseStudy(const QString& type);
    // The active window's property page in the terminal's property dialog; false without a
    // window or when none opened (the reason is shown).
    bool showProperties();
    // The ticket for a deal or an order the module asked for (the dealing service hands the
    // request over); modal to the main window. The ticket, or null when none opened.
    QDialog* openTicket(const DealingService::Trade& request);
    // Help > Keys and mouse; the dialog (one at a time).
    QDialog* showKeys();
    // The language the module starts in next time.
    void setLanguage(const QString& language);
    // File > Print chart: the terminal's page of the active window (header line and the
    // window's picture) through the print dialog; false without a window or when the dialog
    // was cancelled.
    bool printActive();
    // The same page onto a printer set up already; false with the reason in `error`.
    bool printActive(QPrinter& printer, QString* error = nullptr);
    // File > Print through the module: the module's own printing (5012); false without one.
    bool printThroughModule();
    // The active window's page into a PNG or PDF file (by the file's suffix).
    bool exportActive(const QString& path, QString* error = nullptr);
    // Where the export dialog starts: the folder last exported to (the home folder at first)
    // and a name made from the active chart.
    QString suggestedExportPath(const QString& suffix) const;

    // ---- chart settings (TerminalSettings.cpp) ----
    // The indicator dialog for chart object `chart` shown in `widget` (a chart's request
    // 3092 opens it once the request has returned); the dialog, or null for a widget that is
    // not a window. One at a time: a second request replaces the first dialog.
    ChartSettingsDialog* showChartSettings(void* widget, void* chart);
    // The study dialog for study `id` (4511 opens it the same way); null for an unknown id.
    StudyDialog* showStudyProperties(std::int32_t id);
    ChartSettingsDialog* chartSettingsDialog() const;
    StudyDialog* studyDialog() const;
    // Every chart window's title: instrument, period, chart type, box size and reversal
    // ("USDCHF 30 min · Point and Figure 0.005 × 3"), or the chart type while it shows none;
    // the Instruments panel lists the same under each instrument.
    void updateTitles();
    // The place and size of the chart windows: new ones, Cascade, restore, the Window menu.
    WindowArrangement& arrangement() { return *arrangement_; }
    // The workspace into `path` (empty: the current workspace file); false with the reason
    // shown. A successful save makes `path` the workspace file.
    bool saveWorkspace(const QString& path = QString());
    // Replaces the windows with those of the workspace at `path`; a file that cannot be
    // read changes nothing (false). Instruments the workspace needs and the data core lacks
    // are read in the background with the progress shown; the windows are opened once every
    // price file being read is in, with each instrument's quotes split at its saved Live
    // count, and workspaceOpened() follows. True when the file was read.
    bool openWorkspace(const QString& path);
    // Windows of the workspace waiting for a price file that could not be read, and those
    // instruments (WaitingCharts.h).
    WaitingCharts& waiting() { return *waiting_; }
    // Reads `path` as the price file of the missing instrument `name` (File > Locate price
    // file); its waiting windows open once it is in. False for a name not missing.
    bool locate(const QString& name, const QString& path);
    // A workspace being opened waits for its price files.
    bool openingWorkspace() const { return pendingOpen_.waiting; }
    const QString& workspacePath() const { return workspacePath_; }
    // Saves the workspace (if there is one) and closes the main window.
    void quit();

    // Messages shown to the person, oldest first.
    const QStringList& messages() const { return messages_; }
    void showMessage(const QString& text, bool problem = false);

signals:
    void ready();
    // A price file finished loading: its instrument's name, or empty with `error`.
    void priceFileDone(const QString& path, const QString& name, const QString& error);
    // Every message shown to the person (problem: shown as one).
    void messageShown(const QString& text, bool problem);
    // The windows of a workspace opened from the File menu are open.
    void workspaceOpened(const QString& path);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    void buildPanels();
    void buildStatusBar();
    // The requests of the charts for the terminal's dialogs (3092, 4511).
    void connectDialogs();
    void refresh();  // panels, undo entry, replay state
    void loaderDone(PriceFileLoader* loader);
    PriceFileLoader* startLoader(const QString& path, const QString& name);
    void afterLoading();
    // The windows of the workspace being opened, once its price files are in.
    void finishOpenWorkspace();
    // The main window's place and panels as the workspace saved them (when readable).
    void restoreMainWindow(const Workspace::Contents& contents);
    // The windows of a workspace opened (windows waiting for a missing price file stand in
    // for those that cannot show their charts yet), placed and followed; what went wrong is
    // said, once per missing file.
    void openWindows(const Workspace::Contents& contents, QStringList problems);
    // The instrument of that name of the workspace being opened (at start or from the File
    // menu); false when it names none.
    bool workspaceInstrument(const QString& name, Workspace::Instrument* instrument) const;
    // Opens the saved windows whose instruments are all loaded now in their stand-ins' places.
    void reattach();
    // Moves an instrument's quotes after the first `live` back into its held-back queue (or
    // the other way), so that its charts start where the workspace left them.
    void splitAt(const QString& name, long live);
    void finishStart();
    void takeScreenshot();
    Workspace::Contents choices() const;
    QString chartName(void* widget) const;

    Emulator& emulator_;
    TerminalOptions options_;
    ReplayFeed* replay_;
    InstrumentPanel* instruments_ = nullptr;
    AccountsPanel* accounts_ = nullptr;
    BlotterPanel* blotter_ = nullptr;
    JournalPanel* journal_ = nullptr;
    ProblemBoxes* problemBoxes_ = nullptr;
    std::unique_ptr<LatestPrices> latest_;
    QPointer<QDialog> keys_;
    QString studyHint_;  // the status-bar hint of the study tool chosen, while it shows
    QLabel* message_ = nullptr;
    QLabel* replayState_ = nullptr;
    QLabel* priceAdvice_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QActionGroup* priceTypes_ = nullptr;
    QActionGroup* languages_ = nullptr;
    QActionGroup* speeds_ = nullptr;
    QActionGroup* holdBacks_ = nullptr;
    QActionGroup* studyTools_ = nullptr;
    std::vector<PriceFileLoader*> loaders_;
    std::unique_ptr<WaitingCharts> waiting_;
    std::vector<std::pair<QString, long> > liveCounts_;  // from the workspace: name, live quotes
    Workspace::Contents startContents_;
    struct PendingOpen {
        bool waiting = false;
        QString path;
        Workspace::Contents contents;
        QStringList problems;
    } pendingOpen_;
    bool haveStartWorkspace_ = false;
    QString workspacePath_;
    QString language_;
    int priceType_ = 0;
    std::size_t holdBack_ = 0;  // quotes of each file opened next held back for the replay
    bool ready_ = false;
    bool closing_ = false;
    QStringList messages_;
    WindowArrangement* arrangement_ = nullptr;
    std::unique_ptr<TerminalPrint> print_;
    QPointer<ChartSettingsDialog> settingsDialog_;
    QPointer<StudyDialog> studyDialog_;
    QString exportFolder_;
};

}  // namespace terminal
}  // namespace host
