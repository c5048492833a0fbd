// `pfhost terminal` as a program: started with price files and a workspace, it takes its own
// picture, saves the workspace on quit and exits; the saved workspace brings the same windows
// back; a broken or missing workspace is said on the console and the terminal starts anyway;
// without --workspace the user's default workspace is kept (here in a temporary config folder).
#include <gtest/gtest.h>

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

class TerminalProgram : public ::testing::Test {
protected:
    void SetUp() override {
        pfhost = QFileInfo(QStringLiteral(PF_MODULE_PATH)).dir().filePath(QStringLiteral("pfhost"));
        if (!QFileInfo::exists(pfhost)) GTEST_SKIP() << "pfhost is not built";
        ASSERT_TRUE(dir.isValid());
        config = dir.filePath(QStringLiteral("config"));
    }

    struct Result {
        int status = -1;
        QString out, err;
    };
    // Runs `pfhost terminal ARGS` on the offscreen platform with the user's configuration in
    // the test's folder, so that no default workspace of the machine is read or written.
    Result Run(const QStringList& args, const QString& command = QStringLiteral("terminal")) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), config);
        p.setProcessEnvironment(env);
        p.setWorkingDirectory(dir.path());
        p.start(pfhost, QStringList{command} + args);
        Result r;
        if (!p.waitForFinished(90000)) {
            p.kill();
            p.waitForFinished();
            r.err = QStringLiteral("(timed out)");
            return r;
        }
        r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        r.out = QString::fromLocal8Bit(p.readAllStandardOutput());
        r.err += QString::fromLocal8Bit(p.readAllStandardError());
        return r;
    }
    QString Path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }
    static QByteArray Read(const QString& path) {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    // The Window elements' opening tags (type, place, state) of a saved workspace, and
    // whether the main window's geometry and panels were saved: what must come back after a
    // restart. (The main window's position is the platform's to keep; its size shows in the
    // screenshots.)
    static QStringList Arrangement(const QString& path) {
        const QString text = QString::fromUtf8(Read(path));
        QStringList out;
        QRegularExpressionMatchIterator it = QRegularExpression(QStringLiteral("<Window [^>]*>")).globalMatch(text);
        while (it.hasNext()) out << it.next().captured(0);
        for (const char* name : {"MainGeometry", "Docks"})
            if (text.contains(QString::fromLatin1(name) + QStringLiteral("=\""))) out << QString::fromLatin1(name);
        return out;
    }

    QTemporaryDir dir;
    QString pfhost;
    QString config;
};

TEST_F(TerminalProgram, ScreenshotOfAPriceFileAndTheExampleWorkspaceThenSavedOnQuit) {
    const QString workspace = Path("workspace.xml");
    ASSERT_TRUE(QFile::copy(QStringLiteral(PF_SOURCE_DIR "/docs/terminal/demo-workspace.xml"), workspace));
    const QString png = Path("terminal.png");
    const Result r = Run({QStringLiteral(PF_EXAMPLES_DIR "/usdchf-30min.csv"), QStringLiteral("--no-examples"),
                          QStringLiteral("--workspace"), workspace, QStringLiteral("--size"), QStringLiteral("1000x700"),
                          QStringLiteral("--screenshot"), png, QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QLatin1String("screenshot in"))) << r.out.toStdString();
    // No problem was said: the price file and the workspace's other instrument were read and
    // every window opened.
    EXPECT_TRUE(r.err.trimmed().isEmpty()) << r.err.toStdString();
    const QImage picture(png);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(1000, 700));
    // Not one colour: menus, panels and charts are in it.
    EXPECT_NE(picture.pixel(5, 5), picture.pixel(500, 350));
    // Saved again on quit, with the main window's place, the panels and the three windows.
    const QStringList saved = Arrangement(workspace);
    EXPECT_EQ(saved.filter(QStringLiteral("<Window ")).size(), 3) << saved.join('\n').toStdString();
    EXPECT_TRUE(Read(workspace).contains("Docks=\""));
    // The user's default workspace is left alone when one is named.
    EXPECT_FALSE(QFileInfo::exists(config));
}

// An opened file is shown whole: the replay holds back the last quotes of a file only when
// --hold-back says how many (one quote stays for the charts).
TEST_F(TerminalProgram, AFileIsShownWholeUnlessTheReplayIsToldToHoldBack) {
    const QString csv = Path("eurusd.csv");
    {
        QFile f(csv);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("Date,Close\n");
        const QDate first(2020, 1, 1);
        for (int d = 0; d < 80; ++d) f.write(first.addDays(d).toString(Qt::ISODate).toLatin1() + ",1.1" + QByteArray::number(d % 10) + "\n");
    }
    const std::pair<QStringList, const char*> cases[] = {
        {QStringList(), "Live=\"80\""},
        {QStringList{QStringLiteral("--hold-back"), QStringLiteral("50")}, "Live=\"30\""},
        {QStringList{QStringLiteral("--hold-back"), QStringLiteral("500")}, "Live=\"1\""}};
    for (const auto& c : cases) {
        const QString workspace = Path("held.xml");
        QFile::remove(workspace);
        const Result r = Run(QStringList{csv, QStringLiteral("--no-examples"), QStringLiteral("--workspace"), workspace,
                                         QStringLiteral("--screenshot"), Path("held.png"), QStringLiteral("--quit")} +
                             c.first);
        ASSERT_EQ(r.status, 0) << r.err.toStdString();
        EXPECT_TRUE(Read(workspace).contains(c.second)) << c.first.join(' ').toStdString() << ": " << Read(workspace).left(600).toStdString();
    }
}

// A workspace whose price file is missing is never saved over with less: its windows wait
// for the file with their layouts and settings, said once on the console (no box waits with
// --quit), and come back whole once the file is opened again from elsewhere.
TEST_F(TerminalProgram, WindowsWaitForAMissingPriceFileAndAreSavedWhole) {
    const QString csv = Path("eurusd.csv"), workspace = Path("waiting.xml");
    {
        QFile f(csv);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("Date,Close\n");
        const QDate first(2020, 1, 1);
        for (int d = 0; d < 120; ++d)
            f.write(first.addDays(d).toString(Qt::ISODate).toLatin1() + ",1." + QByteArray::number(100 + d % 17 * 3) + "\n");
    }
    // The windows' layouts (what the module wrote) and the Window elements' types and places.
    const auto windows = [this](const QString& path) {
        const QString text = QString::fromUtf8(Read(path));
        QStringList out = Arrangement(path).filter(QStringLiteral("<Window "));
        QRegularExpressionMatchIterator it =
            QRegularExpression(QStringLiteral("<ChartWindow>.*?</ChartWindow>"), QRegularExpression::DotMatchesEverythingOption)
                .globalMatch(text);
        while (it.hasNext()) out << it.next().captured(0);
        out << QString::number(text.count(QLatin1String("<Chart ")));
        return out;
    };
    Result r = Run({csv, QStringLiteral("--no-examples"), QStringLiteral("--workspace"), workspace, QStringLiteral("--window"),
                    QStringLiteral("pf:EURUSD"), QStringLiteral("--window"), QStringLiteral("renko:EURUSD"),
                    QStringLiteral("--screenshot"), Path("a.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    const QStringList made = windows(workspace);
    ASSERT_EQ(made.size(), 5) << made.join('\n').toStdString();
    EXPECT_EQ(made.last(), QStringLiteral("2"));
    for (const QString& w : made.mid(2, 2)) ASSERT_TRUE(w.contains(QLatin1String("InstrumentName=\"EURUSD\""))) << w.toStdString();

    // The file is gone: one message names it, the terminal starts and ends by itself, and the
    // windows are saved as they were read, with the instrument and its file.
    const QString moved = Path("elsewhere/eurusd.csv");
    ASSERT_TRUE(QDir().mkpath(Path("elsewhere")) && QFile::rename(csv, moved));
    r = Run({QStringLiteral("--no-examples"), QStringLiteral("--workspace"), workspace, QStringLiteral("--screenshot"),
             Path("b.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.err.count(QLatin1String("pfhost terminal:")), 1) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QStringLiteral("EURUSD: its price file %1 could not be read").arg(csv))) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String("2 chart windows wait for it"))) << r.err.toStdString();
    EXPECT_EQ(windows(workspace), made);
    EXPECT_TRUE(Read(workspace).contains(QStringLiteral("<Instrument Name=\"EURUSD\" Source=\"%1\" Live=\"120\"/>").arg(csv).toUtf8()))
        << Read(workspace).toStdString();

    // Opened from its new place: the windows show it again and the workspace names the file there.
    r = Run({moved, QStringLiteral("--no-examples"), QStringLiteral("--workspace"), workspace, QStringLiteral("--screenshot"),
             Path("c.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.trimmed().isEmpty()) << r.err.toStdString();
    EXPECT_EQ(windows(workspace), made);
    EXPECT_TRUE(Read(workspace).contains(QStringLiteral("Source=\"%1\"").arg(moved).toUtf8()));
}

// The programs that read price files on the command line take a file with a few unreadable
// rows as the terminal does: the rest is used, and which rows were left out is said once.
TEST_F(TerminalProgram, RecordsAndRenderSkipUnreadableRowsAndSaySo) {
    const QString csv = Path("bad.csv");
    {
        QFile f(csv);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("time,close\n");
        for (int i = 0; i < 200; ++i) {
            const QByteArray time = QByteArray::number(1600000000 + 1800 * i);
            f.write(i == 1 ? time + ",N/A\n" : i == 4 ? QByteArray(",\n") : time + ",1." + QByteArray::number(1000 + i % 37 * 7) + "\n");
        }
    }
    const char* note = "bad.csv: 2 rows skipped (line 3: bad close, line 6: bad time)";
    Result r = Run({QStringLiteral("--data"), csv, QStringLiteral("--type"), QStringLiteral("pf")}, QStringLiteral("records"));
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.err.count(QLatin1String("rows skipped")), 1) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String(note))) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains(QLatin1String("198 quotes"))) << r.out.left(300).toStdString();
    r = Run({QStringLiteral("--data"), csv, QStringLiteral("--type"), QStringLiteral("renko"), QStringLiteral("--out"), Path("bad.png")},
            QStringLiteral("render"));
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String(note))) << r.err.toStdString();
    EXPECT_FALSE(QImage(Path("bad.png")).isNull());
}

TEST_F(TerminalProgram, BrokenAndMissingWorkspacesAreSaidAndTheTerminalStarts) {
    // Cut short: said on the console, the terminal starts empty and the file stays as it was.
    const QString cut = Path("cut.xml");
    const QByteArray cutText("<?xml version=\"1.0\"?>\n<Workspace Version=\"1\">\n  <Window Type=\"pf\"");
    {
        QFile f(cut);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(cutText);
    }
    Result r = Run({QStringLiteral("--no-examples"), QStringLiteral("--workspace"), cut, QStringLiteral("--screenshot"),
                    Path("cut.png"), QStringLiteral("--quit")});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String("The workspace could not be opened"))) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String("not be saved over"))) << r.err.toStdString();
    EXPECT_FALSE(QImage(Path("cut.png")).isNull());
    EXPECT_EQ(Read(cut), cutText);

    // Missing: said, and made on quit.
    const QString fresh = Path("sub/fresh.xml");
    r = Run({QStringLiteral("--workspace"), fresh, QStringLiteral("--window"), QStringLiteral("pf:USDCHF"),
             QStringLiteral("--screenshot"), Path("fresh.png"), QStringLiteral("--quit")});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains(QLatin1String("it is made on quit"))) << r.err.toStdString();
    EXPECT_EQ(Arrangement(fresh).filter(QStringLiteral("<Window ")).size(), 1);

    // Options that make no sense end the program before anything opens.
    r = Run({QStringLiteral("--workspace"), fresh, QStringLiteral("--no-workspace")});
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.err.contains(QLatin1String("exclude each other"))) << r.err.toStdString();
}

TEST_F(TerminalProgram, ASavedWorkspaceComesBackAfterARestart) {
    const QString workspace = Path("workspace.xml");
    Result r = Run({QStringLiteral("--workspace"), workspace, QStringLiteral("--window"), QStringLiteral("pf:USDCHF"),
                    QStringLiteral("--window"), QStringLiteral("kagi:TTRC"), QStringLiteral("--screenshot"),
                    Path("first.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    const QStringList first = Arrangement(workspace);
    ASSERT_EQ(first.filter(QStringLiteral("<Window ")).size(), 2) << first.join('\n').toStdString();
    ASSERT_TRUE(first.contains(QStringLiteral("MainGeometry")) && first.contains(QStringLiteral("Docks")));

    // No windows asked for this time: those saved are opened, where they were, and saved the
    // same way again on quit.
    r = Run({QStringLiteral("--workspace"), workspace, QStringLiteral("--screenshot"), Path("second.png"),
             QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_TRUE(r.err.trimmed().isEmpty()) << r.err.toStdString();
    EXPECT_EQ(Arrangement(workspace).join('\n').toStdString(), first.join('\n').toStdString());
    EXPECT_EQ(QImage(Path("second.png")).size(), QImage(Path("first.png")).size());
}

TEST_F(TerminalProgram, WithoutWorkspaceTheDefaultOneIsKept) {
    const QString def = QDir(config).filePath(QStringLiteral("pfhost/terminal-workspace.xml"));
    Result r = Run({QStringLiteral("--help")});
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.out.contains(def)) << r.out.toStdString();

    // --no-workspace: nothing kept.
    r = Run({QStringLiteral("--no-workspace"), QStringLiteral("--window"), QStringLiteral("renko:USDCHF"),
             QStringLiteral("--screenshot"), Path("none.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_FALSE(QFileInfo::exists(def));

    r = Run({QStringLiteral("--window"), QStringLiteral("renko:USDCHF"), QStringLiteral("--screenshot"), Path("a.png"),
             QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    const QStringList first = Arrangement(def);
    ASSERT_EQ(first.filter(QStringLiteral("type=\"renko\""), Qt::CaseInsensitive).size(), 1) << first.join('\n').toStdString();
    r = Run({QStringLiteral("--screenshot"), Path("b.png"), QStringLiteral("--quit")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(Arrangement(def).join('\n').toStdString(), first.join('\n').toStdString());
}

}  // namespace
