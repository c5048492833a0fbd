// The terminal's side of trading without a module: a deal or order request handed to the
// ticket instead of booked, the ticket itself (side, amount, price, account; Book, Cancel),
// the blotter kept in a workspace and read back, and problem boxes shown one at a time.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QWidget>
#include <cmath>
#include <cstring>

#include "TradeRequest.h"
#include "host/DealingService.h"
#include "host/Emulator.h"
#include "host/WorkDataStore.h"
#include "host/terminal/ProblemBoxes.h"
#include "host/terminal/TradeTicket.h"
#include "host/terminal/Workspace.h"

using host::DealingService;
using host::terminal::TradeTicket;
using Side = DealingService::Side;
using Kind = DealingService::TradeKind;

namespace {

class Ticket : public ::testing::Test {
protected:
    void SetUp() override {
        dealings = Deals().addDemoAccounts(2);  // 1001 on "Demo dealing", 1002 on "Second dealing"
        Deals().setTicket([this](const DealingService::Trade& t) { requests.push_back(t); });
    }
    DealingService& Deals() { return emulator.dealing(); }
    // A request as the module sends it, seen by the ticket.
    DealingService::Trade Ask(unsigned message, const fxdTradeRequest& r, void* dealing) {
        EXPECT_EQ(host::Host::callback(dealing, message, reinterpret_cast<std::intptr_t>(&r), 0), 0);
        EXPECT_FALSE(requests.empty());
        return requests.empty() ? DealingService::Trade() : requests.back();
    }
    static void Choose(TradeTicket& t, const char* side, double amount) {
        t.findChild<QRadioButton*>(QString::fromLatin1(side))->click();
        t.findChild<QDoubleSpinBox*>(QStringLiteral("amount"))->setValue(amount);
    }

    host::Emulator emulator;
    std::vector<void*> dealings;
    std::vector<DealingService::Trade> requests;
};

}  // namespace

TEST_F(Ticket, RequestsGoToTheTicketAndOnlyWhatIsBookedReachesTheBlotter) {
    const DealingService::Trade order = Ask(MSG_DEAL_ORDER, TradeRequest("USDCHF", 1002, 0.95125), dealings[1]);
    EXPECT_TRUE(Deals().blotter().empty());
    EXPECT_EQ(std::make_tuple(order.dealingName, order.accountName.toStdString(), order.kind, order.side),
              std::make_tuple(std::string("Second dealing"), std::string("Demo account 2"), Kind::Order, Side::None));
    // Hostile requests are refused before any ticket sees them.
    EXPECT_EQ(host::Host::callback(dealings[0], MSG_DEAL_DEAL, 0, 0), 1);
    const fxdTradeRequest stranger = TradeRequest("USDCHF", 1002, 0);  // 1002 is not the first dealing's
    EXPECT_EQ(host::Host::callback(dealings[0], MSG_DEAL_DEAL, reinterpret_cast<std::intptr_t>(&stranger), 0), 1);
    EXPECT_EQ(requests.size(), 1u);

    // The order ticket: the menu point's price, editable; Book only once a side is chosen.
    TradeTicket ticket(Deals(), order, [] { return 0.9511; }, 5);
    QDoubleSpinBox* price = ticket.findChild<QDoubleSpinBox*>(QStringLiteral("price"));
    ASSERT_NE(price, nullptr);
    EXPECT_DOUBLE_EQ(price->value(), 0.95125);
    EXPECT_EQ(ticket.findChild<QComboBox*>(QStringLiteral("account"))->currentIndex(), 1);
    EXPECT_FALSE(ticket.bookButton()->isEnabled());
    Choose(ticket, "sell", 0);
    EXPECT_FALSE(ticket.bookButton()->isEnabled());  // no amount
    Choose(ticket, "sell", 250000);
    price->setValue(0.953);
    ticket.findChild<QComboBox*>(QStringLiteral("account"))->setCurrentIndex(0);
    ASSERT_TRUE(ticket.bookButton()->isEnabled());
    ticket.bookButton()->click();
    EXPECT_EQ(ticket.result(), QDialog::Accepted);
    ASSERT_EQ(Deals().blotter().size(), 1u);
    const DealingService::Trade& booked = Deals().blotter()[0];
    EXPECT_EQ(std::make_tuple(booked.dealing, booked.accountId, booked.accountName.toStdString(), booked.side, booked.amount,
                              booked.price, booked.kind),
              std::make_tuple(dealings[0], 1001, std::string("Demo account"), Side::Sell, 250000.0, 0.953, Kind::Order));
    EXPECT_EQ(TradeTicket::lastAmount(), 250000.0);

    // A deal is booked at the market as it is when Book is pressed; the amount starts at
    // the last one booked. Cancel books nothing.
    const DealingService::Trade deal = Ask(MSG_DEAL_DEAL, TradeRequest("USDCHF", 1001, 0), dealings[0]);
    double market = 0.9511;
    TradeTicket dealTicket(Deals(), deal, [&market] { return market; }, 4);
    EXPECT_EQ(dealTicket.findChild<QDoubleSpinBox*>(QStringLiteral("price")), nullptr);
    EXPECT_EQ(dealTicket.findChild<QDoubleSpinBox*>(QStringLiteral("amount"))->value(), 250000.0);
    dealTicket.findChild<QRadioButton*>(QStringLiteral("buy"))->click();
    market = 0.9522;
    dealTicket.bookButton()->click();
    ASSERT_EQ(Deals().blotter().size(), 2u);
    EXPECT_EQ(std::make_pair(Deals().blotter()[1].side, Deals().blotter()[1].price), std::make_pair(Side::Buy, 0.9522));
    TradeTicket cancelled(Deals(), deal, [] { return 1.0; }, 4);
    Choose(cancelled, "buy", 1000);
    cancelled.reject();
    EXPECT_EQ(Deals().blotter().size(), 2u);

    // An account closed while its ticket was open: Book is refused and the ticket stays.
    TradeTicket late(Deals(), deal, [] { return 1.0; }, 4);
    Choose(late, "sell", 1000);
    ASSERT_TRUE(Deals().removeAccount(dealings[0], 1001));
    late.bookButton()->click();
    EXPECT_NE(late.result(), QDialog::Accepted);
    EXPECT_EQ(Deals().blotter().size(), 2u);
    EXPECT_FALSE(late.findChild<QLabel*>(QStringLiteral("ticketHint"))->text().isEmpty());
}

TEST_F(Ticket, BookRefusesWhatCannotBeTraded) {
    DealingService::Trade t = Ask(MSG_DEAL_ORDER, TradeRequest("USDCHF", 1001, 1.25), dealings[0]);
    t.side = Side::Buy;
    t.amount = 1000;
    const auto with = [&t](std::function<void(DealingService::Trade&)> change) {
        DealingService::Trade c = t;
        change(c);
        return c;
    };
    const DealingService::Trade bad[] = {
        with([](DealingService::Trade& c) { c.side = Side::None; }),
        with([](DealingService::Trade& c) { c.amount = 0; }),
        with([](DealingService::Trade& c) { c.amount = std::nan(""); }),
        with([](DealingService::Trade& c) { c.price = 0; }),
        with([](DealingService::Trade& c) { c.price = INFINITY; }),
        with([](DealingService::Trade& c) { c.accountId = 1002; }),  // not this dealing's
        with([](DealingService::Trade& c) { c.dealing = reinterpret_cast<void*>(0x7ff0); }),
        with([](DealingService::Trade& c) { c.instrument.clear(); }),
    };
    for (const DealingService::Trade& b : bad) EXPECT_FALSE(Deals().book(b));
    EXPECT_TRUE(Deals().blotter().empty());
    EXPECT_TRUE(Deals().book(t));
}

// The blotter saved with a workspace comes back exactly; on another terminal the trades find
// their dealing by name, or keep only its name when it is not there.
TEST_F(Ticket, TheBlotterComesBackWithTheWorkspace) {
    DealingService::Trade t = Ask(MSG_DEAL_ORDER, TradeRequest("USDCHF", 1002, 0.95125), dealings[1]);
    t.side = Side::Sell;
    t.amount = 123456.5;
    ASSERT_TRUE(Deals().book(t));
    Deals().setTicket(DealingService::Ticket());
    const fxdTradeRequest plain = TradeRequest("TTRC", 1001, 0);
    ASSERT_EQ(host::Host::callback(dealings[0], MSG_DEAL_DEAL, reinterpret_cast<std::intptr_t>(&plain), 0), 0);
    ASSERT_EQ(Deals().blotter().size(), 2u);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("w.xml"));
    QString error;
    ASSERT_TRUE(host::terminal::Workspace::write(emulator, path, host::terminal::Workspace::Contents(), &error))
        << error.toStdString();

    host::Emulator other;
    other.dealing().addDemoAccounts(1);  // only "Demo dealing"
    host::terminal::Workspace::Contents c;
    ASSERT_TRUE(host::terminal::Workspace::read(other.workData(), path, &c, &error)) << error.toStdString();
    ASSERT_EQ(c.trades.size(), 2u);
    const unsigned generation = other.dealing().blotterGeneration();
    other.dealing().setBlotter(c.trades);
    EXPECT_NE(other.dealing().blotterGeneration(), generation);
    const auto& back = other.dealing().blotter();
    for (std::size_t i = 0; i < 2; ++i) {
        const DealingService::Trade& a = Deals().blotter()[i];
        const DealingService::Trade& b = back[i];
        EXPECT_EQ(std::make_tuple(a.received, a.accountId, a.instrument, a.kind, a.price, a.dealingName, a.accountName, a.side, a.amount),
                  std::make_tuple(b.received, b.accountId, b.instrument, b.kind, b.price, b.dealingName, b.accountName, b.side, b.amount))
            << i;
    }
    EXPECT_EQ(back[0].dealing, nullptr);  // "Second dealing" is not on this terminal
    EXPECT_EQ(back[1].dealing, other.dealing().dealings()[0]);
}

TEST(TerminalWorkspace, TradesThatMakeNoSenseAreLeftOutAndNamed) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("w.xml"));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("<Workspace LatestPrices=\"0\"><Blotter>"
            "<Trade Time=\"2026-11-25T10:00:00.000Z\" Instrument=\"USDCHF\" Kind=\"deal\" AccountId=\"7\" Price=\"0\"/>"
            "<Trade Time=\"yesterday\" Instrument=\"USDCHF\" Kind=\"deal\" AccountId=\"7\" Price=\"0\"/>"
            "<Trade Time=\"2026-11-25T10:00:00Z\" Instrument=\"USDCHF\" Kind=\"swap\" AccountId=\"7\" Price=\"0\"/>"
            "<Trade Time=\"2026-11-25T10:00:00Z\" Instrument=\"USDCHF\" Kind=\"order\" AccountId=\"7\" Price=\"abc\"/>"
            "<Trade Time=\"2026-11-25T10:00:00Z\" Instrument=\"USDCHF\" Kind=\"order\" AccountId=\"7\" Price=\"1\" Side=\"both\" Amount=\"1\"/>"
            "<Trade Time=\"2026-11-25T10:00:00Z\" Instrument=\"\" Kind=\"order\" AccountId=\"7\" Price=\"1\"/>"
            "</Blotter></Workspace>");
    f.close();
    host::Host h;
    host::WorkDataStore store(h);
    host::terminal::Workspace::Contents c;
    QString error;
    QStringList skipped;
    ASSERT_TRUE(host::terminal::Workspace::read(store, path, &c, &error, &skipped));
    ASSERT_EQ(c.trades.size(), 1u);
    EXPECT_EQ(c.trades[0].received, QDateTime(QDate(2026, 11, 25), QTime(10, 0), Qt::UTC));
    EXPECT_FALSE(c.latestPrices);
    EXPECT_EQ(skipped, QStringList{QStringLiteral("5 trades of the blotter that could not be read")});
}

// Problems come one box at a time, modal to the window; a flood is cut and counted.
TEST(ProblemBoxes, OneModalBoxAtATimeAndAFloodIsCounted) {
    QWidget window;
    host::terminal::ProblemBoxes boxes(&window, QStringLiteral("t"));
    boxes.add(QStringLiteral("first"));
    boxes.add(QStringLiteral("second"));
    ASSERT_NE(boxes.current(), nullptr);
    EXPECT_EQ(boxes.current()->text(), QStringLiteral("first"));
    EXPECT_EQ(boxes.current()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(window.findChildren<QMessageBox*>().size(), 1);
    for (int i = 0; i < host::terminal::ProblemBoxes::kMostWaiting + 5; ++i) boxes.add(QStringLiteral("more %1").arg(i));
    EXPECT_EQ(boxes.waiting(), host::terminal::ProblemBoxes::kMostWaiting + 1);
    QStringList seen;
    for (int guard = 0; boxes.current() && guard < 100; ++guard) {
        seen << boxes.current()->text();
        boxes.current()->accept();
        QApplication::processEvents();
        QApplication::processEvents();
    }
    ASSERT_EQ(seen.size(), host::terminal::ProblemBoxes::kMostWaiting + 2);
    EXPECT_EQ(seen[1], QStringLiteral("second"));
    EXPECT_EQ(seen.last(), QStringLiteral("6 more problems came while these were shown; they are not shown."));
}
