// `pfhost terminal` as its own program on the X server, for the tests that drive it as a
// person does: real key presses and mouse clicks from xdotool (XTEST), windows found by their
// titles, results read from what the program says (--verbose) and from the workspace it
// saves on quit.
#pragma once

#include <gtest/gtest.h>

#include <QDateTime>
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
        // The main window is the first of that title (a problem box said at start has it too).
        main = WindowsNamed(QStringLiteral("^pfhost terminal$"), 1, 15000).value(0);
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
    // The chart windows' layouts in the saved workspace (what the module wrote of each).
    QStringList Layouts() const {
        QStringList out;
        QRegularExpressionMatchIterator it =
            QRegularExpression(QStringLiteral("<ChartWindow>.*?</ChartWindow>"), QRegularExpression::DotMatchesEverythingOption)
                .globalMatch(Workspace());
        while (it.hasNext()) out << it.next().captured(0);
        return out;
    }
    // The visible windows whose title matches, once there are `count` of them (after `ms`,
    // however many there are).
    QStringList WindowsNamed(const QString& title, int count, int ms = 10000) {
        QElapsedTimer clock;
        clock.start();
        QStringList ids;
        do {
            ids = X({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), title})
                      .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            if (ids.size() >= count) break;
            QTest::qWait(100);
        } while (clock.elapsed() < ms);
        return ids;
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

