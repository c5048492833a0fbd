// `pfhost terminal` as a trader uses it, driven from outside with real X events (xdotool)
// on the X server the test runs under: a chart of each type made from the keyboard, the
// indicator dialog opened by a click on a Point and Figure column and the box size and
// reversal changed, a text study placed and its text edited in the study dialog, the chart
// printed to a PDF (its text read with pdftotext, its page looked at), the windows cascaded
// and tiled, the terminal quit and started again with everything as it was. The program is
// a process of its own; the test sees it only through the screen and the files it writes.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
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
#include <QLineF>
#include <algorithm>
#include <functional>
#include <vector>

#include "Xdo.h"

namespace {

class TerminalAcceptance : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb")) GTEST_SKIP() << "run under xvfb-run";
        if (!xdo.Available()) GTEST_SKIP() << "xdotool is not installed";
        pfhost = QFileInfo(QStringLiteral(PF_MODULE_PATH)).dir().filePath(QStringLiteral("pfhost"));
        ASSERT_TRUE(QFileInfo::exists(pfhost)) << "pfhost is not built";
        ASSERT_TRUE(dir.isValid());
        workspace = dir.filePath(QStringLiteral("workspace.xml"));
        QDir(dir.path()).mkdir(QStringLiteral("home"));
    }
    void TearDown() override {
        if (HasFailure()) Screen().save(QDir::temp().filePath(QStringLiteral("terminal-acceptance-failure.png")));
        if (program.state() != QProcess::NotRunning) {
            program.kill();
            program.waitForFinished(5000);
        }
    }

    // Starts the terminal with USD/CHF from its price file and the workspace, and waits for
    // its main window.
    void Start(const QStringList& extra = QStringList()) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("HOME"), dir.filePath(QStringLiteral("home")));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("home/.config")));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        program.setProcessEnvironment(env);
        program.setWorkingDirectory(dir.path());
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(pfhost, QStringList{QStringLiteral("terminal"), QStringLiteral(PF_EXAMPLES_DIR "/usdchf-30min.csv"),
                                          QStringLiteral("--no-examples"), QStringLiteral("--workspace"), workspace,
                                          QStringLiteral("--size"), QStringLiteral("1400x1000")} +
                      extra);
        ASSERT_TRUE(program.waitForStarted(10000));
        main = WaitWindow(QStringLiteral("^pfhost terminal$"), 20000);
        ASSERT_FALSE(main.isEmpty()) << "no terminal window";
        X({QStringLiteral("windowmove"), main, QStringLiteral("0"), QStringLiteral("0")});
        X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
        // Ready once the instrument is in its panel: the screen stops changing.
        Settle();
    }
    // Runs xdotool; its output.
    QString X(const QStringList& args) { return xdo.Run(args); }
    void Key(const QString& keys) {
        X(QStringList{QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("40")} + keys.split(QLatin1Char(' ')));
        Settle();
    }
    void Type(const QString& text) {
        X({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("30"), text});
        Settle();
    }
    void ClickAt(const QPoint& p, int clicks = 1) {
        X({QStringLiteral("mousemove"), QString::number(p.x()), QString::number(p.y())});
        QTest::qWait(100);
        X({QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(clicks), QStringLiteral("1")});
        Settle();
    }
    // The id of a visible window whose title matches, once there is one; empty after `ms`.
    QString WaitWindow(const QString& title, int ms = 5000) { return xdo.WaitWindow(title, ms); }
    QImage Screen() { return QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32); }
    // Waits until two pictures of the screen 150 ms apart are the same (at most 5 s).
    void Settle() {
        QImage last = Screen();
        for (int i = 0; i < 33; ++i) {
            QTest::qWait(150);
            QImage now = Screen();
            if (now == last) return;
            last = now;
        }
    }
    // Pixels of colour `rgb` in the top window of a cascade (the lowest and rightmost one):
    // those within `reach` of the one furthest down and right, nearest to their middle first.
    static std::vector<QPoint> InTopWindowAll(const QImage& image, QRgb rgb, int reach = 300) {
        std::vector<QPoint> all;
        int far = -1;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if ((image.pixel(x, y) & 0xFFFFFFu) == rgb) {
                    all.push_back(QPoint(x, y));
                    far = std::max(far, x + y);
                }
        all.erase(std::remove_if(all.begin(), all.end(), [&](const QPoint& p) { return p.x() + p.y() <= far - reach; }),
                  all.end());
        if (all.empty()) return all;
        QPointF middle;
        for (const QPoint& p : all) middle += p;
        middle /= double(all.size());
        std::stable_sort(all.begin(), all.end(), [&middle](const QPoint& a, const QPoint& b) {
            return QLineF(a, middle).length() < QLineF(b, middle).length();
        });
        return all;
    }
    // The first of them; (-1, -1) for none.
    static QPoint InTopWindow(const QImage& image, QRgb rgb, int reach = 300) {
        const std::vector<QPoint> all = InTopWindowAll(image, rgb, reach);
        return all.empty() ? QPoint(-1, -1) : all.front();
    }
    // With PF_TERMINAL_PICTURES set to a folder, the screen's part that window `id` covers
    // (the whole screen for an empty id) is kept there as NAME.png: the README's pictures.
    void Keep(const QString& id, const char* name) {
        const QString folder = qEnvironmentVariable("PF_TERMINAL_PICTURES");
        if (folder.isEmpty()) return;
        QImage image = Screen();
        if (!id.isEmpty()) {
            const QString shape = X({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), id});
            const auto value = [&shape](const char* key) {
                const QRegularExpressionMatch m =
                    QRegularExpression(QStringLiteral("^%1=(\\d+)$").arg(QLatin1String(key)), QRegularExpression::MultilineOption)
                        .match(shape);
                return m.hasMatch() ? m.captured(1).toInt() : 0;
            };
            image = image.copy(value("X"), value("Y"), value("WIDTH"), value("HEIGHT"));
        }
        image.save(QDir(folder).filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
    }
    QString Workspace() {
        QFile f(workspace);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    }
    // The Window elements' opening tags of the saved workspace.
    QStringList Windows() {
        QStringList out;
        QRegularExpressionMatchIterator it = QRegularExpression(QStringLiteral("<Window [^>]*>")).globalMatch(Workspace());
        while (it.hasNext()) out << it.next().captured(0);
        return out;
    }
    // Ctrl+P and Return in the print dialog; the PDF file it wrote (in the program's folder
    // or home), empty when none came.
    QString Print() {
        X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
        Key(QStringLiteral("ctrl+p"));
        if (WaitWindow(QStringLiteral("Print chart")).isEmpty()) return QString();
        Key(QStringLiteral("Return"));
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 10000) {
            QDirIterator it(dir.path(), {QStringLiteral("*.pdf")}, QDir::Files, QDirIterator::Subdirectories);
            if (it.hasNext()) {
                const QString path = it.next();
                QTest::qWait(500);  // written to its end
                return path;
            }
            QTest::qWait(200);
        }
        return QString();
    }
    // The PDF's text, spaces simplified; a null string without pdftotext.
    static QString PdfText(const QString& pdf) {
        const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
        if (pdftotext.isEmpty()) return QString();
        QProcess p;
        p.start(pdftotext, {pdf, QStringLiteral("-")});
        p.waitForFinished(10000);
        return QString::fromUtf8(p.readAllStandardOutput()).simplified();
    }
    bool Quit() {
        if (program.state() == QProcess::NotRunning) {
            ADD_FAILURE() << "the terminal ended before it was asked to, with status " << program.exitCode()
                          << (program.exitStatus() == QProcess::CrashExit ? " (crashed)" : "");
            return false;
        }
        X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
        Key(QStringLiteral("ctrl+q"));
        // (It may have ended while the screen settled: waitForFinished says false then.)
        const bool ended = program.state() == QProcess::NotRunning || program.waitForFinished(20000);
        if (ended && (program.exitStatus() != QProcess::NormalExit || program.exitCode() != 0))
            ADD_FAILURE() << "the terminal ended with status " << program.exitCode()
                          << (program.exitStatus() == QProcess::CrashExit ? " (crashed)" : "");
        return ended && program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0;
    }

    QTemporaryDir dir;
    Xdo xdo;
    QString pfhost, workspace, main;
    QProcess program;
};

TEST_F(TerminalAcceptance, ATraderSetsUpChartsPrintsAndFindsEverythingAfterARestart) {
    Start();

    // One chart of each type: Ctrl+2, Ctrl+3, Ctrl+1, each given the instrument from the
    // Instruments panel (Alt+1, Return). The Point and Figure window is made last: on top.
    for (const char* key : {"ctrl+2", "ctrl+3", "ctrl+1"}) {
        Key(QString::fromLatin1(key));
        Key(QStringLiteral("alt+1 Return"));
    }

    // A click on an O column of the Point and Figure window opens the indicator dialog.
    // An O drawn on the screen may reach past the box the chart hit-tests: as a person
    // would, click again a little further on when nothing opened.
    const std::vector<QPoint> os = InTopWindowAll(Screen(), 0xD00000u);
    ASSERT_FALSE(os.empty()) << "no O column on the screen";
    QString settings;
    std::vector<QPoint> tried;
    for (const QPoint& o : os) {
        if (tried.size() == 8) break;
        if (std::any_of(tried.begin(), tried.end(), [&o](const QPoint& t) { return (t - o).manhattanLength() < 4; }))
            continue;
        tried.push_back(o);
        ClickAt(o);
        settings = WaitWindow(QStringLiteral("Point and Figure settings"), 1500);
        if (!settings.isEmpty()) break;
    }
    ASSERT_FALSE(settings.isEmpty()) << "no indicator dialog after a click on a column";
    Keep(settings, "chart-settings");
    // Box size 0.0100 (Alt+B) and reversal 2 (Alt+R), typed; Return is OK. (The dialog is given the keyboard
    // as a window manager would give it to a new window.)
    X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), settings});
    Key(QStringLiteral("alt+b ctrl+a"));
    Type(QStringLiteral("0.0100"));
    Key(QStringLiteral("alt+r ctrl+a"));
    Type(QStringLiteral("2"));
    Key(QStringLiteral("Return"));
    EXPECT_TRUE(WaitWindow(QStringLiteral("Point and Figure settings"), 300).isEmpty()) << "the dialog stayed open";

    // Tools > Text (Alt+T opens the menu at the pointer; four down), a click on the chart places it; a
    // double click on the text opens the study dialog (Alt+T: its text field).
    // (Without a window manager the closed dialog hands the keyboard back to no one: the
    // main window is given it, as a click on it would.)
    X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
    Key(QStringLiteral("alt+t Down Down Down Down Return"));
    const QPoint at = tried.back() + QPoint(-150, -60);
    ClickAt(at);
    QString study;
    for (const QPoint d : {QPoint(12, 10), QPoint(6, 6), QPoint(20, 12), QPoint(10, -6), QPoint(2, 2)}) {
        ClickAt(at + d, 2);
        study = WaitWindow(QStringLiteral("Text properties"), 800);
        if (!study.isEmpty()) break;
    }
    ASSERT_FALSE(study.isEmpty()) << "no study dialog after a double click on the text";
    X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), study});
    Key(QStringLiteral("alt+t ctrl+a"));
    Type(QStringLiteral("Resistance"));
    Keep(study, "study-dialog");
    Key(QStringLiteral("Return"));
    EXPECT_TRUE(WaitWindow(QStringLiteral("Text properties"), 300).isEmpty()) << "the study dialog stayed open";

    // File > Print chart (Ctrl+P): the print dialog's default, a PDF file, is accepted. The
    // page's header says what the chart is.
    const QString pdf = Print();
    ASSERT_FALSE(pdf.isEmpty()) << "nothing printed to a file";
    const QString header = QStringLiteral("USDCHF 30 min \u00b7 Point and Figure 0.0100 \u00d7 2 \u00b7 ");
    const QString text = PdfText(pdf);
    EXPECT_TRUE(text.contains(header) || text.isNull()) << text.toStdString();
    EXPECT_TRUE(text.contains(QRegularExpression(QStringLiteral("1996-\\d\\d-\\d\\d \\d\\d:\\d\\d to 200\\d-"))) || text.isNull())
        << text.toStdString();
    const QString pdftoppm = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
    if (!pdftoppm.isEmpty()) {
        // The page as a picture: a white page with the chart's coloured columns on it.
        QProcess p;
        p.start(pdftoppm, {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("40"), QStringLiteral("-singlefile"), pdf,
                           dir.filePath(QStringLiteral("page"))});
        ASSERT_TRUE(p.waitForFinished(20000));
        const QImage page(dir.filePath(QStringLiteral("page.png")));
        ASSERT_FALSE(page.isNull());
        const QString folder = qEnvironmentVariable("PF_TERMINAL_PICTURES");
        if (!folder.isEmpty()) {
            QProcess large;
            large.start(pdftoppm, {QStringLiteral("-png"), QStringLiteral("-r"), QStringLiteral("60"), QStringLiteral("-singlefile"),
                                   pdf, QDir(folder).filePath(QStringLiteral("printed-page"))});
            large.waitForFinished(20000);
        }
        EXPECT_GT(page.width(), page.height()) << "a wide chart prints on a landscape page";
        int coloured = 0;
        for (int y = 0; y < page.height(); ++y)
            for (int x = 0; x < page.width(); ++x) {
                const QColor c = page.pixelColor(x, y);
                coloured += c.saturation() > 120 && c.value() > 100;
            }
        EXPECT_GT(coloured, 100) << "no chart on the printed page";
    }

    // Window > Cascade, then Window > Tile (Alt+W and the entries' letters).
    X({QStringLiteral("windowfocus"), QStringLiteral("--sync"), main});
    Key(QStringLiteral("alt+w c"));
    Keep(main, "cascade");
    Key(QStringLiteral("alt+w t"));

    // Quit: the workspace keeps the windows, the settings and the text.
    ASSERT_TRUE(Quit()) << "the terminal did not end";
    const QStringList tiled = Windows();
    ASSERT_EQ(tiled.size(), 3);
    EXPECT_TRUE(Workspace().contains(QStringLiteral("Box=\"0.01\" Reversal=\"2\""))) << Workspace().toStdString();
    EXPECT_TRUE(Workspace().contains(QStringLiteral("Text=\"Resistance\""))) << "the study's text was not kept";

    // Started again: the Point and Figure window, in front again, prints with its settings,
    // and quitting saves the same workspace.
    QFile::remove(pdf);
    Start();
    const QString again = Print();
    ASSERT_FALSE(again.isEmpty()) << "nothing printed after the restart";
    const QString text2 = PdfText(again);
    EXPECT_TRUE(text2.contains(header) || text2.isNull()) << text2.left(300).toStdString();
    ASSERT_TRUE(Quit());
    EXPECT_EQ(Windows(), tiled);
    EXPECT_TRUE(Workspace().contains(QStringLiteral("Text=\"Resistance\"")));
}

}  // namespace
