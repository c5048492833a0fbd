// What the terminal's menus do: chart windows, price files, undo, price type, language,
// printing and export, and the start-up sequence (the workspace is in TerminalWorkspace.cpp,
// the chart and study dialogs in TerminalSettings.cpp).
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressBar>
#include <QTimer>
#include <algorithm>
#include <cstring>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"
#include "host/data/CsvPriceReader.h"
#include "host/data/Instrument.h"
#include "host/ls/StudyGeometry.h"
#include "host/terminal/AccountsPanel.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/JournalPanel.h"
#include "host/terminal/LatestPrices.h"
#include "host/terminal/PriceFileLoader.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/TerminalPrint.h"
#include "host/terminal/WaitingCharts.h"
#include "host/terminal/WindowArrangement.h"

namespace host {
namespace terminal {

namespace {

const char* const kPriceTypeNames[] = {"Middle", "Bid", "Ask"};
// Built-in example instruments the terminal opens.
const char* const kExamples[] = {"USDCHF", "TTRC"};
// Time the windows get to settle before a screenshot, in milliseconds.
const int kScreenshotDelay = 300;

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

}  // namespace

// ---- chart windows ----

void* Terminal::newChart(data::ChartType type) {
    void* widget = emulator_.charts().create(type);
    if (!widget) {
        showMessage(tr("The module made no %1 chart window.").arg(QString::fromLatin1(data::chartTypeName(type))), true);
        return nullptr;
    }
    latest_->watch(widget);
    if (QMdiSubWindow* sub = emulator_.charts().subWindow(widget)) {
        arrangement_->place(sub);
        emulator_.mainWindow().mdiArea()->setActiveSubWindow(sub);
        // Room for the instrument: the module takes it by drag, by double click in the
        // Instruments panel or by Chart > Add selected instrument.
        sub->widget()->setFocus(Qt::OtherFocusReason);
    }
    refresh();
    return widget;
}

void* Terminal::activeChart() const {
    ChartWindows& charts = emulator_.charts();
    QMdiSubWindow* current = emulator_.mainWindow().mdiArea()->currentSubWindow();
    if (!current) return nullptr;
    for (void* w : charts.widgets())
        if (charts.subWindow(w) == current) return w;
    return nullptr;
}

QString Terminal::chartName(void* widget) const {
    const QString title = emulator_.charts().title(widget);
    return title.isEmpty() ? tr("the chart window") : QStringLiteral("\"%1\"").arg(title);
}

bool Terminal::closeActiveChart() {
    void* widget = activeChart();
    if (!widget) return false;
    const QString name = chartName(widget);
    const bool closed = emulator_.charts().destroy(widget);
    showMessage(closed ? tr("%1 closed").arg(name) : tr("The module kept %1 open.").arg(name), !closed);
    refresh();
    return closed;
}

bool Terminal::addToActiveChart(const QString& instrument) {
    void* widget = activeChart();
    if (instrument.isEmpty()) return false;
    if (!widget) {
        showMessage(tr("Open or pick a chart window first, then add %1 to it.").arg(instrument), true);
        return false;
    }
    const int answer = emulator_.charts().drop(widget, {instrument.toStdString()});
    if (answer != 0) showMessage(tr("The chart window did not take %1 (answer %2).").arg(instrument).arg(answer), true);
    latest_->check();
    refresh();
    return answer == 0;
}

bool Terminal::undo() {
    const QStringList titles = emulator_.undo().titles();
    if (titles.isEmpty()) return false;
    const UndoStack::Undo u = emulator_.undo().undo();
    const bool done = u.sent && u.answer == 0;
    showMessage(done ? tr("Undone: %1").arg(titles.last())
                     : tr("%1 was not undone: the window is busy (answer %2).").arg(titles.last()).arg(u.answer),
                !done);
    refresh();
    return done;
}

// ---- line studies and properties ----

bool Terminal::chooseStudy(const QString& type) {
    if (type.isEmpty()) {
        emulator_.studies().clearTool();
    } else if (!emulator_.studies().chooseTool(type.toStdString())) {
        showMessage(tr("No line study of type %1.").arg(type), true);
        return false;
    } else {
        ls::StudyKind kind = ls::StudyKind::HLine;
        const int points = ls::kindFromName(type.toStdString(), &kind) ? ls::controlPointCount(kind) : 1;
        const QString title = ls::kindFromName(type.toStdString(), &kind) ? ls::studyTitle(kind) : type;
        studyHint_ = points == 1 ? tr("Click the chart to place the %1; Escape cancels.").arg(title)
                     : kind == ls::StudyKind::PolyLine
                         ? tr("Click the chart to place the points of the %1, double click the last; Escape cancels.").arg(title)
                         : tr("Click the chart to place the %1 points of the %2; Escape cancels.").arg(points).arg(title);
        showMessage(studyHint_);
    }
    refresh();
    return true;
}

bool Terminal::showProperties() {
    void* widget = activeChart();
    if (!widget) return false;
    std::string why;
    if (!emulator_.properties().open(widget, &why)) {
        showMessage(tr("The properties of %1 did not open: %2").arg(chartName(widget), QString::fromStdString(why)), true);
        return false;
    }
    return true;
}

// ---- price type and language ----

QString Terminal::setPriceType(int type) {
    priceType_ = std::max(0, std::min(2, type));
    emulator_.host().send(nullptr, MSG_CONVERT_TO_TYPE, priceType_, 0,
                          std::string("price type ") + kPriceTypeNames[priceType_]);
    if (priceTypes_ && priceTypes_->actions().size() == 3) priceTypes_->actions()[priceType_]->setChecked(true);
    return askPriceType();
}

QString Terminal::askPriceType() {
    // Room for the module's entry after those already in the list (none here).
    struct {
        std::int32_t count;
        std::int32_t entries[2][2];
    } list;
    std::memset(&list, 0, sizeof list);
    const int answer = emulator_.host().send(nullptr, MSG_NEED_TO_CONVERT, P(&list), 0, "which price type");
    QString advice;
    if (answer != 0 || list.count != 1)
        advice = tr("no advice from the charts");
    else if (list.entries[0][0] == 0)
        advice = tr("keep %1").arg(QString::fromLatin1(kPriceTypeNames[priceType_]));
    else if (list.entries[0][1] >= 0 && list.entries[0][1] <= 2)
        advice = tr("switch to %1").arg(QString::fromLatin1(kPriceTypeNames[list.entries[0][1]]));
    else
        advice = tr("no change");
    const QString text = tr("Price type %1 (charts: %2)").arg(QString::fromLatin1(kPriceTypeNames[priceType_]), advice);
    priceAdvice_->setText(text);
    return text;
}

void Terminal::setLanguage(const QString& language) {
    if (language == language_) return;
    language_ = language;
    // The module takes its language and fonts at start-up (3004); the workspace keeps the
    // choice for the next start.
    showMessage(tr("%1 takes effect when the terminal starts again%2.")
                    .arg(language, workspacePath_.isEmpty() ? tr(" with a saved workspace") : QString()));
}

// ---- printing and export ----

bool Terminal::printThroughModule() {
    void* widget = activeChart();
    if (!widget) return false;
    const int answer = emulator_.charts().print(widget);
    if (answer != 0) showMessage(tr("%1 was not printed (answer %2).").arg(chartName(widget)).arg(answer), true);
    return answer == 0;
}

bool Terminal::printActive() {
    if (!activeChart()) return false;
    QPrinter printer(QPrinter::HighResolution);
    // The name a printer shows in its queue, and the file's name when printed to a file.
    printer.setDocName(print_->suggestedName(activeChart(), QString()));
    QPrintDialog dialog(&printer, window());
    dialog.setWindowTitle(tr("Print chart"));
    if (dialog.exec() != QDialog::Accepted) return false;
    QString error;
    if (!printActive(printer, &error)) {
        showMessage(error, true);
        return false;
    }
    return true;
}

bool Terminal::printActive(QPrinter& printer, QString* error) {
    void* widget = activeChart();
    if (!widget) {
        if (error) *error = tr("No chart window to print.");
        return false;
    }
    QString why;
    if (!print_->print(widget, printer, &why)) {
        if (error) *error = tr("%1 was not printed: %2").arg(chartName(widget), why);
        return false;
    }
    showMessage(printer.outputFileName().isEmpty() ? tr("%1 printed").arg(chartName(widget))
                                                   : tr("%1 printed to %2").arg(chartName(widget), printer.outputFileName()));
    return true;
}

bool Terminal::exportActive(const QString& path, QString* error) {
    void* widget = activeChart();
    if (!widget) {
        if (error) *error = tr("No chart window to export.");
        return false;
    }
    QString why;
    if (!print_->exportTo(widget, path, &why)) {
        if (error) *error = why;
        return false;
    }
    exportFolder_ = QFileInfo(path).absolutePath();
    showMessage(tr("%1 exported to %2").arg(chartName(widget), path));
    return true;
}

QString Terminal::suggestedExportPath(const QString& suffix) const {
    const QString folder = exportFolder_.isEmpty() ? QDir::homePath() : exportFolder_;
    void* widget = activeChart();
    return QDir(folder).filePath(widget ? print_->suggestedName(widget, suffix) : QStringLiteral("chart") + suffix);
}

// ---- price files ----

bool Terminal::loading() const { return !loaders_.empty(); }

void Terminal::setHoldBack(std::size_t quotes) {
    holdBack_ = quotes;
    if (QAction* a = action(QStringLiteral("holdBack%1").arg(quotes))) a->setChecked(true);
    showMessage(quotes ? tr("The last %L1 quotes of each file opened from now on wait for the replay.").arg(qulonglong(quotes))
                       : tr("Files opened from now on are shown whole."));
}

void Terminal::openPriceFile(const QString& path) {
    startLoader(path, QString())->start();
    showMessage(tr("Reading %1...").arg(QFileInfo(path).fileName()));
    refresh();
}

PriceFileLoader* Terminal::startLoader(const QString& path, const QString& name) {
    PriceFileLoader* loader = new PriceFileLoader(path, name, this);
    loaders_.push_back(loader);
    connect(loader, &PriceFileLoader::progress, progress_, &QProgressBar::setValue);
    connect(loader, &QThread::finished, this, [this, loader] { loaderDone(loader); });
    progress_->setValue(0);
    progress_->show();
    return loader;
}

void Terminal::afterLoading() {
    if (!loaders_.empty()) return;
    if (!ready_) finishStart();
    if (pendingOpen_.waiting) finishOpenWorkspace();
}

void Terminal::loaderDone(PriceFileLoader* loader) {
    loaders_.erase(std::remove(loaders_.begin(), loaders_.end(), loader), loaders_.end());
    std::unique_ptr<data::Instrument> instrument = loader->take();
    const QString path = loader->path();
    QString name, error = loader->error();
    // An instrument of the workspace being opened whose file cannot be read is kept, and
    // its windows wait for it (said once they are open).
    Workspace::Instrument saved;
    if (!instrument && !loader->name().isEmpty() && workspaceInstrument(loader->name(), &saved)) {
        waiting_->addMissing(saved, error);
        error.clear();
    }
    loader->deleteLater();
    if (instrument) {
        name = QString::fromStdString(instrument->name());
        // The part of the file the charts start with; the rest waits for the replay.
        DataCore::LoadOptions split;
        const auto live = std::find_if(liveCounts_.begin(), liveCounts_.end(),
                                       [&name](const std::pair<QString, long>& l) { return l.first == name; });
        const WaitingCharts::Missing* missing = waiting_->missingNamed(name);
        const std::size_t quotes = instrument->quotes().size();
        const QString skipped = QString::fromStdString(
            data::CsvPriceReader::skippedNote(instrument->skippedRows(), instrument->skippedSample()));
        if (live != liveCounts_.end())
            split.live = live->second;
        else if (missing && missing->instrument.live >= 0)
            split.live = missing->instrument.live;
        else
            split.holdBack = std::min(holdBack_, quotes ? quotes - 1 : 0);
        std::size_t repeated = 0;
        const auto& q = instrument->quotes();
        for (std::size_t i = 1; i < q.size(); ++i)
            if (q[i].time == q[i - 1].time) ++repeated;
        std::string why;
        if (!emulator_.data().addInstrument(std::move(instrument), split, &why)) {
            error = QString::fromStdString(why);
            name.clear();
        } else {
            showMessage(repeated ? tr("%1: %2 quotes, %3 of them at the same time as the one before (kept in file order)")
                                       .arg(name)
                                       .arg(quotes)
                                       .arg(repeated)
                                 : tr("%1: %2 quotes").arg(name).arg(quotes));
            // Rows that could not be read were left out: said once, in one box.
            if (!skipped.isEmpty())
                showMessage(tr("%1: %2; %3 has the other %4 quotes.").arg(QFileInfo(path).fileName(), skipped, name).arg(quotes),
                            true);
            waiting_->removeMissing(name);
        }
    }
    if (!error.isEmpty()) showMessage(tr("%1 was not opened: %2").arg(QFileInfo(path).fileName(), error), true);
    if (loaders_.empty()) progress_->hide();
    instruments_->refresh();
    accounts_->refresh();
    // Windows that waited for this instrument open now (once the workspace's are open).
    if (!name.isEmpty() && ready_ && !pendingOpen_.waiting) reattach();
    refresh();
    emit priceFileDone(path, name, error);
    afterLoading();
}

// ---- start-up ----

void Terminal::start() {
    QStringList problems;
    if (!options_.workspace.isEmpty()) {
        if (!QFileInfo::exists(options_.workspace)) {
            workspacePath_ = options_.workspace;  // made on quit
        } else {
            QString error;
            if (Workspace::read(emulator_.workData(), options_.workspace,
                                &startContents_, &error, &problems)) {
                haveStartWorkspace_ = true;
                workspacePath_ = options_.workspace;
            } else {
                // Not saved over on quit: what is in the file stays for the person to mend.
                showMessage(tr("The workspace could not be opened: %1. It will not be saved over; "
                               "use File > Save workspace as.").arg(error), true);
            }
        }
    }
    for (const QString& p : problems) showMessage(tr("Workspace: left out %1").arg(p), true);

    // What to read: the examples, the files named, the instruments of the workspace.
    std::vector<std::pair<QString, QString> > files;  // name (empty: from the file), path
    if (options_.examples)
        for (const char* name : kExamples)
            files.push_back({QString::fromLatin1(name), QString::fromStdString(DataCore::builtInPath(name))});
    for (const QString& f : options_.files) files.push_back({QString(), f});
    if (haveStartWorkspace_) {
        for (const Workspace::Instrument& i : startContents_.instruments) {
            if (i.live >= 0) liveCounts_.push_back({i.name, i.live});
            const bool listed = std::any_of(files.begin(), files.end(), [&i](const std::pair<QString, QString>& f) {
                return f.first == i.name || (f.first.isEmpty() && QFileInfo(f.second) == QFileInfo(i.source));
            });
            if (!listed) files.push_back({i.name, i.source});
        }
        if (startContents_.replaySpeed > 0) replay_->setSpeed(startContents_.replaySpeed);
        priceType_ = startContents_.priceType;
        if (priceTypes_) priceTypes_->actions()[priceType_]->setChecked(true);
        restoreMainWindow(startContents_);
    }
    for (const auto& f : files) startLoader(f.second, f.first);
    if (loaders_.empty()) {
        finishStart();
        return;
    }
    const std::vector<PriceFileLoader*> all = loaders_;
    for (PriceFileLoader* l : all) l->start();
}

void Terminal::finishStart() {
    if (haveStartWorkspace_) openWindows(startContents_, QStringList());
    if (emulator_.charts().widgets().empty() && !options_.windows.empty()) {
        for (const auto& w : options_.windows)
            if (newChart(w.first)) addToActiveChart(w.second);
        arrangement_->tile();
    }
    // Saved live counts are for the workspace's own instruments; files opened later start
    // with the usual held-back part.
    if (!pendingOpen_.waiting) liveCounts_.clear();
    if (options_.replay > 0) replay_->feed(options_.replay);
    if (!options_.journalFilter.isEmpty()) {
        if (!journal_->setFilter(options_.journalFilter))
            showMessage(tr("\"%1\" is no list of message numbers.").arg(options_.journalFilter), true);
        if (QDockWidget* d = window()->findChild<QDockWidget*>(QStringLiteral("journalDock"))) d->raise();
    }
    ready_ = true;
    refresh();
    emit ready();
    if (!options_.screenshot.isEmpty()) QTimer::singleShot(kScreenshotDelay, this, [this] { takeScreenshot(); });
}

void Terminal::takeScreenshot() {
    QApplication::processEvents();
    const QImage image = window()->grab().toImage();
    if (image.isNull() || !image.save(options_.screenshot, "PNG"))
        showMessage(tr("The screenshot could not be written to %1.").arg(options_.screenshot), true);
    if (options_.quit) quit();
}

}  // namespace terminal
}  // namespace host
