// `pfhost terminal` as its own program on the X server, driven as a person drives it: real
// key presses and mouse clicks from xdotool (XTEST), windows found by their titles, results
// read from what the program says (--verbose) and from the workspace it saves on quit.
// Opening a broker's CSV file, trading with the ticket (Book and Cancel), the blotter after
// a restart, the option that shows new charts at their latest prices, and the keys table.
// With PF_TERMINAL_PICTURES set to a folder, the ticket and the keys table are saved there
// as pictures (the README's).
#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>

#include "Xdo.h"

namespace {

class TerminalByHand : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb")) << "run under xvfb-run";
        if (!xdo.Available()) GTEST_SKIP() << "xdotool is not installed (scripts/setup.sh installs it)";
        pfhost = QFileInfo(QStringLiteral(PF_MODULE_PATH)).dir().filePath(QStringLiteral("pfhost"));
        if (!QFileInfo::exists(pfhost)) GTEST_SKIP() << "pfhost is not built";
        ASSERT_TRUE(dir.isValid());
        workspace = dir.filePath(QStringLiteral("workspace.xml"));
        broker = dir.filePath(QStringLiteral("eurusd-daily.csv"));
        WriteBrokerFile(broker);
    }
    void TearDown() override {
        if (program.state() != QProcess::NotRunning) {
            program.kill();
            program.waitForFinished();
        }
    }

    // A broker's daily export: semicolons, decimal commas, ISO dates, Windows line ends;
    // 1,860 days made from the TTRC example's quotes.
    static void WriteBrokerFile(const QString& path) {
        QFile in(QStringLiteral(PF_EXAMPLES_DIR "/ttrc-daily.csv")), out(path);
        ASSERT_TRUE(in.open(QIODevice::ReadOnly) && out.open(QIODevice::WriteOnly));
        out.write("Date;Open;High;Low;Close;Volume\r\n");
        in.readLine();
        for (int n = 0; n < 1860; ++n) {
            const QList<QByteArray> f = in.readLine().trimmed().split(',');
            ASSERT_EQ(f.size(), 6);
            QByteArray line = QDateTime::fromSecsSinceEpoch(f[0].toLongLong(), Qt::UTC).toString(QStringLiteral("yyyy-MM-dd")).toLatin1();
            for (int i = 1; i < 5; ++i) line += ';' + QByteArray(f[i]).replace('.', ',');
            out.write(line + ';' + f[5] + "\r\n");
        }
    }

    // Starts the program with one trading account, without the example instruments unless
    // asked, in a window of 1400x900 at the screen's corner (there is no window manager).
    void Start(const QStringList& args = QStringList(), bool examples = false) {
        output.clear();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("config")));
        program.setProcessEnvironment(env);
        program.setProcessChannelMode(QProcess::MergedChannels);
        QStringList all{QStringLiteral("terminal"), QStringLiteral("--verbose"), QStringLiteral("--accounts"), QStringLiteral("1"),
                        QStringLiteral("--size"), QStringLiteral("1400x900"), QStringLiteral("--workspace"), workspace};
        if (!examples) all << QStringLiteral("--no-examples");
        program.start(pfhost, all + args);
        ASSERT_TRUE(program.waitForStarted(10000));
        main = WaitForWindow(QStringLiteral("^pfhost terminal$"));
        ASSERT_FALSE(main.isEmpty()) << Said().toStdString();
        QTest::qWait(500);  // the first paint
        FocusMain();
    }
    // The keyboard back to the main window once a dialog has gone, as a window manager would
    // give it back (Xvfb runs none).
    void FocusMain() { Focus(main); }
    void Focus(const QString& window) {
        X({QStringLiteral("windowfocus"), window});
        QTest::qWait(400);  // Qt makes the window active once the focus has come
    }
    // Ends the program as a person does (Ctrl+Q); true when it quit by itself.
    bool Quit() {
        Key(QStringLiteral("ctrl+q"));
        // (It may have ended while the key was pressed: waitForFinished is false then.)
        const bool ended = program.state() == QProcess::NotRunning || program.waitForFinished(20000);
        output += QString::fromLocal8Bit(program.readAll());
        if (!ended) output += QStringLiteral("(still running)");
        else output += QStringLiteral("(exit status %1, code %2)").arg(int(program.exitStatus())).arg(program.exitCode());
        return ended && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
    }

    QString X(const QStringList& args) { return xdo.Run(args); }
    void Key(const QString& keys) {
        X(QStringList{QStringLiteral("key"), QStringLiteral("--clearmodifiers"), QStringLiteral("--delay"), QStringLiteral("60")} +
          keys.split(QLatin1Char(' ')));
        QTest::qWait(150);
    }
    void Type(const QString& text) {
        X({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), text});
        QTest::qWait(100);
    }
    void Click(const QPoint& at, int button) {
        X({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
        QTest::qWait(100);
        X({QStringLiteral("click"), QString::number(button)});
        QTest::qWait(300);
    }
    // The visible window whose title matches; empty when none comes within `ms`.
    QString WaitForWindow(const QString& title, int ms = 15000) { return xdo.WaitWindow(title, ms); }
    bool WindowGone(const QString& title, int ms = 5000) {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ms) {
            if (X({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title}).isEmpty()) return true;
            QTest::qWait(100);
        }
        return false;
    }
    // Everything the program said so far.
    QString Said() {
        output += QString::fromLocal8Bit(program.readAll());
        return output;
    }
    // Waits for the program to say something that matches.
    bool WaitToSay(const QString& pattern, int ms = 15000) {
        const QRegularExpression re(pattern);
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < ms) {
            if (re.match(Said()).hasMatch()) return true;
            QTest::qWait(50);
        }
        return false;
    }
    // A point in the middle of the chart windows' area of the 1400x900 main window (right of
    // the Instruments panel, above the Blotter).
    static QPoint ChartMiddle() { return QPoint(860, 380); }
    // The screen, or the part of it a window covers, into the pictures folder when one is set.
    void Picture(const QString& window, const char* name) {
        const QString folder = qEnvironmentVariable("PF_TERMINAL_PICTURES");
        if (folder.isEmpty()) return;
        QImage screen = QGuiApplication::primaryScreen()->grabWindow(0).toImage();
        if (!window.isEmpty()) {
            const QString g = X({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window});
            const auto value = [&g](const char* key) {
                return QRegularExpression(QStringLiteral("%1=(\\d+)").arg(QLatin1String(key))).match(g).captured(1).toInt();
            };
            screen = screen.copy(value("X"), value("Y"), value("WIDTH"), value("HEIGHT"));
        }
        screen.save(QDir(folder).filePath(QString::fromLatin1(name)));
    }
    QString Workspace() const {
        QFile f(workspace);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    // The opening tags of one kind of element in the saved workspace.
    QStringList Tags(const char* element) const {
        QStringList out;
        QRegularExpressionMatchIterator it =
            QRegularExpression(QStringLiteral("<%1 [^>]*>").arg(QLatin1String(element))).globalMatch(Workspace());
        while (it.hasNext()) out << it.next().captured(0);
        return out;
    }
    // The first column shown of the chart scrolled furthest, as the saved layouts have it.
    int StartPosition() const {
        int most = -1;
        QRegularExpressionMatchIterator it = QRegularExpression(QStringLiteral("StartPosition\"?[ =]*\"?(\\d+)")).globalMatch(Workspace());
        while (it.hasNext()) most = std::max(most, it.next().captured(1).toInt());
        return most;
    }
    // A new Point and Figure window with the instrument of the Instruments panel's first
    // (`line` Home) or last (End) line, chosen with the keyboard, the window then tiled to
    // fill the area.
    void NewChartOf(const char* line) {
        Key(QStringLiteral("ctrl+1"));
        Key(QStringLiteral("alt+1"));
        Key(QString::fromLatin1(line) + QStringLiteral(" Return"));
        Key(QStringLiteral("alt+w t"));
        QTest::qWait(500);
    }

    Xdo xdo;
    QString pfhost, workspace, broker, main, output;
    QTemporaryDir dir;
    QProcess program;
};

TEST_F(TerminalByHand, BrokerFileTicketAndTheBlotterAfterARestart) {
    Start();
    // File > Open price file (Ctrl+O): the file's name typed into the dialog.
    Key(QStringLiteral("ctrl+o"));
    ASSERT_FALSE(WaitForWindow(QStringLiteral("Open price file")).isEmpty());
    Type(broker);
    Key(QStringLiteral("Return"));
    ASSERT_TRUE(WaitToSay(QStringLiteral("EURUSD: 1860 quotes"))) << Said().toStdString();
    ASSERT_TRUE(WindowGone(QStringLiteral("Open price file")));
    FocusMain();
    NewChartOf("Home");

    // An order from the chart's context menu: the ticket opens with the menu point's price;
    // sold, 250,000, booked with Return.
    Click(ChartMiddle(), 3);
    Key(QStringLiteral("Down Right Down Return"));
    const QString order = WaitForWindow(QStringLiteral("Order ticket: EURUSD"));
    ASSERT_FALSE(order.isEmpty()) << Said().toStdString();
    Focus(order);
    Key(QStringLiteral("alt+s alt+a ctrl+a"));
    Type(QStringLiteral("250000"));
    Picture(order, "ticket.png");
    Key(QStringLiteral("Return"));
    ASSERT_TRUE(WaitToSay(QStringLiteral("Booked: sell 250,000 EURUSD at \\d+\\.\\d+ \\(order\\) on Demo account")))
        << Said().toStdString();
    EXPECT_TRUE(WindowGone(QStringLiteral("Order ticket")));
    FocusMain();

    // A deal, bought and then cancelled with Escape: nothing is booked.
    Click(ChartMiddle(), 3);
    Key(QStringLiteral("Down Right Return"));
    const QString deal = WaitForWindow(QStringLiteral("Deal ticket: EURUSD"));
    ASSERT_FALSE(deal.isEmpty()) << Said().toStdString();
    Focus(deal);
    Key(QStringLiteral("alt+b"));
    Key(QStringLiteral("Escape"));
    ASSERT_TRUE(WaitToSay(QStringLiteral("Ticket for EURUSD cancelled: nothing booked"))) << Said().toStdString();
    EXPECT_TRUE(WindowGone(QStringLiteral("Deal ticket")));
    FocusMain();
    Picture(main, "blotter.png");
    ASSERT_TRUE(Quit()) << Said().toStdString();

    // The workspace keeps the one trade, and the broker file with a quarter of its quotes
    // held back for the replay.
    QStringList trades = Tags("Trade");
    ASSERT_EQ(trades.size(), 1) << Workspace().toStdString();
    for (const char* part : {"Kind=\"order\"", "Side=\"sell\"", "Amount=\"250000\"", "Account=\"Demo account\"",
                             "Instrument=\"EURUSD\"", "Dealing=\"Demo dealing\""})
        EXPECT_TRUE(trades[0].contains(QLatin1String(part))) << part << " in " << trades[0].toStdString();
    const QStringList instruments = Tags("Instrument");
    ASSERT_EQ(instruments.size(), 1);
    EXPECT_TRUE(instruments[0].contains(QStringLiteral("Live=\"1395\""))) << instruments[0].toStdString();

    // Started again: the blotter is there and is saved again on quit.
    Start();
    Picture(main, "blotter-restored.png");
    ASSERT_TRUE(Quit()) << Said().toStdString();
    trades = Tags("Trade");
    ASSERT_EQ(trades.size(), 1);
    EXPECT_TRUE(trades[0].contains(QLatin1String("Side=\"sell\"")));
}

TEST_F(TerminalByHand, LatestPricesOptionAndTheKeysTable) {
    // Off (Options > Show the latest prices in new charts): a new chart of USD/CHF (the
    // panel's last line) starts at the beginning of its history, as the module shows a first
    // display.
    Start(QStringList(), true);
    Key(QStringLiteral("alt+o n"));
    NewChartOf("End");

    // Help > Keys and mouse (F1): the table, searchable; Escape closes it.
    Key(QStringLiteral("F1"));
    const QString keys = WaitForWindow(QStringLiteral("^Keys and mouse$"));
    ASSERT_FALSE(keys.isEmpty());
    Focus(keys);
    Picture(keys, "keys.png");
    Type(QStringLiteral("zoom"));
    Picture(keys, "keys-zoom.png");
    Key(QStringLiteral("Escape"));
    EXPECT_TRUE(WindowGone(QStringLiteral("^Keys and mouse$")));
    FocusMain();
    ASSERT_TRUE(Quit()) << Said().toStdString();
    EXPECT_TRUE(Workspace().contains(QLatin1String("LatestPrices=\"0\"")));
    EXPECT_EQ(StartPosition(), 0);

    // On again: a new chart of the same instrument shows its newest figures.
    Start(QStringList(), true);
    Key(QStringLiteral("alt+o n"));
    NewChartOf("End");
    ASSERT_TRUE(Quit()) << Said().toStdString();
    EXPECT_TRUE(Workspace().contains(QLatin1String("LatestPrices=\"1\"")));
    EXPECT_GT(StartPosition(), 0);
}

}  // namespace
