// Parts of the desktop terminal that need no module: the replay's order across instruments,
// the journal panel over a journal that forgets its oldest entries, its filter, and what a
// workspace document may hold.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "host/DataCore.h"
#include "host/Host.h"
#include "host/WorkDataStore.h"
#include "host/terminal/JournalPanel.h"
#include "host/terminal/ReplayFeed.h"
#include "host/terminal/Workspace.h"

using host::data::Instrument;
using host::data::closeQuote;
using host::terminal::JournalPanel;
using host::terminal::Workspace;

namespace {

std::unique_ptr<Instrument> Series(const std::string& name, std::initializer_list<std::int32_t> times) {
    std::unique_ptr<Instrument> i(new Instrument(name, namePeriod{'I', 1}, 2, false));
    double price = 1.0;
    for (std::int32_t t : times) i->append(closeQuote(t, price += 0.01));
    return i;
}

TEST(TerminalReplay, FeedsTheOldestHeldBackQuoteOfAllInstrumentsFirst) {
    host::Host h;
    host::DataCore core(h);
    host::DataCore::LoadOptions keepTwo;
    keepTwo.live = 2;
    ASSERT_TRUE(core.addInstrument(Series("AAA", {100, 200, 300, 500, 900}), keepTwo));
    ASSERT_TRUE(core.addInstrument(Series("BBB", {100, 150, 400, 600}), keepTwo));
    host::terminal::ReplayFeed feed(core);
    EXPECT_EQ(feed.pending(), 5u);
    // 300 (AAA), 400 (BBB), 500 (AAA), then 600 (BBB); 900 waits.
    EXPECT_EQ(feed.feed(4), 4u);
    EXPECT_EQ(core.loaded("AAA")->quotes().back().time, 500);
    EXPECT_EQ(core.loaded("BBB")->quotes().back().time, 600);
    EXPECT_EQ(feed.pending(), 1u);
    EXPECT_EQ(feed.feed(10), 1u);
    EXPECT_EQ(feed.fed(), 5u);
    EXPECT_EQ(feed.feed(1), 0u);
    // Play with nothing left does not start.
    feed.play();
    EXPECT_FALSE(feed.playing());
    // A name already taken is refused, and the first instrument stays.
    EXPECT_EQ(core.addInstrument(Series("AAA", {1}), host::DataCore::LoadOptions()), nullptr);
    EXPECT_EQ(core.loaded("AAA")->quotes().size(), 5u);
}

TEST(TerminalJournal, FilterAndForgottenEntries) {
    std::vector<std::pair<unsigned, unsigned> > r;
    EXPECT_TRUE(JournalPanel::parseFilter(QStringLiteral(" 3009, 5003 - 5007;3140"), &r));
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[1], std::make_pair(5003u, 5007u));
    EXPECT_TRUE(JournalPanel::parseFilter(QString(), &r));
    EXPECT_TRUE(r.empty());
    for (const char* bad : {"5007-5003", "30x9", "-3009", "3009-", "1234567890"})
        EXPECT_FALSE(JournalPanel::parseFilter(QString::fromLatin1(bad), &r)) << bad;

    host::Journal journal;
    const auto add = [&journal](unsigned message) {
        journal.add(host::Journal::Entry{host::Journal::ToModule, 0, message, 0, 0, 0, std::string()});
    };
    for (unsigned m = 0; m < 10; ++m) add(3000 + m);
    JournalPanel panel(journal);
    panel.refresh();
    EXPECT_EQ(panel.lines().size(), 10);
    // The journal forgets its oldest entries while new ones come: each shows once.
    journal.dropOldest(8);
    add(3009);
    add(3010);
    panel.refresh();
    const QStringList lines = panel.lines();
    ASSERT_EQ(lines.size(), 12);
    EXPECT_TRUE(lines[10].contains(QLatin1String(" 3009 ")));
    ASSERT_TRUE(panel.setFilter(QStringLiteral("3009")));
    EXPECT_EQ(panel.lines().size(), 2);  // the kept 3009 and the new one
    journal.dropOldest(100);
    add(3009);
    panel.refresh();
    EXPECT_EQ(panel.lines().size(), 3);
}

TEST(TerminalWorkspace, DocumentsThatAreNoWorkspaceOrHoldNonsense) {
    QTemporaryDir dir;
    const auto write = [&dir](const char* name, const char* text) {
        QFile f(dir.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
        return f.fileName();
    };
    host::Host h;
    host::WorkDataStore store(h);
    Workspace::Contents c;
    QString error;
    EXPECT_FALSE(Workspace::read(store, dir.filePath(QStringLiteral("missing.xml")), &c, &error));
    EXPECT_FALSE(Workspace::read(store, write("cut.xml", "<Workspace><Window"), &c, &error));
    EXPECT_FALSE(Workspace::read(store, write("layout.xml", "<ChartLayout Type=\"pf\"/>"), &c, &error));
    EXPECT_TRUE(error.contains(QLatin1String("not a workspace"))) << error.toStdString();

    QStringList skipped;
    ASSERT_TRUE(Workspace::read(store,
                                write("odd.xml",
                                      "<Workspace Language=\"Chinese (Simplified)\" PriceType=\"9\" ReplaySpeed=\"-4\""
                                      " MainGeometry=\"not base64!\" Docks=\"AAAA\">"
                                      "<Instrument Source=\"x.csv\"/>"
                                      "<Instrument Name=\"USDCHF\" Source=\"\" Live=\"-7\"/>"
                                      "<Window Type=\"candles\"><ChartWindow/></Window>"
                                      "<Window Type=\"kagi\"/>"
                                      "<Window Type=\"renko\" X=\"10\" Y=\"20\" Width=\"5\" Height=\"300\" Active=\"1\">"
                                      "<ChartWindow/></Window>"
                                      "</Workspace>"),
                                &c, &error, &skipped))
        << error.toStdString();
    EXPECT_EQ(c.language, QStringLiteral("Chinese (Simplified)"));
    EXPECT_EQ(c.priceType, 0);    // out of range: the default
    EXPECT_EQ(c.replaySpeed, 0);  // not said
    EXPECT_TRUE(c.mainGeometry.isEmpty());        // not base64: as if not said
    EXPECT_EQ(c.docks, QByteArray(3, '\0'));       // base64: Qt judges the bytes
    ASSERT_EQ(c.instruments.size(), 1u);
    EXPECT_EQ(c.instruments[0].live, -1);
    EXPECT_EQ(c.instruments[0].source.toStdString(), host::DataCore::builtInPath("USDCHF"));
    ASSERT_EQ(c.windows.size(), 1u);
    EXPECT_EQ(c.windows[0].type, host::data::ChartType::Renko);
    EXPECT_FALSE(c.windows[0].geometry.isValid());  // too narrow to take
    EXPECT_TRUE(c.windows[0].active);
    EXPECT_NE(c.windows[0].layout, nullptr);
    EXPECT_EQ(skipped.size(), 3);
    EXPECT_EQ(Workspace::languageOf(dir.filePath(QStringLiteral("odd.xml"))), QStringLiteral("Chinese (Simplified)"));
    EXPECT_TRUE(Workspace::languageOf(dir.filePath(QStringLiteral("cut.xml"))).isEmpty());
}

}  // namespace
