// The emulator's answers to deals and orders (16015, 16014) and to the module's questions
// about drag data (3119, 3048), with good and hostile records and no module loaded.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "TradeRequest.h"
#include "host/DealingService.h"
#include "host/DragData.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"

using host::DealingService;
using host::data::ChartType;

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

class Trading : public ::testing::Test {
protected:
    void SetUp() override {
        dealings = Deals().addDemoAccounts(3);  // 1001 and 1003 on the first, 1002 on the second
        ASSERT_EQ(dealings.size(), 2u);
    }
    DealingService& Deals() { return emulator.dealing(); }
    int Send(void* target, unsigned int message, const fxdTradeRequest* r) {
        return host::Host::callback(target, message, P(r), 0);
    }

    host::Emulator emulator;
    std::vector<void*> dealings;
};

}  // namespace

TEST_F(Trading, DealsAndOrdersOfKnownAccountsAreBooked) {
    const fxdTradeRequest deal = TradeRequest("USDCHF", 1003, 0);
    const fxdTradeRequest order = TradeRequest("TTRC", 1002, 1234.5);
    EXPECT_EQ(Send(dealings[0], MSG_DEAL_DEAL, &deal), 0);
    EXPECT_EQ(Send(dealings[1], MSG_DEAL_ORDER, &order), 0);
    ASSERT_EQ(Deals().blotter().size(), 2u);
    const DealingService::Trade& d = Deals().blotter()[0];
    EXPECT_EQ(std::make_tuple(d.dealing, d.accountId, d.instrument, d.kind, d.price),
              std::make_tuple(dealings[0], 1003, std::string("USDCHF"), DealingService::TradeKind::Deal, 0.0));
    const DealingService::Trade& o = Deals().blotter()[1];
    EXPECT_EQ(std::make_tuple(o.dealing, o.accountId, o.kind, o.price),
              std::make_tuple(dealings[1], 1002, DealingService::TradeKind::Order, 1234.5));
    EXPECT_LE(d.received, o.received);
    const std::string text = Deals().describeBlotter();
    EXPECT_NE(text.find("Second dealing"), std::string::npos);
    EXPECT_NE(text.find("order  TTRC"), std::string::npos) << text;
}

TEST_F(Trading, HostileRequestsAreRefusedAndNothingIsBooked) {
    const fxdTradeRequest good = TradeRequest("USDCHF", 1001, 1.5);
    EXPECT_EQ(Send(dealings[0], MSG_DEAL_DEAL, nullptr), 1);
    EXPECT_EQ(Send(reinterpret_cast<void*>(0x7ff0), MSG_DEAL_DEAL, &good), 1);
    EXPECT_EQ(Send(emulator.host().coreHandle(), MSG_DEAL_ORDER, &good), 1);
    const fxdTradeRequest refused[] = {
        TradeRequest("USDCHF", 1002, 1.5),  // an account of the other dealing
        TradeRequest("USDCHF", 0, 1.5),
        TradeRequest("", 1001, 1.5),
        TradeRequest("USDCHF", 1001, std::numeric_limits<double>::quiet_NaN()),
        TradeRequest("USDCHF", 1001, std::numeric_limits<double>::infinity()),
    };
    for (const fxdTradeRequest& r : refused) {
        EXPECT_EQ(Send(dealings[0], MSG_DEAL_DEAL, &r), 1) << r.accountId << " " << r.instrument;
        EXPECT_EQ(Send(dealings[0], MSG_DEAL_ORDER, &r), 1);
    }
    const fxdTradeRequest free = TradeRequest("USDCHF", 1001, 0);
    EXPECT_EQ(Send(dealings[0], MSG_DEAL_ORDER, &free), 1);  // an order needs a price
    EXPECT_TRUE(Deals().blotter().empty());
    // The journal says why: the third deal is the one of the other dealing's account.
    EXPECT_NE(emulator.host().journal().find(MSG_DEAL_DEAL).at(2).detail.find("refused, no such account"),
              std::string::npos);
}

TEST_F(Trading, RequestsAreReadByValueAndTheInstrumentCutAtItsField) {
    // A packed record one byte into a buffer, its instrument filling all 21 bytes unterminated.
    std::vector<char> buffer(1 + sizeof(fxdTradeRequest) + 8, 'Z');
    fxdTradeRequest r = TradeRequest("", 1001, 0.75);
    std::memset(r.instrument, 'A', sizeof r.instrument);
    std::memcpy(buffer.data() + 1, &r, sizeof r);
    EXPECT_EQ(host::Host::callback(dealings[0], MSG_DEAL_ORDER, P(buffer.data() + 1), 0), 0);
    ASSERT_EQ(Deals().blotter().size(), 1u);
    EXPECT_EQ(Deals().blotter()[0].instrument, std::string(21, 'A'));
    EXPECT_EQ(Deals().blotter()[0].price, 0.75);
}

TEST(DragData, FormatsRoundTripAndMalformedBytesAreRefused) {
    std::string name;
    ChartType type = ChartType::PointAndFigure;
    EXPECT_TRUE(host::drag::readInstrument(host::drag::instrumentBytes("USDCHF"), &name));
    EXPECT_EQ(name, "USDCHF");
    EXPECT_TRUE(host::drag::readPrimitive(host::drag::primitiveBytes("A;B", ChartType::Kagi), &name, &type));
    EXPECT_EQ(std::make_pair(name, type), std::make_pair(std::string("A;B"), ChartType::Kagi));
    EXPECT_TRUE(host::drag::readInstrument(QByteArray("TTRC\0\0", 6), &name));  // C-style terminators
    EXPECT_EQ(name, "TTRC");

    const auto mime = host::drag::primitiveDrag("USDCHF", ChartType::Renko);
    EXPECT_EQ(mime->formats(), QStringList(QString::fromLatin1(host::drag::kPrimitiveType)));
    EXPECT_EQ(mime->data(host::drag::kPrimitiveType), QByteArray("USDCHF;renko"));

    for (const QByteArray& bad : {QByteArray(), QByteArray("\0", 1), QByteArray("US\0CHF", 6), QByteArray("\xff\xfe"),
                                  QByteArray(host::drag::kMaxBytes + 1, 'A')})
        EXPECT_FALSE(host::drag::readInstrument(bad, &name)) << bad.toHex().left(16).constData();
    for (const char* bad : {"USDCHF", "USDCHF;", ";pf", "USDCHF;Point and Figure", "USDCHF;PF", "USDCHF;pf;"})
        EXPECT_FALSE(host::drag::readPrimitive(bad, &name, &type)) << bad;
}

TEST(DragAnswers, DescribeWhatTheDragDataNamesAndRefuseHostileRecords) {
    host::Emulator emulator;
    void* core = emulator.host().coreHandle();
    auto ask = [&](void* target, unsigned int message, const coreDragData* drag, fxwcDropInstrument* record) {
        return host::Host::callback(target, message, P(drag), P(record));
    };
    const QByteArray primitive = host::drag::primitiveBytes("TTRC", ChartType::Kagi);
    coreDragData drag{primitive.constData(), std::int32_t(primitive.size())};
    fxwcDropInstrument record{}, expected{};
    ASSERT_EQ(ask(core, MSG_DESCRIBE_PRIMITIVE, &drag, &record), 0);
    ASSERT_TRUE(emulator.charts().dropRecord("TTRC", std::nullopt, &expected));
    expected.style = 2;
    EXPECT_EQ(std::memcmp(&record, &expected, sizeof record), 0);
    // The same bytes are no instrument name; an instrument's are no primitive.
    EXPECT_EQ(ask(core, MSG_DESCRIBE_DRAG, &drag, &record), 1);
    coreDragData instrument{"TTRC", 4};
    EXPECT_EQ(ask(core, MSG_DESCRIBE_PRIMITIVE, &instrument, &record), 1);
    ASSERT_EQ(ask(core, MSG_DESCRIBE_DRAG, &instrument, &record), 0);
    EXPECT_EQ(record.style, 0);

    fxwcDropInstrument untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    const coreDragData hostile[] = {{nullptr, 4}, {"TTRC", 0}, {"TTRC", -4}, {"TTRC", 0x7fffffff}, {"EURUSD", 6}};
    for (unsigned int message : {MSG_DESCRIBE_DRAG, MSG_DESCRIBE_PRIMITIVE}) {
        for (const coreDragData& d : hostile) {
            fxwcDropInstrument r = untouched;
            EXPECT_EQ(ask(core, message, &d, &r), 1) << message << " length " << d.length;
            EXPECT_EQ(std::memcmp(&r, &untouched, sizeof r), 0);
        }
        EXPECT_EQ(ask(core, message, nullptr, &record), 1);
        EXPECT_EQ(ask(core, message, &instrument, nullptr), 1);
        EXPECT_EQ(ask(emulator.mainWindow().handle(), message, &instrument, &record), 1);  // not the core
    }
}
