// The emulated terminal as a person uses it, on a real X server (Xvfb): chart windows made
// from the menus and the keyboard, instruments dragged from the Instruments panel, a replay
// that grows the charts, an area closed and undone, a deal from a chart's context menu in the
// blotter, and the workspace saved, closed and opened again with every window as it was.
// Then what a careless person feeds it: broken price files and workspaces.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QTableWidget>
#include <QToolBar>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMimeData>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <map>
#include <memory>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"
#include "host/data/ChartObject.h"
#include "host/data/Instrument.h"
#include "host/ls/StudyGeometry.h"
#include "host/terminal/AccountsPanel.h"
#include "host/terminal/BlotterPanel.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/JournalPanel.h"
#include "host/terminal/KeysDialog.h"
#include "host/terminal/LatestPrices.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/Workspace.h"

#include "TerminalSession.h"

namespace {

TEST_F(TerminalSession, ChartsGrowUndoTradeAndComeBackFromTheWorkspace) {
    Open(workspace);
    ASSERT_EQ(terminal->instruments()->count(), 1);

    // One window of each type: two from the Chart menu, the third with its shortcut.
    Trigger("newPf");
    Trigger("newRenko");
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : terminal->window(), Qt::Key_3, Qt::ControlModifier);
    ASSERT_EQ(Charts().widgets().size(), 3u);
    void* kagi = terminal->activeChart();
    ASSERT_NE(kagi, nullptr);
    ChartType type;
    ASSERT_TRUE(Charts().typeOf(kagi, &type));
    EXPECT_EQ(type, ChartType::Kagi);
    Trigger("tile");
    QTest::qWait(50);

    for (void* w : Charts().widgets()) {
        ASSERT_TRUE(DragInstrument(w, QStringLiteral("USDCHF")));
        EXPECT_TRUE(Charts().title(w).contains(QLatin1String("USDCHF"))) << Charts().title(w).toStdString();
    }

    // 1,000 quotes replayed at 5,000 a second: every chart type computes more figures, and
    // the module hears of the changes (3009 for each quote that changed a chart's figures).
    // Each window is at its newest position (End) and keeps it in view, so the new figures
    // show in the windows themselves, not only in the data core.
    for (void* w : Charts().widgets()) QTest::keyClick(Charts().chartWidget(w), Qt::Key_End);
    QTest::qWait(50);
    const auto shownBefore = Grabs();
    const std::map<ChartType, int> before = Figures();
    ASSERT_EQ(before.size(), 3u);
    emulator->data().clearNotices();
    terminal->replay().setSpeed(5000);
    Trigger("play");
    ASSERT_TRUE(QTest::qWaitFor([this] { return terminal->replay().fed() >= 1000; }, 20000));
    Trigger("pause");
    EXPECT_FALSE(terminal->replay().playing());
    const std::map<ChartType, int> after = Figures();
    for (const auto& b : before) EXPECT_GT(after.at(b.first), b.second) << int(b.first);
    QTest::qWait(50);
    const auto shownAfter = Grabs();
    ASSERT_EQ(shownAfter.size(), shownBefore.size());
    for (std::size_t i = 0; i < shownBefore.size(); ++i)
        EXPECT_FALSE(shownAfter[i].second == shownBefore[i].second) << "window " << i << " did not change";
    EXPECT_GE(emulator->data().notices().size(), 3u);
    EXPECT_LE(emulator->data().notices().size(), 3 * terminal->replay().fed());

    // The Point and Figure window's area closed with its button, then Edit > Undo, whose
    // entry names the step.
    void* pf = Charts().widgets()[0];
    std::string error;
    ASSERT_TRUE(Charts().closeArea(pf, 0, &error)) << error;
    EXPECT_TRUE(Charts().closeButtons(pf).empty());
    terminal->window()->activateWindow();
    QTest::qWait(250);
    QAction* undo = terminal->action(QStringLiteral("undo"));
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text().remove(QLatin1Char('&')), QStringLiteral("Undo ") + emulator->moduleText("G0135"));
    ASSERT_TRUE(terminal->undo());
    EXPECT_EQ(Charts().closeButtons(pf).size(), 1u);

    // A deal from the Renko window's context menu opens the ticket, modal; bought there, it
    // lands in the blotter with the account's name.
    void* renko = Charts().widgets()[1];
    const QPoint middle = Charts().chartWidget(renko)->rect().center();
    ASSERT_TRUE(Charts().chooseFromContextMenu(
        renko, middle, {emulator->moduleText("PF0019"), emulator->moduleText("Tr0038Deal")}, &error))
        << error;
    QDialog* ticket = nullptr;
    ASSERT_TRUE(QTest::qWaitFor([&ticket] { return (ticket = qobject_cast<QDialog*>(QApplication::activeModalWidget())) != nullptr; }, 5000))
        << terminal->messages().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(ticket->objectName(), QStringLiteral("tradeTicket"));
    EXPECT_TRUE(terminal->blotter()->rowCount() == 0);
    ticket->findChild<QAbstractButton*>(QStringLiteral("buy"))->click();
    ticket->findChild<QAbstractButton*>(QStringLiteral("book"))->click();
    QTest::qWait(300);
    ASSERT_EQ(terminal->blotter()->rowCount(), 1);
    using B = host::terminal::BlotterPanel;
    EXPECT_EQ(terminal->blotter()->item(0, B::kInstrument)->text(), QStringLiteral("USDCHF"));
    EXPECT_EQ(terminal->blotter()->item(0, B::kKind)->text(), QStringLiteral("deal"));
    EXPECT_EQ(terminal->blotter()->item(0, B::kSide)->text(), QStringLiteral("buy"));
    EXPECT_EQ(terminal->blotter()->item(0, B::kAccount)->text(), QStringLiteral("Demo account"));

    // The main window made smaller and moved, and a panel closed: all come back with the
    // workspace. (Qt keeps a restored window's title bar on the screen: a place below its
    // top edge comes back as it was.)
    terminal->window()->resize(1200, 760);
    terminal->window()->move(40, 60);
    terminal->window()->findChild<QDockWidget*>(QStringLiteral("accountsDock"))->close();
    QTest::qWait(100);
    const QSize mainSize = terminal->window()->size();
    const QPoint mainPlace = terminal->window()->pos();

    // Saved, closed, opened again: the same windows, stacked the same way, to the pixel.
    ASSERT_TRUE(terminal->saveWorkspace());
    const auto saved = Grabs();
    ASSERT_EQ(saved.size(), 3u);
    terminal->quit();
    Close();
    ASSERT_TRUE(QFile::exists(workspace));

    Open(workspace);
    EXPECT_EQ(terminal->blotter()->rowCount(), 1);  // the blotter is the workspace's
    EXPECT_EQ(terminal->window()->size(), mainSize);
    EXPECT_EQ(terminal->window()->pos(), mainPlace);
    EXPECT_FALSE(terminal->window()->findChild<QDockWidget*>(QStringLiteral("accountsDock"))->isVisible());
    EXPECT_TRUE(terminal->window()->findChild<QDockWidget*>(QStringLiteral("instrumentsDock"))->isVisible());
    const auto restored = Grabs();
    ASSERT_EQ(restored.size(), saved.size());
    for (std::size_t i = 0; i < saved.size(); ++i) {
        EXPECT_EQ(restored[i].first, saved[i].first) << i;
        ASSERT_EQ(restored[i].second.size(), saved[i].second.size()) << i;
        EXPECT_TRUE(restored[i].second == saved[i].second) << "window " << i << " differs";
    }
}

// The menus and panels that reach the module beyond the windows themselves: dealing events,
// the price type, printing and export, the journal's filter and the language.
TEST_F(TerminalSession, PanelsAndMenusReachTheModule) {
    Open(workspace);
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    QWidget* container = Charts().container(pf);
    const QImage trading = container->grab().toImage();

    // A day off marks the window's caption; trading again gives the same picture back.
    const std::size_t events = emulator->host().journal().find(MSG_EVENT).size();
    ASSERT_TRUE(terminal->accounts()->setDayOff(QStringLiteral("USDCHF"), true));
    QTest::qWait(100);
    EXPECT_FALSE(container->grab().toImage() == trading);
    ASSERT_TRUE(terminal->accounts()->setDayOff(QStringLiteral("USDCHF"), false));
    QTest::qWait(100);
    EXPECT_TRUE(container->grab().toImage() == trading);
    // Accounts opened and closed are told to the module.
    EXPECT_GT(terminal->accounts()->addAccount(), 0);
    EXPECT_TRUE(terminal->accounts()->removeSelected());
    EXPECT_EQ(emulator->host().journal().find(MSG_EVENT).size(), events + 4);

    // Bid for every chart; the charts then advise the middle price, in the status bar.
    const QString advice = terminal->setPriceType(1);
    EXPECT_EQ(advice, QStringLiteral("Price type Bid (charts: switch to Middle)"));
    EXPECT_EQ(terminal->window()->findChild<QLabel*>(QStringLiteral("priceAdvice"))->text(), advice);

    // Export renders the window's page (TerminalPrintAndWindows has the rest); printing
    // through the module goes through its print dialog, which the emulator answers with a
    // PDF file here.
    const QString png = dir.filePath(QStringLiteral("chart.png")), pdf = dir.filePath(QStringLiteral("chart.pdf"));
    ASSERT_TRUE(terminal->exportActive(png));
    EXPECT_EQ(QImage(png).width(), container->width());
    ASSERT_TRUE(terminal->exportActive(pdf));
    QFile pdfFile(pdf);
    ASSERT_TRUE(pdfFile.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdfFile.read(5) == "%PDF-");
    emulator->dialogs().clearAnswers();
    Trigger("printModule");
    ASSERT_EQ(emulator->dialogs().answers().size(), 1u);
    EXPECT_EQ(emulator->dialogs().answers()[0].answer, QStringLiteral("accepted"));
    EXPECT_TRUE(QFile::exists(emulator->dialogs().answers()[0].file));

    // The journal shows only the numbers asked for; nonsense leaves the filter as it was.
    terminal->journal()->refresh();
    ASSERT_TRUE(terminal->journal()->setFilter(QStringLiteral("3545 - 3546, 5012")));
    const QStringList lines = terminal->journal()->lines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[0].contains(QLatin1String(" 3545 ")) && lines[2].contains(QLatin1String(" 5012 ")));
    EXPECT_FALSE(terminal->journal()->setFilter(QStringLiteral("31x")));
    EXPECT_EQ(terminal->journal()->lines(), lines);

    // Tools > Horizontal line, then a click on the chart places the study; the chart puts the
    // tool down and the menu shows the pointer again.
    Trigger("study:HLine");
    EXPECT_EQ(emulator->studies().tool(), "HLine");
    QWidget* chart = Charts().chartWidget(pf);
    const QPoint at = chart->rect().center();
    QTest::mouseMove(chart, at - QPoint(20, 0));
    QTest::mouseMove(chart, at);
    QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(emulator->studies().ids().size(), 1u);
    QTest::qWait(250);
    EXPECT_TRUE(emulator->studies().tool().empty());
    EXPECT_TRUE(terminal->action(QStringLiteral("toolPointer"))->isChecked());

    // Chart > Properties opens the window's page in the terminal's property dialog.
    Trigger("properties");
    EXPECT_NE(emulator->properties().dialogFor(pf), nullptr);
    emulator->properties().closeAll();

    // With the keyboard only: a new Renko window (Ctrl+2), Alt+1 to the Instruments panel,
    // Return on its line adds the instrument to the window in front.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_2, Qt::ControlModifier);
    void* renko = terminal->activeChart();
    ASSERT_NE(renko, pf);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_1, Qt::AltModifier);
    ASSERT_EQ(QApplication::focusWidget(), terminal->instruments());
    QTest::keyClick(terminal->instruments(), Qt::Key_Return);
    EXPECT_TRUE(Charts().title(renko).contains(QLatin1String("USDCHF"))) << Charts().title(renko).toStdString();

    // The language is the workspace's, for the next start.
    terminal->setLanguage(QStringLiteral("Chinese (Simplified)"));
    ASSERT_TRUE(terminal->saveWorkspace());
    EXPECT_EQ(host::terminal::Workspace::languageOf(workspace), QStringLiteral("Chinese (Simplified)"));
}

// Finding one's way: every shortcut of the terminal is in the keys table and none is taken
// twice (Qt runs neither of two actions that share one); the study tools have shortcuts and
// a tool bar; a tool's hint stays until the study is placed or cancelled with Escape.
TEST_F(TerminalSession, KeysTableShortcutsAndStudyHints) {
    Open(workspace);
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));

    std::map<QString, QString> owner;
    const std::vector<host::terminal::KeysDialog::Row> rows = host::terminal::KeysDialog::rows(terminal->window()->menuBar());
    std::vector<QAction*> actions;
    std::function<void(const QList<QAction*>&)> collect = [&](const QList<QAction*>& list) {
        for (QAction* a : list) {
            actions.push_back(a);
            if (a->menu()) collect(a->menu()->actions());
        }
    };
    collect(terminal->window()->menuBar()->actions());
    for (QAction* a : actions) {
        for (const QKeySequence& k : a->shortcuts()) {
            const QString key = k.toString(QKeySequence::NativeText);
            EXPECT_TRUE(owner.insert({key, a->text()}).second) << key.toStdString() << ": " << a->text().toStdString()
                                                               << " and " << owner[key].toStdString();
            EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), [&key](const host::terminal::KeysDialog::Row& r) {
                return r.keys.split(QStringLiteral(", ")).contains(key);
            })) << key.toStdString() << " is not in the keys table";
        }
    }
    // One shortcut per study tool, all on the Studies tool bar.
    QToolBar* studyBar = terminal->window()->findChild<QToolBar*>(QStringLiteral("studyToolBar"));
    ASSERT_NE(studyBar, nullptr);
    for (const std::string& name : host::ls::studyNames()) {
        QAction* tool = terminal->action(QStringLiteral("study:") + QString::fromStdString(name));
        ASSERT_NE(tool, nullptr) << name;
        EXPECT_FALSE(tool->shortcut().isEmpty()) << name;
        EXPECT_TRUE(studyBar->actions().contains(tool)) << name;
    }
    QDialog* keys = terminal->showKeys();
    ASSERT_NE(keys, nullptr);
    EXPECT_EQ(keys->findChild<QTableWidget*>(QStringLiteral("keysTable"))->rowCount(), int(rows.size()));
    keys->close();

    // The trend line's tool by its shortcut: the hint says what to do until the second click
    // places the line, then goes.
    QLabel* message = terminal->window()->findChild<QLabel*>(QStringLiteral("terminalMessage"));
    QWidget* chart = Charts().chartWidget(pf);
    terminal->window()->activateWindow();
    chart->setFocus();
    QTest::keyClick(chart, Qt::Key_T, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(emulator->studies().tool(), "Line");
    EXPECT_TRUE(message->text().contains(QLatin1String("2 points of the Trend line"))) << message->text().toStdString();
    const QPoint at = chart->rect().center();
    for (const QPoint& p : {at - QPoint(60, 20), at + QPoint(60, 20)}) {
        QTest::mouseMove(chart, p);
        QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, p);
        EXPECT_FALSE(message->text().isEmpty());  // the first click leaves the hint up
        QTest::qWait(50);
    }
    ASSERT_TRUE(QTest::qWaitFor([this] { return emulator->studies().tool().empty(); }, 3000));
    QTest::qWait(300);
    EXPECT_EQ(emulator->studies().ids().size(), 1u);
    EXPECT_TRUE(message->text().isEmpty()) << message->text().toStdString();

    // Chosen from the tool bar, cancelled with Escape on the chart: the tool and the hint go.
    studyBar->widgetForAction(terminal->action(QStringLiteral("study:HLine")))->setFocus();
    QTest::mouseClick(studyBar->widgetForAction(terminal->action(QStringLiteral("study:HLine"))), Qt::LeftButton);
    EXPECT_EQ(emulator->studies().tool(), "HLine");
    EXPECT_TRUE(message->text().contains(QLatin1String("Horizontal line")));
    QTest::keyClick(chart, Qt::Key_Escape);
    EXPECT_TRUE(emulator->studies().tool().empty());
    EXPECT_EQ(message->text(), QStringLiteral("Study cancelled."));
    EXPECT_TRUE(terminal->action(QStringLiteral("toolPointer"))->isChecked() ||
                QTest::qWaitFor([this] { return terminal->action(QStringLiteral("toolPointer"))->isChecked(); }, 1000));
    EXPECT_EQ(emulator->studies().ids().size(), 1u);

    // The window's own shortcuts do not take the terminal's: Ctrl+W on the chart closes it.
    QTest::keyClick(chart, Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return Charts().widgets().empty(); }, 2000));
}

// File > Open workspace while the terminal runs: an instrument it lacks is read in the
// background with the progress shown, and every instrument starts at the quotes the workspace
// saved, so the windows look exactly as when the terminal starts with that workspace.
TEST_F(TerminalSession, OpenWorkspaceReadsInTheBackgroundAndKeepsTheSavedQuotes) {
    const QString demo = dir.filePath(QStringLiteral("demo.xml")), again = dir.filePath(QStringLiteral("again.xml"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(PF_EXAMPLES_DIR "/../docs/terminal/demo-workspace.xml"), demo));
    ASSERT_TRUE(QFile::copy(demo, again));

    // Started from the workspace: USD/CHF from its file and TTRC, which the workspace names.
    Open(again);
    const auto atStart = Grabs();
    ASSERT_EQ(atStart.size(), 3u);
    terminal->quit();
    Close();

    // Started without it (USD/CHF with its last 1,500 quotes held back, more than the
    // workspace's), then opened from the File menu.
    Open(workspace);
    const host::data::Instrument* usdchf = emulator->data().loaded("USDCHF");
    ASSERT_NE(usdchf, nullptr);
    EXPECT_NE(usdchf->quotes().size(), 60496u);
    EXPECT_EQ(emulator->data().loaded("TTRC"), nullptr);
    QSignalSpy opened(terminal.get(), &Terminal::workspaceOpened);
    ASSERT_TRUE(terminal->openWorkspace(demo));
    EXPECT_TRUE(terminal->openingWorkspace());
    EXPECT_TRUE(terminal->loading());
    EXPECT_TRUE(terminal->window()->findChild<QProgressBar*>(QStringLiteral("loadProgress"))->isVisible());
    ASSERT_TRUE(opened.wait(20000));
    EXPECT_FALSE(terminal->openingWorkspace());
    EXPECT_EQ(terminal->workspacePath(), demo);
    ASSERT_NE(emulator->data().loaded("TTRC"), nullptr);
    EXPECT_EQ(emulator->data().loaded("TTRC")->quotes().size(), 3550u);
    EXPECT_EQ(emulator->data().loaded("USDCHF")->quotes().size(), 60496u);
    // The quotes after the saved ones wait for the replay again.
    EXPECT_EQ(terminal->replay().pending(), (62496u - 60496u) + (5550u - 3550u));
    QTest::qWait(100);
    const auto opened1 = Grabs();
    ASSERT_EQ(opened1.size(), atStart.size());
    for (std::size_t i = 0; i < atStart.size(); ++i) {
        EXPECT_EQ(opened1[i].first, atStart[i].first) << i;
        EXPECT_TRUE(opened1[i].second == atStart[i].second) << "window " << i << " differs";
    }

    // A workspace whose main window and panels are nonsense: the window stays as it is.
    const QString odd = dir.filePath(QStringLiteral("odd.xml"));
    {
        QFile f(odd);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("<Workspace Version=\"1\" MainGeometry=\"AAAA\" Docks=\"bm9uc2Vuc2U=\"/>");
    }
    const QSize size = terminal->window()->size();
    ASSERT_TRUE(terminal->openWorkspace(odd));
    ASSERT_TRUE(QTest::qWaitFor([this] { return !terminal->openingWorkspace(); }, 5000));
    EXPECT_EQ(terminal->window()->size(), size);
    EXPECT_TRUE(Charts().widgets().empty());
    EXPECT_TRUE(terminal->messages().filter(QStringLiteral("not readable")).size() == 2) << terminal->messages().join('\n').toStdString();
}

// Files a person may open by mistake: each is refused with a message that says why, and the
// windows and instruments already open stay as they were.
TEST_F(TerminalSession, BrokenPriceFilesAndWorkspacesAreRefusedAndChangeNothing) {
    Open(workspace);
    void* pf = terminal->newChart(ChartType::PointAndFigure);
    ASSERT_TRUE(DragInstrument(pf, QStringLiteral("USDCHF")));
    const QImage picture = Charts().container(pf)->grab().toImage();

    const auto write = [this](const char* name, const QByteArray& text) {
        QFile f(dir.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
        return f.fileName();
    };
    const struct {
        const char* file;
        QByteArray text;
        const char* says;
    } bad[] = {
        {"empty.csv", "", "empty file"},
        {"noheader.csv", "828316800,1.1930\n828318600,1.1941\n", "header"},
        {"text.csv", "time,close\n828316800,N/A\n828318600,abc\n", "no readable row: 2 rows skipped (line 2: bad close, line 3: bad close)"},
    };
    for (const auto& b : bad) {
        QSignalSpy done(terminal.get(), &Terminal::priceFileDone);
        terminal->openPriceFile(write(b.file, b.text));
        ASSERT_TRUE(done.wait(5000)) << b.file;
        EXPECT_TRUE(done.at(0).at(1).toString().isEmpty()) << b.file;
        EXPECT_TRUE(terminal->messages().last().contains(QLatin1String(b.says)))
            << b.file << ": " << terminal->messages().last().toStdString();
    }
    // A row that cannot be read is left out, and said.
    {
        QSignalSpy done(terminal.get(), &Terminal::priceFileDone);
        terminal->openPriceFile(write("backwards.csv", "time,close\n828318600,1.1930\n828316800,1.1941\n828320400,1.1950\n"));
        ASSERT_TRUE(done.wait(5000));
        EXPECT_EQ(done.at(0).at(1).toString(), QStringLiteral("BACKWARDS"));
        EXPECT_TRUE(terminal->messages().last().contains(QLatin1String("1 row skipped (line 3: time goes backwards)")))
            << terminal->messages().last().toStdString();
    }
    // Repeated times are taken, in file order, and said.
    {
        QSignalSpy done(terminal.get(), &Terminal::priceFileDone);
        terminal->openPriceFile(write("dup.csv", "time,close\n828316800,1.19\n828316800,1.20\n828318600,1.21\n"));
        ASSERT_TRUE(done.wait(5000));
        EXPECT_EQ(done.at(0).at(1).toString(), QStringLiteral("DUP"));
        EXPECT_TRUE(terminal->messages().last().contains(QLatin1String("1 of them at the same time"))) << terminal->messages().last().toStdString();
    }
    // A million quotes: read in the background while the window keeps answering, with the
    // progress shown.
    {
        QByteArray big("time,close\n");
        big.reserve(20 * 1000000);
        for (int i = 0; i < 1000000; ++i) big += QByteArray::number(828316800 + 60 * i) + ",1." + QByteArray::number(1000 + i % 997) + '\n';
        const QString path = write("million.csv", big);
        big.clear();
        QSignalSpy done(terminal.get(), &Terminal::priceFileDone);
        QSignalSpy progress(terminal->window()->findChild<QProgressBar*>(QStringLiteral("loadProgress")),
                            &QProgressBar::valueChanged);
        int ticks = 0;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
        ticker.start(10);
        terminal->openPriceFile(path);
        EXPECT_TRUE(terminal->loading());
        ASSERT_TRUE(done.wait(60000));
        EXPECT_EQ(done.at(0).at(1).toString(), QStringLiteral("MILLION"));
        EXPECT_GT(progress.count(), 1);
        EXPECT_GT(ticks, 2) << "the event loop stood still while the file was read";
        EXPECT_FALSE(terminal->loading());
    }

    // Workspaces that are cut short or not XML at all.
    const QString truncated = write("cut.xml", "<?xml version=\"1.0\"?>\n<Workspace Version=\"1\">\n  <Window Type=\"pf\"");
    const QString notXml = write("notxml.xml", "time,close\n1,2\n");
    const QString foreign = write("foreign.xml", "<ChartLayout Type=\"pf\"/>\n");
    for (const QString& path : {truncated, notXml, foreign}) {
        EXPECT_FALSE(terminal->openWorkspace(path)) << path.toStdString();
        EXPECT_TRUE(terminal->messages().last().contains(QLatin1String("Nothing was changed"))) << terminal->messages().last().toStdString();
    }
    ASSERT_EQ(Charts().widgets().size(), 1u);
    EXPECT_TRUE(Charts().container(pf)->grab().toImage() == picture);
    EXPECT_EQ(terminal->workspacePath(), workspace);

    // Started from a broken workspace, the terminal opens empty and leaves the file alone.
    terminal->quit();
    Close();
    Open(truncated);
    EXPECT_TRUE(Charts().widgets().empty());
    EXPECT_TRUE(terminal->workspacePath().isEmpty());
    terminal->quit();
    QFile f(truncated);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_TRUE(f.readAll().endsWith("<Window Type=\"pf\""));
}

}  // namespace
