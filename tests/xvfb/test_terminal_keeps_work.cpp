// `pfhost terminal` keeps what a person made and shows what a file holds, driven by hand
// (xdotool) as TerminalByHand drives it: charts whose price file went missing wait for it
// and come back once it is located; a broker file with a few unreadable rows loads the rest
// and says once which rows were left out; an opened file is shown whole unless the Replay
// menu asks for quotes to be held back.
#include "ByHand.h"

namespace {

class TerminalKeepsWork : public TerminalByHand {
protected:
    // The broker file with its rows `bad` (1 for the first quote) replaced by the texts given.
    void SpoilRows(const std::vector<std::pair<int, QByteArray> >& bad) {
        QFile f(broker);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        QList<QByteArray> lines = f.readAll().split('\n');
        f.close();
        for (const auto& b : bad) lines[b.first] = b.second + "\r";
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(lines.join('\n'));
    }
    // File > Open price file with the file's name typed into the dialog.
    void OpenFile(const QString& path) {
        Key(QStringLiteral("ctrl+o"));
        ASSERT_FALSE(WaitForWindow(QStringLiteral("Open price file")).isEmpty());
        Type(path);
        Key(QStringLiteral("Return"));
        ASSERT_TRUE(WindowGone(QStringLiteral("Open price file")));
        FocusMain();
    }
    // The terminal's problem boxes carry its own title: besides the main window, `count`
    // of them come (and no more within a second).
    QStringList ProblemBoxes(int count) {
        QStringList ids = WindowsNamed(QStringLiteral("^pfhost terminal$"), count + 1);
        QTest::qWait(1000);
        ids = WindowsNamed(QStringLiteral("^pfhost terminal$"), count + 2, 0);
        ids.removeAll(main);
        return ids;
    }
};

TEST_F(TerminalKeepsWork, ChartsWaitForAMissingPriceFileUntilItIsLocated) {
    Start({broker, QStringLiteral("--window"), QStringLiteral("pf:EURUSD"), QStringLiteral("--window"), QStringLiteral("renko:EURUSD")});
    ASSERT_TRUE(WaitToSay(QStringLiteral("EURUSD: 1860 quotes"))) << Said().toStdString();
    ASSERT_TRUE(Quit()) << Said().toStdString();
    const QStringList made = Layouts(), settings = Tags("Chart");
    ASSERT_EQ(made.size(), 2) << Workspace().toStdString();
    ASSERT_EQ(settings.size(), 2);

    // The file is moved and renamed: one box names it, whatever number of charts wait.
    const QString moved = dir.filePath(QStringLiteral("exports/broker-export.csv"));
    ASSERT_TRUE(QDir().mkpath(QFileInfo(moved).path()) && QFile::rename(broker, moved));
    Start();
    ASSERT_TRUE(WaitToSay(QStringLiteral("EURUSD: its price file %1 could not be read").arg(QRegularExpression::escape(broker))))
        << Said().toStdString();
    EXPECT_TRUE(WaitToSay(QStringLiteral("2 chart windows wait for it"))) << Said().toStdString();
    const QStringList boxes = ProblemBoxes(1);
    ASSERT_EQ(boxes.size(), 1);
    Focus(boxes.first());
    Key(QStringLiteral("Return"));
    EXPECT_TRUE(ProblemBoxes(0).isEmpty());
    FocusMain();

    // File > Locate missing price file: the file at its new place is read as EURUSD's, and the
    // charts are back; the workspace names the file there and keeps the windows as they were.
    Key(QStringLiteral("alt+f l"));
    ASSERT_FALSE(WaitForWindow(QStringLiteral("Locate the price file of EURUSD")).isEmpty()) << Said().toStdString();
    Type(moved);
    Key(QStringLiteral("Return"));
    ASSERT_TRUE(WaitToSay(QStringLiteral("2 chart windows that waited for their price file are open again"))) << Said().toStdString();
    FocusMain();
    ASSERT_TRUE(Quit()) << Said().toStdString();
    EXPECT_EQ(Layouts(), made);
    EXPECT_EQ(Tags("Chart"), settings);
    const QStringList instruments = Tags("Instrument");
    ASSERT_EQ(instruments.size(), 1);
    EXPECT_TRUE(instruments[0].contains(QStringLiteral("Source=\"%1\"").arg(moved))) << instruments[0].toStdString();
}

TEST_F(TerminalKeepsWork, AFileWithAFewBadRowsLoadsTheRestAndSaysWhichOnce) {
    SpoilRows({{3, "2000-01-05;N/A;1,2;1,1;1,15;100"}, {7, ";;;;;"}, {11, "2000-01-14;1,1"}});
    Start();
    OpenFile(broker);
    ASSERT_TRUE(WaitToSay(QStringLiteral("EURUSD: 1857 quotes"))) << Said().toStdString();
    EXPECT_TRUE(WaitToSay(QStringLiteral("eurusd-daily.csv: 3 rows skipped \\(line 4: bad open, line 8: bad date, line 12: "
                                         "bad high\\); EURUSD has the other 1857 quotes")))
        << Said().toStdString();
    const QStringList boxes = ProblemBoxes(1);
    ASSERT_EQ(boxes.size(), 1);
    Focus(boxes.first());
    Key(QStringLiteral("Return"));
    FocusMain();
    ASSERT_TRUE(Quit()) << Said().toStdString();
    const QStringList instruments = Tags("Instrument");
    ASSERT_EQ(instruments.size(), 1);
    EXPECT_TRUE(instruments[0].contains(QStringLiteral("Live=\"1857\""))) << instruments[0].toStdString();
}

TEST_F(TerminalKeepsWork, TheReplayHoldsBackOnlyWhatThePersonChooses) {
    // Replay > Hold back from files opened > The last 500 quotes, then the file opened: its
    // last 500 quotes wait for the replay.
    Start();
    Key(QStringLiteral("alt+r h Down Return"));
    ASSERT_TRUE(WaitToSay(QStringLiteral("The last 500 quotes of each file opened from now on wait for the replay")))
        << Said().toStdString();
    OpenFile(broker);
    ASSERT_TRUE(WaitToSay(QStringLiteral("EURUSD: 1860 quotes"))) << Said().toStdString();
    ASSERT_TRUE(Quit()) << Said().toStdString();
    const QStringList instruments = Tags("Instrument");
    ASSERT_EQ(instruments.size(), 1);
    EXPECT_TRUE(instruments[0].contains(QStringLiteral("Live=\"1360\""))) << instruments[0].toStdString();
}

}  // namespace
