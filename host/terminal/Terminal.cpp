#include "host/terminal/Terminal.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/LineStudies.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"
#include "host/ls/StudyGeometry.h"
#include "host/terminal/AccountsPanel.h"
#include "host/terminal/BlotterPanel.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/JournalPanel.h"
#include "host/terminal/KeysDialog.h"
#include "host/terminal/LatestPrices.h"
#include "host/terminal/PriceFileLoader.h"
#include "host/terminal/ProblemBoxes.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/TerminalPrint.h"
#include "host/terminal/WaitingCharts.h"
#include "host/terminal/WindowArrangement.h"

namespace host {
namespace terminal {

namespace {

// How often the panels follow the services they show, in milliseconds.
const int kRefreshInterval = 200;
// Replay speeds offered, quotes per second.
const int kSpeeds[] = {10, 100, 1000, 10000};
// Quotes of each file opened that the Replay menu offers to hold back.
const std::size_t kHoldBacks[] = {0, 500, 2000, 10000};
const char* const kLanguages[] = {"English", "Chinese (Simplified)"};
// Journal entries kept: above the high mark the oldest go down to the low mark.
const std::size_t kJournalHigh = 200000;
const std::size_t kJournalLow = 100000;

QAction* addAction(QMenu* menu, QObject* owner, const char* name, const QString& text, const QKeySequence& key,
                   std::function<void()> run) {
    QAction* a = menu->addAction(text);
    a->setObjectName(QString::fromLatin1(name));
    if (!key.isEmpty()) a->setShortcut(key);
    QObject::connect(a, &QAction::triggered, owner, [run] { run(); });
    return a;
}

QDockWidget* dock(QMainWindow* window, const char* name, const QString& title, QWidget* content,
                  Qt::DockWidgetArea area) {
    QDockWidget* d = new QDockWidget(title, window);
    d->setObjectName(QString::fromLatin1(name));
    d->setWidget(content);
    window->addDockWidget(area, d);
    return d;
}

}  // namespace

Terminal::Terminal(Emulator& emulator, const TerminalOptions& options, QObject* parent)
    : QObject(parent),
      emulator_(emulator),
      options_(options),
      replay_(new ReplayFeed(emulator.data(), this)),
      arrangement_(new WindowArrangement(emulator.mainWindow().mdiArea(), this)),
      print_(new TerminalPrint(emulator.charts(), emulator.data())) {
    replay_->setSpeed(options_.replaySpeed);
    holdBack_ = options_.holdBack;
    const EmulatorOptions& eo = emulator_.options();
    language_ = eo.selectedLanguage >= 0 && std::size_t(eo.selectedLanguage) < eo.languages.size()
                    ? QString::fromStdString(eo.languages[std::size_t(eo.selectedLanguage)])
                    : QStringLiteral("English");
    QMainWindow* main = window();
    main->setWindowTitle(tr("pfhost terminal"));
    main->resize(options_.size);
    main->installEventFilter(this);
    problemBoxes_ = new ProblemBoxes(main, tr("pfhost terminal"), this);
    latest_.reset(new LatestPrices(emulator_.charts()));
    // Deals and orders from the charts come to the terminal's ticket, after the module's
    // request has returned (its menu is closed by then).
    emulator_.dealing().setTicket([this](const DealingService::Trade& request) {
        QTimer::singleShot(0, this, [this, request] { openTicket(request); });
    });
    // The terminal's language tables say what each answer to the module's question does
    // when an instrument is added to a chart that shows one.
    emulator_.core().setTranslation("English", QStringLiteral("C0111Message"),
                                    tr("Replace instrument?\nYes replaces the chart's instrument; No adds it as a new area."));
    emulator_.core().setTranslation("Chinese (Simplified)", QStringLiteral("C0111Message"),
                                    QStringLiteral("替换品种？\n“是”替换图表的品种；“否”将其添加为新的区域。"));
    // A window standing in for a saved one that is closed lets the saved one go.
    waiting_.reset(new WaitingCharts(emulator_));
    QPointer<Terminal> self(this);
    emulator_.charts().onWindowGoing([self](void* widget) {
        if (self && self->waiting_) self->waiting_->forget(widget);
    });
    // Escape on a chart cancels the study tool as well as what the chart is placing.
    qApp->installEventFilter(this);
    buildPanels();
    buildMenus();
    buildStatusBar();
    connect(replay_, &ReplayFeed::fedQuotes, this, [this] {
        instruments_->refresh();
        refresh();
    });
    connect(replay_, &ReplayFeed::stateChanged, this, [this] { refresh(); });
    // The windows' titles say what each chart is (updateTitles), whatever caption the
    // module gives them.
    connect(emulator_.mainWindow().mdiArea(), &QMdiArea::subWindowActivated, this, [this] { refresh(); });
    connectDialogs();
    QTimer* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this] { refresh(); });
    timer->start(kRefreshInterval);
    refresh();
}

Terminal::~Terminal() {
    for (PriceFileLoader* l : loaders_) {
        l->stop();
        l->wait();
    }
    if (QMainWindow* main = window()) main->removeEventFilter(this);
    emulator_.mainWindow().setPropertiesHandler(nullptr);
    emulator_.studies().setPropertiesHandler(nullptr);
    qApp->removeEventFilter(this);
    emulator_.dealing().setTicket(DealingService::Ticket());
    waiting_.reset();
}

QMainWindow* Terminal::window() const { return emulator_.mainWindow().window(); }

QAction* Terminal::action(const QString& name) const { return window()->findChild<QAction*>(name); }

void Terminal::buildPanels() {
    QMainWindow* main = window();
    DealingService& dealing = emulator_.dealing();
    // The dealings the terminal was started with: those of its accounts.
    std::vector<void*> dealings;
    for (const Host::Interface& i : emulator_.host().interfaces())
        if (i.kind == "DEALING") dealings.push_back(i.handle);

    instruments_ = new InstrumentPanel(emulator_.data());
    accounts_ = new AccountsPanel(dealing, emulator_.data(), dealings);
    blotter_ = new BlotterPanel(dealing);
    journal_ = new JournalPanel(emulator_.host().journal());
    QDockWidget* i = dock(main, "instrumentsDock", tr("Instruments"), instruments_, Qt::LeftDockWidgetArea);
    dock(main, "accountsDock", tr("Accounts and day-off"), accounts_, Qt::LeftDockWidgetArea);
    QDockWidget* b = dock(main, "blotterDock", tr("Blotter"), blotter_, Qt::BottomDockWidgetArea);
    QDockWidget* j = dock(main, "journalDock", tr("Journal"), journal_, Qt::BottomDockWidgetArea);
    main->tabifyDockWidget(b, j);
    b->raise();
    // The chart windows get most of the room.
    main->resizeDocks({b}, {170}, Qt::Vertical);
    main->resizeDocks({i}, {330}, Qt::Horizontal);
    connect(instruments_, &InstrumentPanel::chosen, this, [this](const QString& name) { addToActiveChart(name); });
    connect(accounts_, &AccountsPanel::message, this, [this](const QString& text) { showMessage(text); });
}

void Terminal::buildMenus() {
    QMainWindow* main = window();
    QMenuBar* bar = main->menuBar();

    QMenu* file = bar->addMenu(tr("&File"));
    addAction(file, this, "openPriceFile", tr("&Open price file..."), QKeySequence::Open, [this] {
        const QString path = QFileDialog::getOpenFileName(window(), tr("Open price file"), QString(),
                                                          tr("Price files (*.csv);;All files (*)"));
        if (!path.isEmpty()) openPriceFile(path);
    });
    QAction* stop = addAction(file, this, "stopLoading", tr("S&top loading"), QKeySequence(), [this] {
        for (PriceFileLoader* l : loaders_) l->stop();
    });
    stop->setEnabled(false);
    addAction(file, this, "locatePriceFile", tr("&Locate missing price file..."), QKeySequence(), [this] {
        // One missing file at a time, the first the workspace named.
        if (waiting_->missing().empty()) return;
        const Workspace::Instrument i = waiting_->missing().front().instrument;
        const QString path = QFileDialog::getOpenFileName(window(), tr("Locate the price file of %1 (was %2)").arg(i.name, i.source),
                                                          QFileInfo(i.source).absolutePath(),
                                                          tr("Price files (*.csv);;All files (*)"));
        if (!path.isEmpty()) locate(i.name, path);
    });
    file->addSeparator();
    addAction(file, this, "openWorkspace", tr("Open &workspace..."), QKeySequence(tr("Ctrl+Shift+O")), [this] {
        const QString path = QFileDialog::getOpenFileName(window(), tr("Open workspace"), workspacePath_,
                                                          tr("Workspaces (*.xml);;All files (*)"));
        if (!path.isEmpty()) openWorkspace(path);
    });
    addAction(file, this, "saveWorkspace", tr("&Save workspace"), QKeySequence::Save, [this] {
        if (workspacePath_.isEmpty()) {
            const QString path = QFileDialog::getSaveFileName(window(), tr("Save workspace"), QString(),
                                                              tr("Workspaces (*.xml)"));
            if (!path.isEmpty()) saveWorkspace(path);
        } else {
            saveWorkspace();
        }
    });
    addAction(file, this, "saveWorkspaceAs", tr("Save workspace &as..."), QKeySequence(tr("Ctrl+Shift+S")), [this] {
        const QString path = QFileDialog::getSaveFileName(window(), tr("Save workspace"), workspacePath_,
                                                          tr("Workspaces (*.xml)"));
        if (!path.isEmpty()) saveWorkspace(path);
    });
    file->addSeparator();
    addAction(file, this, "print", tr("&Print chart..."), QKeySequence::Print, [this] { printActive(); });
    addAction(file, this, "printModule", tr("Print through the &module..."), QKeySequence(), [this] { printThroughModule(); });
    const auto exporter = [this](const QString& filter, const QString& suffix) {
        const QString path = QFileDialog::getSaveFileName(window(), tr("Export chart"), suggestedExportPath(suffix), filter);
        if (path.isEmpty()) return;
        QString error;
        const QString file = path.endsWith(suffix, Qt::CaseInsensitive) ? path : path + suffix;
        if (!exportActive(file, &error)) showMessage(error, true);
    };
    addAction(file, this, "exportPng", tr("Export chart as P&NG..."), QKeySequence(tr("Ctrl+E")),
              [exporter] { exporter(tr("PNG pictures (*.png)"), QStringLiteral(".png")); });
    addAction(file, this, "exportPdf", tr("Export chart as P&DF..."), QKeySequence(tr("Ctrl+Shift+E")),
              [exporter] { exporter(tr("PDF documents (*.pdf)"), QStringLiteral(".pdf")); });
    file->addSeparator();
    addAction(file, this, "quit", tr("&Quit"), QKeySequence::Quit, [this] { quit(); });

    QMenu* edit = bar->addMenu(tr("&Edit"));
    addAction(edit, this, "undo", tr("&Undo"), QKeySequence::Undo, [this] { undo(); });

    QMenu* chart = bar->addMenu(tr("&Chart"));
    addAction(chart, this, "newPf", tr("New &Point and Figure chart"), QKeySequence(tr("Ctrl+1")),
              [this] { newChart(data::ChartType::PointAndFigure); });
    addAction(chart, this, "newRenko", tr("New &Renko chart"), QKeySequence(tr("Ctrl+2")),
              [this] { newChart(data::ChartType::Renko); });
    addAction(chart, this, "newKagi", tr("New &Kagi chart"), QKeySequence(tr("Ctrl+3")),
              [this] { newChart(data::ChartType::Kagi); });
    chart->addSeparator();
    addAction(chart, this, "addInstrument", tr("&Add selected instrument"), QKeySequence(tr("Ctrl+I")),
              [this] { addToActiveChart(instruments_->current()); });
    addAction(chart, this, "properties", tr("P&roperties..."), QKeySequence(tr("Alt+Return")), [this] { showProperties(); });
    // The chart that has the focus is the active one; Ctrl+F4 as well, as in other
    // programs with windows inside a window.
    addAction(chart, this, "closeChart", tr("&Close chart"), QKeySequence(tr("Ctrl+W")), [this] { closeActiveChart(); })
        ->setShortcuts({QKeySequence(tr("Ctrl+W")), QKeySequence(tr("Ctrl+F4"))});

    // The line-study tools: the one chosen is what the next clicks on a chart draw; the chart
    // puts it down when the study is placed (3501), and the pointer comes back.
    QMenu* studies = bar->addMenu(tr("&Tools"));
    studyTools_ = new QActionGroup(this);
    QAction* pointer = addAction(studies, this, "toolPointer", tr("&Pointer"), QKeySequence(), [this] { chooseStudy(QString()); });
    pointer->setCheckable(true);
    pointer->setChecked(true);
    studyTools_->addAction(pointer);
    studies->addSeparator();
    // Each tool has a shortcut of Alt+Shift and a letter of its name, and a button on the
    // Studies tool bar.
    const std::pair<const char*, const char*> studyKeys[] = {
        {"HLine", "Alt+Shift+H"}, {"VLine", "Alt+Shift+V"}, {"Line", "Alt+Shift+T"}, {"Text", "Alt+Shift+X"},
        {"Arc", "Alt+Shift+F"}, {"Chanel", "Alt+Shift+C"}, {"Andrews Pitchfork", "Alt+Shift+A"}, {"PolyLine", "Alt+Shift+L"}};
    pointer->setShortcut(QKeySequence(tr("Alt+Shift+P")));
    QToolBar* studyBar = main->addToolBar(tr("Studies"));
    studyBar->setObjectName(QStringLiteral("studyToolBar"));
    studyBar->addAction(pointer);
    for (const std::string& name : ls::studyNames()) {
        ls::StudyKind kind;
        if (!ls::kindFromName(name, &kind)) continue;
        const QString type = QString::fromStdString(name);
        QKeySequence key;
        for (const auto& k : studyKeys)
            if (name == k.first) key = QKeySequence(QString::fromLatin1(k.second));
        QAction* a = addAction(studies, this, "study", ls::studyTitle(kind), key, [this, type] { chooseStudy(type); });
        studyBar->addAction(a);
        a->setObjectName(QStringLiteral("study:") + type);
        a->setData(type);
        a->setCheckable(true);
        studyTools_->addAction(a);
    }

    QMenu* replay = bar->addMenu(tr("&Replay"));
    QToolBar* tools = main->addToolBar(tr("Replay"));
    tools->setObjectName(QStringLiteral("replayToolBar"));
    tools->addAction(addAction(replay, this, "play", tr("&Play"), QKeySequence(tr("F5")), [this] { replay_->play(); }));
    tools->addAction(addAction(replay, this, "pause", tr("P&ause"), QKeySequence(tr("F6")), [this] { replay_->pause(); }));
    tools->addAction(addAction(replay, this, "step", tr("&Step"), QKeySequence(tr("F7")), [this] { replay_->step(); }));
    QMenu* speed = replay->addMenu(tr("Sp&eed"));
    speeds_ = new QActionGroup(this);
    for (int s : kSpeeds) {
        QAction* a = addAction(speed, this, QStringLiteral("speed%1").arg(s).toLatin1().constData(),
                               tr("%1 quotes a second").arg(s), QKeySequence(), [this, s] { replay_->setSpeed(s); refresh(); });
        a->setCheckable(true);
        a->setChecked(s == replay_->speed());
        speeds_->addAction(a);
    }
    // How much of each file opened next waits for the replay: nothing unless chosen.
    QMenu* hold = replay->addMenu(tr("&Hold back from files opened"));
    holdBacks_ = new QActionGroup(this);
    std::vector<std::size_t> holds(std::begin(kHoldBacks), std::end(kHoldBacks));
    if (std::find(holds.begin(), holds.end(), holdBack_) == holds.end()) holds.push_back(holdBack_);
    for (std::size_t n : holds) {
        QAction* a = addAction(hold, this, QStringLiteral("holdBack%1").arg(n).toLatin1().constData(),
                               n ? tr("The last %L1 quotes").arg(qulonglong(n)) : tr("&Nothing: show files whole"),
                               QKeySequence(), [this, n] { setHoldBack(n); });
        a->setCheckable(true);
        a->setChecked(n == holdBack_);
        holdBacks_->addAction(a);
    }
    tools->addSeparator();
    tools->addAction(action(QStringLiteral("newPf")));
    tools->addAction(action(QStringLiteral("newRenko")));
    tools->addAction(action(QStringLiteral("newKagi")));

    QMenu* opts = bar->addMenu(tr("&Options"));
    QMenu* price = opts->addMenu(tr("&Price type"));
    priceTypes_ = new QActionGroup(this);
    const char* const priceNames[] = {"priceMiddle", "priceBid", "priceAsk"};
    const QString priceTexts[] = {tr("&Middle"), tr("&Bid"), tr("&Ask")};
    for (int t = 0; t < 3; ++t) {
        QAction* a = addAction(price, this, priceNames[t], priceTexts[t], QKeySequence(), [this, t] { setPriceType(t); });
        a->setCheckable(true);
        a->setChecked(t == priceType_);
        priceTypes_->addAction(a);
    }
    price->addSeparator();
    addAction(price, this, "askPriceType", tr("Ask the charts"), QKeySequence(), [this] { askPriceType(); });
    QAction* latest = addAction(opts, this, "latestPrices", tr("Show the latest prices in &new charts"), QKeySequence(),
                                [this] { latest_->setEnabled(action(QStringLiteral("latestPrices"))->isChecked()); });
    latest->setCheckable(true);
    latest->setChecked(latest_->enabled());
    QMenu* language = opts->addMenu(tr("&Language"));
    languages_ = new QActionGroup(this);
    for (const char* l : kLanguages) {
        const QString name = QString::fromLatin1(l);
        QAction* a = addAction(language, this, l[0] == 'E' ? "langEnglish" : "langChinese", name, QKeySequence(),
                               [this, name] { setLanguage(name); });
        a->setCheckable(true);
        a->setChecked(name == language_);
        languages_->addAction(a);
    }

    QMenu* windows = bar->addMenu(tr("&Window"));
    windows->setObjectName(QStringLiteral("windowMenu"));
    QMdiArea* area = emulator_.mainWindow().mdiArea();
    addAction(windows, this, "tile", tr("&Tile"), QKeySequence(), [this] { arrangement_->tile(); });
    addAction(windows, this, "cascade", tr("&Cascade"), QKeySequence(), [this] { arrangement_->cascade(); });
    addAction(windows, this, "nextWindow", tr("&Next chart"), QKeySequence(tr("Ctrl+F6")),
              [area] { area->activateNextSubWindow(); });
    addAction(windows, this, "focusInstruments", tr("&Instruments panel"), QKeySequence(tr("Alt+1")), [this] {
        instruments_->parentWidget()->show();
        instruments_->setFocus(Qt::ShortcutFocusReason);
    });
    windows->addSeparator();
    for (QDockWidget* d : main->findChildren<QDockWidget*>()) windows->addAction(d->toggleViewAction());
    // The open charts follow the panels, listed afresh each time the menu opens.
    connect(windows, &QMenu::aboutToShow, this, [this, windows] {
        arrangement_->listIn(windows, [](QMdiSubWindow* sub) { return sub->windowTitle(); });
    });

    QMenu* help = bar->addMenu(tr("&Help"));
    addAction(help, this, "keysAndMouse", tr("&Keys and mouse"), QKeySequence(QKeySequence::HelpContents), [this] { showKeys(); });
}

QDialog* Terminal::showKeys() {
    if (!keys_) {
        keys_ = new KeysDialog(window()->menuBar(), window());
        keys_->setAttribute(Qt::WA_DeleteOnClose);
    }
    keys_->show();
    keys_->raise();
    keys_->activateWindow();
    return keys_;
}

void Terminal::buildStatusBar() {
    QStatusBar* status = window()->statusBar();
    message_ = new QLabel;
    message_->setObjectName(QStringLiteral("terminalMessage"));
    replayState_ = new QLabel;
    replayState_->setObjectName(QStringLiteral("replayState"));
    priceAdvice_ = new QLabel;
    priceAdvice_->setObjectName(QStringLiteral("priceAdvice"));
    progress_ = new QProgressBar;
    progress_->setObjectName(QStringLiteral("loadProgress"));
    progress_->setMaximumWidth(160);
    progress_->setRange(0, 100);
    progress_->hide();
    status->addPermanentWidget(message_, 1);
    status->addPermanentWidget(progress_);
    status->addPermanentWidget(priceAdvice_);
    status->addPermanentWidget(replayState_);
}

void Terminal::refresh() {
    updateTitles();
    blotter_->refresh();
    journal_->refresh();
    // A replay left running for hours must not fill the memory: the journal keeps its
    // newest entries, and the data notices (which only tests read) are let go.
    Journal& journal = emulator_.host().journal();
    if (journal.entries().size() > kJournalHigh) journal.dropOldest(journal.entries().size() - kJournalLow);
    if (emulator_.data().notices().size() > kJournalHigh) emulator_.data().clearNotices();
    const QStringList titles = emulator_.undo().titles();
    QAction* u = action(QStringLiteral("undo"));
    u->setEnabled(!titles.isEmpty());
    u->setText(titles.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(titles.last()));
    const std::size_t pending = replay_->pending();
    replayState_->setText(tr("Replay: %1, %2 q/s, %3 fed, %4 to go")
                              .arg(replay_->playing() ? tr("playing") : tr("paused"))
                              .arg(replay_->speed())
                              .arg(replay_->fed())
                              .arg(pending));
    action(QStringLiteral("play"))->setEnabled(!replay_->playing() && pending > 0);
    action(QStringLiteral("pause"))->setEnabled(replay_->playing());
    action(QStringLiteral("step"))->setEnabled(pending > 0);
    // The speed may come from a workspace as well as from the menu.
    if (QAction* speed = action(QStringLiteral("speed%1").arg(replay_->speed())))
        if (!speed->isChecked()) speed->setChecked(true);
    const QString tool = QString::fromStdString(emulator_.studies().tool());
    for (QAction* a : studyTools_->actions())
        if (a->data().toString() == tool && !a->isChecked()) a->setChecked(true);
    // The hint of a study tool ends once the study is placed (the chart puts the tool
    // down) or cancelled.
    if (tool.isEmpty() && !studyHint_.isEmpty()) {
        if (message_->text() == studyHint_) message_->clear();
        studyHint_.clear();
    }
    // A new chart window that has just been filled shows its newest figures.
    latest_->check();
    const bool chart = activeChart() != nullptr;
    for (const char* name : {"closeChart", "addInstrument", "print", "printModule", "exportPng", "exportPdf", "properties"})
        action(QString::fromLatin1(name))->setEnabled(chart);
    action(QStringLiteral("stopLoading"))->setEnabled(loading());
    action(QStringLiteral("locatePriceFile"))->setEnabled(!waiting_->missing().empty());
}

void Terminal::showMessage(const QString& text, bool problem) {
    messages_ << text;
    message_->setText(text);
    message_->setStyleSheet(problem ? QStringLiteral("color: #b00000") : QString());
    message_->setToolTip(text);
    emit messageShown(text, problem);
    // A problem is also said in a box, one at a time, when a person is at the terminal: not
    // while the emulator answers dialogs or the terminal ends by itself (--answer, --quit).
    if (problem && !emulator_.dialogs().active() && !options_.quit) problemBoxes_->add(text);
}

bool Terminal::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape &&
        !emulator_.studies().tool().empty()) {
        QWidget* target = qobject_cast<QWidget*>(watched);
        if (target && emulator_.mainWindow().mdiArea()->isAncestorOf(target)) {
            chooseStudy(QString());
            showMessage(tr("Study cancelled."));
        }
    }
    if (watched == window() && event->type() == QEvent::Close && !closing_) {
        closing_ = true;
        replay_->pause();
        if (!workspacePath_.isEmpty()) saveWorkspace();
        // The application ends with its last window (quitOnLastWindowClosed).
    }
    return QObject::eventFilter(watched, event);
}

void Terminal::quit() { window()->close(); }

}  // namespace terminal
}  // namespace host
