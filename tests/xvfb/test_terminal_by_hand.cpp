// `pfhost terminal` as its own program on the X server, driven as a person drives it: real
// key presses and mouse clicks from xdotool (XTEST), windows found by their titles, results
// read from what the program says (--verbose) and from the workspace it saves on quit.
// Opening a broker's CSV file, trading with the ticket (Book and Cancel), the blotter after
// a restart, the option that shows new charts at their latest prices, and the keys table.
// With PF_TERMINAL_PICTURES set to a folder, the ticket and the keys table are saved there
// as pictures (the README's).
#include "ByHand.h"

namespace {

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

    // The workspace keeps the one trade, and the broker file shown whole: nothing is held
    // back for the replay unless asked.
    QStringList trades = Tags("Trade");
    ASSERT_EQ(trades.size(), 1) << Workspace().toStdString();
    for (const char* part : {"Kind=\"order\"", "Side=\"sell\"", "Amount=\"250000\"", "Account=\"Demo account\"",
                             "Instrument=\"EURUSD\"", "Dealing=\"Demo dealing\""})
        EXPECT_TRUE(trades[0].contains(QLatin1String(part))) << part << " in " << trades[0].toStdString();
    const QStringList instruments = Tags("Instrument");
    ASSERT_EQ(instruments.size(), 1);
    EXPECT_TRUE(instruments[0].contains(QStringLiteral("Live=\"1860\""))) << instruments[0].toStdString();

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
