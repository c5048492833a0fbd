// The data core as the module sees it through the host callback (3008, 3012-3014, 3042,
// 3043), its notices (3009), and the instruments it reads from CSV files.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <tuple>

#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/data/CsvPriceReader.h"

using host::data::ChartType;

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }
int Send(unsigned int message, std::intptr_t p1, std::intptr_t p2 = 0) {
    return host::Host::callback(nullptr, message, p1, p2);
}

// An array's layout as "NAME:type ... /size,precision".
std::string Layout(const fxDataPointArray* a) {
    std::string s;
    for (int f = 0; f < a->fieldCount; ++f) s += std::string(a->fields[f].name) + ":" + std::to_string(a->fields[f].type) + " ";
    return s + "/" + std::to_string(a->pointSize) + "," + std::to_string(a->precision);
}

class DataCoreMessages : public ::testing::Test {
protected:
    DataCoreMessages() : core(hostObject) {}

    // A 3008 record as the module's data source fills it.
    static coreCreateDpaData CreateRecord(void* provider, const std::string& name, char period, std::int32_t length) {
        coreCreateDpaData r{};
        r.provider = provider;
        host::data::putWide(r.name.name, 255, name);
        r.name.period = namePeriod{period, length};
        r.value = 1;
        return r;
    }
    void* Create(ChartType type, const std::string& name = "USDCHF", char period = 'I', std::int32_t length = 30) {
        coreCreateDpaData r = CreateRecord(core.providerInterface(type), name, period, length);
        EXPECT_EQ(Send(MSG_CREATE_DPA, P(&r)), 0);
        return r.handle;
    }
    fxDataPointArray* FirstArray(void* handle) {
        fxDataPointArray* slot = nullptr;
        coreListCreateData list{1, &slot};
        EXPECT_EQ(Send(MSG_DPA_LIST, P(handle), P(&list)), 0);
        return slot;
    }

    host::Host hostObject;
    host::DataCore core;
};

}  // namespace

TEST_F(DataCoreMessages, ProvidersAreInterfacesWhoseObjectsHandOutTheirChartTypeArray) {
    const std::pair<ChartType, const char*> types[] = {
        {ChartType::PointAndFigure, "Point and Figure"}, {ChartType::Renko, "Renko"}, {ChartType::Kagi, "Kagi"}};
    for (const auto& t : types) {
        SCOPED_TRACE(t.second);
        const auto found = hostObject.findInterfaces("CHARTTYPE", "TELVIX", host::data::chartTypeName(t.first));
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].handle, core.providerInterface(t.first));

        void* handle = Create(t.first);
        ASSERT_NE(handle, nullptr);
        std::int32_t count = -1;
        EXPECT_EQ(Send(MSG_DPA_COUNT, P(handle), P(&count)), 0);
        EXPECT_EQ(count, 1);
        fxDataPointArray* a = FirstArray(handle);
        ASSERT_NE(a, nullptr);
        EXPECT_EQ(host::data::readWide(a->name.name, 255), t.second);
        EXPECT_STREQ(a->name.secondName, "USDCHF");
        EXPECT_EQ(std::make_pair(char(a->name.period.type), int(a->name.period.length)), std::make_pair('I', 30));
        EXPECT_EQ(Layout(a), "TIME:2 STEP:4 VALUE:4 TYPE:2 END:4 SOLID:4 /24,4");
        const auto& records = core.chart(handle)->records();
        ASSERT_GT(+a->pointCount, 0);
        EXPECT_EQ(std::size_t(a->pointCount), records.size());
        EXPECT_EQ(static_cast<const void*>(a->points), static_cast<const void*>(records.data()));
    }
}

TEST_F(DataCoreMessages, WhatCannotBeServedIsRefused) {
    EXPECT_EQ(Send(MSG_CREATE_DPA, 0), 1);
    void* renko = core.providerInterface(ChartType::Renko);
    coreCreateDpaData bad[] = {CreateRecord(hostObject.newHandle(), "USDCHF", 'I', 30),  // unknown provider
                               CreateRecord(nullptr, "USDCHF", 'I', 30), CreateRecord(renko, "EURUSD", 'I', 30),
                               CreateRecord(renko, "USDCHF", 'D', 1)};  // wrong period
    for (coreCreateDpaData& r : bad) {
        r.handle = reinterpret_cast<void*>(std::intptr_t(0x55));
        EXPECT_EQ(Send(MSG_CREATE_DPA, P(&r)), 1);
        EXPECT_EQ(static_cast<void*>(r.handle), nullptr);
    }
    // Period type 0 takes the instrument's own period; the daily built-in answers 'D'.
    EXPECT_NE(Create(ChartType::Kagi, "USDCHF", 0, 0), nullptr);
    EXPECT_NE(Create(ChartType::Kagi, "TTRC", 'D', 1), nullptr);

    // Unknown handles, null records and bad list counts answer 1.
    void* chart = Create(ChartType::PointAndFigure);
    std::int32_t count = 0;
    fxDataPointArray* slot = nullptr;
    coreListCreateData list{1, &slot};
    coreDpaSubscription sub{hostObject.newHandle(), hostObject.newHandle()};
    coreHeadNodeInfo info;
    for (std::intptr_t bad : {std::intptr_t(0), std::intptr_t(0x7777), P(core.providerInterface(ChartType::Kagi))}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(Send(MSG_DPA_COUNT, bad, P(&count)), 1);
        EXPECT_EQ(Send(MSG_DPA_LIST, bad, P(&list)), 1);
        EXPECT_EQ(Send(MSG_DPA_SUBSCRIBE, bad, P(&sub)), 1);
        EXPECT_EQ(Send(MSG_DPA_UNSUBSCRIBE, bad, P(&sub)), 1);
        EXPECT_EQ(Send(MSG_HEAD_NODE_INFO, bad, P(&info)), 1);
    }
    EXPECT_EQ(slot, nullptr);
    for (unsigned int m : {MSG_DPA_COUNT, MSG_DPA_LIST, MSG_DPA_SUBSCRIBE, MSG_DPA_UNSUBSCRIBE, MSG_HEAD_NODE_INFO})
        EXPECT_EQ(Send(m, P(chart), 0), 1) << m;

    fxDataPointArray* const sentinel = reinterpret_cast<fxDataPointArray*>(std::intptr_t(0x99));
    fxDataPointArray* slots[5] = {sentinel, sentinel, sentinel, sentinel, sentinel};
    list = {0, slots};
    EXPECT_EQ(Send(MSG_DPA_LIST, P(chart), P(&list)), 0);  // nothing asked, nothing written
    EXPECT_EQ(slots[0], sentinel);
    list.count = 5;  // more room than arrays: only the one array is written
    EXPECT_EQ(Send(MSG_DPA_LIST, P(chart), P(&list)), 0);
    EXPECT_EQ(std::vector<fxDataPointArray*>(slots, slots + 5),
              (std::vector<fxDataPointArray*>{core.arrays(chart)[0], sentinel, sentinel, sentinel, sentinel}));
    EXPECT_EQ(+list.count, 5);
    for (coreListCreateData bad : {coreListCreateData{-1, slots}, coreListCreateData{1 << 20, slots},
                                   coreListCreateData{1, nullptr}})
        EXPECT_EQ(Send(MSG_DPA_LIST, P(chart), P(&bad)), 1) << bad.count;
    // A released object's handle is unknown from then on.
    ASSERT_TRUE(core.release(chart));
    EXPECT_EQ(Send(MSG_DPA_COUNT, P(chart), P(&count)), 1);
}

TEST_F(DataCoreMessages, HeadNodesNameTheProviderAndBaseSeriesCarryTheQuotes) {
    coreHeadNodeInfo info;
    std::memset(&info, 'x', sizeof info);
    ASSERT_EQ(Send(MSG_HEAD_NODE_INFO, P(Create(ChartType::Renko)), P(&info)), 0);
    EXPECT_EQ(std::string(info.interfaceName) + "/" + info.provider + "/" + info.name, "CHARTTYPE/TELVIX/Renko");
    ASSERT_EQ(Send(MSG_HEAD_NODE_INFO, P(core.baseHandle("USDCHF")), P(&info)), 0);
    EXPECT_EQ(std::string(info.interfaceName) + "/" + info.name, "CANDLE/CANDLE_TELVIX");

    fxDataPointArray* closes = FirstArray(core.baseHandle("USDCHF"));
    ASSERT_NE(closes, nullptr);
    EXPECT_EQ(host::data::readWide(closes->name.name, 255), "USDCHF");
    EXPECT_EQ(Layout(closes), "TIME:2 CLOSE:4 /8,4");
    EXPECT_EQ(+closes->pointCount, 62496);
    struct { std::int32_t time; float close; } first;
    std::memcpy(&first, closes->points, 8);
    EXPECT_EQ(first.time, 828316800);
    EXPECT_FLOAT_EQ(first.close, 1.1930f);

    fxDataPointArray* bars = FirstArray(core.baseHandle("TTRC"));
    ASSERT_NE(bars, nullptr);
    EXPECT_EQ(+bars->fieldCount, 6);
    EXPECT_EQ(std::make_tuple(int(bars->pointSize), int(bars->precision), char(bars->name.period.type)),
              std::make_tuple(24, 2, 'D'));
    float ohlcv[5];
    std::memcpy(ohlcv, bars->points + 4, sizeof ohlcv);
    EXPECT_EQ(std::vector<float>(ohlcv, ohlcv + 5), (std::vector<float>{3.18f, 3.18f, 3.08f, 3.08f, 1870906.0f}));
}

TEST_F(DataCoreMessages, ArraysAnswerTheirIndexAndNewChartsTakeTheirTypesSettings) {
    void* chart = Create(ChartType::PointAndFigure);
    EXPECT_EQ(Send(MSG_LINE_INDEX, P(core.arrays(chart)[0])), 0);
    EXPECT_EQ(Send(MSG_LINE_INDEX, P(core.arrays(core.baseHandle("USDCHF"))[0])), 0);
    fxDataPointArray stray{};
    EXPECT_EQ(Send(MSG_LINE_INDEX, P(&stray)), 1);
    EXPECT_EQ(Send(MSG_LINE_INDEX, 0), 1);
    fxDataPointArray* released = core.arrays(chart)[0];
    ASSERT_TRUE(core.release(chart));
    EXPECT_EQ(Send(MSG_LINE_INDEX, P(released)), 1);

    // Settings per chart type, for the objects 3008 makes from then on.
    const double defaultBox = core.chart(Create(ChartType::Renko))->settings().box;
    core.setChartSettings(ChartType::Renko, {0.0050, 0, 0});
    EXPECT_DOUBLE_EQ(core.chart(Create(ChartType::Renko))->settings().box, 0.005);
    EXPECT_DOUBLE_EQ(core.chart(Create(ChartType::Kagi))->settings().box, defaultBox);
    core.setChartSettings(ChartType::Renko, {-1, 0, 0});  // fits no instrument
    coreCreateDpaData r = CreateRecord(core.providerInterface(ChartType::Renko), "USDCHF", 'I', 30);
    EXPECT_EQ(Send(MSG_CREATE_DPA, P(&r)), 1);
    EXPECT_EQ(static_cast<void*>(r.handle), nullptr);
}

// ---- replay and notices ----

namespace {

class Replay : public DataCoreMessages {
protected:
    void SetUp() override {
        ASSERT_NE(core.loadInstrument(host::DataCore::builtInPath("USDCHF"), {"LIVE", 1000}), nullptr);
        chart = core.createChart("LIVE", ChartType::PointAndFigure, {0.0010, 0, 0});
        ASSERT_NE(chart, nullptr);
        ASSERT_FALSE(core.chart(chart)->records().empty());
    }
    void* chart = nullptr;
    void* const iface = reinterpret_cast<void*>(std::intptr_t(0x4100));
    void* const widget = reinterpret_cast<void*>(std::intptr_t(0x4200));
    coreDpaSubscription sub{iface, widget};
};

}  // namespace

TEST_F(Replay, SubscribersHearOfEveryChangeUntilTheyCancel) {
    EXPECT_EQ(Send(MSG_DPA_SUBSCRIBE, P(chart), P(&sub)), 0);
    EXPECT_EQ(Send(MSG_DPA_SUBSCRIBE, P(chart), P(&sub)), 0);  // twice is still one subscription
    EXPECT_EQ(core.subscriptionCount(chart), 1u);

    const fxDataPointArray* header = core.arrays(chart)[0];
    // Count, VALUE and END of the last column: what a notice-worthy change alters.
    auto state = [&] {
        const auto& r = core.chart(chart)->records();
        return r.empty() ? std::make_tuple(std::size_t(0), 0.0f, 0.0f)
                         : std::make_tuple(r.size(), r.back().value, r.back().end);
    };
    std::size_t changes = 0;
    for (int i = 0; i < 500; ++i) {
        const auto before = state();
        ASSERT_EQ(core.replay("LIVE", 1), 1u);
        changes += state() != before;
    }
    ASSERT_GT(changes, 5u);
    ASSERT_EQ(core.notices().size(), changes);  // one per change, none for quotes that change nothing
    std::int32_t previous = 0;
    for (const auto& n : core.notices()) {
        EXPECT_EQ(std::make_tuple(n.target, n.subscriber, n.handle, n.result),
                  std::make_tuple(iface, widget, chart, 1));  // 1: no module loaded
        EXPECT_GT(n.reference, previous);
        previous = n.reference;
    }
    // The array header stays where it was; 3042 hands out the same one with the new points.
    EXPECT_EQ(FirstArray(chart), header);

    EXPECT_EQ(Send(MSG_DPA_UNSUBSCRIBE, P(chart), P(&sub)), 0);
    EXPECT_EQ(core.subscriptionCount(chart), 0u);
    core.clearNotices();
    core.replay("LIVE", 1000);
    EXPECT_TRUE(core.notices().empty());
}

TEST_F(Replay, AppendKeepsTimeOrderAndBaseSeriesHearsEveryQuote) {
    void* base = core.baseHandle("LIVE");
    ASSERT_EQ(Send(MSG_DPA_SUBSCRIBE, P(base), P(&sub)), 0);
    const std::int32_t last = core.instrument("LIVE")->quotes().back().time;
    EXPECT_FALSE(core.append("LIVE", host::data::closeQuote(last - 1, 1.2)));
    EXPECT_FALSE(core.append("NOSUCH", host::data::closeQuote(last + 1, 1.2)));
    EXPECT_TRUE(core.notices().empty());

    const std::size_t columns = core.chart(chart)->records().size();
    // A jump far above anything so far: a new rising column or a longer one, up to box 1.5000.
    ASSERT_TRUE(core.append("LIVE", host::data::closeQuote(last + 1800, 1.50004)));
    EXPECT_GE(core.chart(chart)->records().size(), columns);
    EXPECT_FLOAT_EQ(core.chart(chart)->records().back().end, 1.5f);
    ASSERT_EQ(core.notices().size(), 1u);
    EXPECT_EQ(core.notices()[0].handle, base);
    EXPECT_EQ(+core.arrays(base)[0]->pointCount, 1001);
}

TEST_F(Replay, ConfigureRecomputesAndRefusesBadSettings) {
    ASSERT_EQ(Send(MSG_DPA_SUBSCRIBE, P(chart), P(&sub)), 0);
    core.replay("LIVE", 5000);
    core.clearNotices();

    const host::data::ChartSettings s{0.0050, 2, 0};
    ASSERT_TRUE(core.configure(chart, s));
    ASSERT_EQ(core.notices().size(), 1u);
    void* fresh = core.createChart("LIVE", ChartType::PointAndFigure, s);
    const auto& a = core.chart(chart)->records();
    const auto& b = core.chart(fresh)->records();
    ASSERT_EQ(a.size(), b.size());
    EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof a[0]), 0);
    EXPECT_FLOAT_EQ(a.at(0).step, 0.005f);

    std::string error;
    const host::data::ChartSettings bad[] = {{-1, 3, 0}, {1e-12, 3, 0}, {1e-7, 3, 0}, {0.001, 5000, 0},
                                             {0.001, 3, 150}};
    for (const auto& settings : bad) {
        error.clear();
        EXPECT_FALSE(core.configure(chart, settings, &error));
        EXPECT_FALSE(error.empty());
    }
    EXPECT_DOUBLE_EQ(core.chart(chart)->settings().box, 0.005);
    EXPECT_FALSE(core.configure(core.baseHandle("LIVE"), s, &error));
    EXPECT_EQ(core.createChart("LIVE", ChartType::Renko, bad[0], &error), nullptr);
}

// ---- CSV files ----

namespace {
std::unique_ptr<host::data::Instrument> Read(const std::string& text, std::string* error = nullptr) {
    std::istringstream in(text);
    return host::data::CsvPriceReader::read(in, "TEST", error);
}
}  // namespace

TEST(CsvPriceReader, PrecisionPeriodAndLayoutComeFromTheFile) {
    auto closes = Read("time,close\n100,1.5\n160,1.25\n220,1.125\n\n");
    ASSERT_NE(closes, nullptr);
    EXPECT_EQ(std::make_tuple(closes->precision(), char(closes->period().type), int(closes->period().length)),
              std::make_tuple(3, 'I', 1));
    EXPECT_FALSE(closes->hasOhlc());
    ASSERT_EQ(closes->quotes().size(), 3u);
    EXPECT_EQ(closes->quotes()[1].high, 1.25);
    EXPECT_DOUBLE_EQ(closes->lowestClose(), 1.125);

    // Columns by name in any order; volume decimals do not count.
    auto bars = Read("Time,Close,Open,High,Low,Volume\n0,2.5,2,3,1,10.125\n86400,2.25,2,3,1,5\n");
    ASSERT_NE(bars, nullptr);
    EXPECT_TRUE(bars->hasOhlc());
    EXPECT_EQ(std::make_pair(bars->precision(), char(bars->period().type)), std::make_pair(2, 'D'));
    const auto& q = bars->quotes()[0];
    EXPECT_EQ(std::make_tuple(q.open, q.high, q.low, q.close, q.volume), std::make_tuple(2.0, 3.0, 1.0, 2.5, 10.125));
}

// Only a file without a usable header or without one readable row is refused; a row that
// cannot be read is left out, counted and named (the first few), the rest is loaded.
TEST(CsvPriceReader, UnreadableRowsAreSkippedAndOnlyUnusableFilesRefused) {
    const std::pair<const char*, const char*> refused[] = {
        {"", "empty file"},
        {"time,open\n1,2\n", "the header needs a time column (time, or date, datetime or timestamp) and a close column"},
        {"time,close\n1,abc\n\n", "no readable row: 1 row skipped (line 2: bad close)"},
        {"time,close\n-5,1\n", "no readable row: 1 row skipped (line 2: time out of range)"},
        {"time,close\n", "no quotes"}};
    for (const auto& c : refused) {
        std::string error;
        EXPECT_EQ(Read(c.first, &error), nullptr) << c.first;
        EXPECT_EQ(error, c.second);
    }
    std::string error;
    EXPECT_EQ(host::data::CsvPriceReader::readFile("/nonexistent/prices.csv", "", &error), nullptr);
    EXPECT_NE(error.find("cannot open"), std::string::npos);

    // N/A, a row of empty fields, a short row, a time going backwards: each left out; the
    // precision comes from the rows taken. Blank lines are no rows.
    auto mixed = Read("time,close\n5,1.5\n6,N/A\n\n,\n7\n4,1.25\n8,1.75\n9,1.123456\n", &error);
    ASSERT_NE(mixed, nullptr) << error;
    EXPECT_EQ(mixed->quotes().size(), 3u);
    EXPECT_EQ(mixed->precision(), 6);
    EXPECT_EQ(host::data::CsvPriceReader::skippedNote(mixed->skippedRows(), mixed->skippedSample()),
              "4 rows skipped (line 3: bad close, line 5: bad time, line 6: bad close, line 7: time goes backwards)");
    // Past the first few rows the rest are counted only.
    std::string many = "time,close\n1,1\n";
    for (int i = 0; i < 8; ++i) many += "2,x\n";
    auto counted = Read(many);
    ASSERT_NE(counted, nullptr);
    EXPECT_EQ(host::data::CsvPriceReader::skippedNote(counted->skippedRows(), counted->skippedSample()),
              "8 rows skipped (line 3: bad close, line 4: bad close, line 5: bad close, line 6: bad close, "
              "line 7: bad close, 3 more)");
    EXPECT_EQ(host::data::CsvPriceReader::skippedNote(0, std::string()), "");
}

// Broker exports: ISO dates with or without a time, a separate time column, semicolons with
// decimal commas, tabs, quoted fields, Windows line ends, a byte order mark.
TEST(CsvPriceReader, BrokerLayoutsGiveTheSameQuotes) {
    const char* const files[] = {
        "Date,Open,High,Low,Close\n2024-01-02,0.8412,0.8450,0.8400,0.8431\n2024-01-03,0.8431,0.8460,0.8420,0.8455\n",
        "\xEF\xBB\xBF\"DATE\";\"OPEN\";\"HIGH\";\"LOW\";\"CLOSE\";\"VOLUME\"\r\n"
        "2024-01-02;0,8412;0,8450;0,8400;0,8431;1200\r\n2024-01-03;0,8431;0,8460;0,8420;0,8455;900\r\n",
        "datetime\topen\thigh\tlow\tclose\n2024-01-02T00:00:00Z\t0.8412\t0.845\t0.84\t0.8431\n"
        "2024-01-03 00:00\t0.8431\t0.846\t0.842\t0.8455\n",
        "<DATE>,<TIME>,<OPEN>,<HIGH>,<LOW>,<CLOSE>\n2024.01.02,00:00,0.8412,0.8450,0.8400,0.8431\n"
        "2024.01.03,00:00:00,0.8431,0.8460,0.8420,0.8455\n",
        "Timestamp,Close,Open,Low,High\n1704153600,0.8431,0.8412,0.8400,0.8450\n2024-01-03T02:00+02:00,0.8455,0.8431,0.8420,0.8460\n"};
    for (const char* text : files) {
        std::string error;
        auto i = Read(text, &error);
        ASSERT_NE(i, nullptr) << text << ": " << error;
        ASSERT_EQ(i->quotes().size(), 2u) << text;
        EXPECT_TRUE(i->hasOhlc());
        EXPECT_EQ(std::make_pair(i->precision(), char(i->period().type)), std::make_pair(4, 'D')) << text;
        const auto& q = i->quotes()[0];
        EXPECT_EQ(std::make_tuple(q.time, q.open, q.high, q.low, q.close), std::make_tuple(1704153600, 0.8412, 0.845, 0.84, 0.8431))
            << text;
        EXPECT_EQ(i->quotes()[1].time, 1704153600 + 86400) << text;
    }
    // A date with a separate time column, half-hourly; only closes.
    auto intraday = Read("date;time;close\n2024-02-29;23:30;1,5\n2024-03-01;00:00;1,25\n");
    ASSERT_NE(intraday, nullptr);
    EXPECT_EQ(intraday->quotes()[0].time, 1709249400);
    EXPECT_EQ(std::make_pair(char(intraday->period().type), int(intraday->period().length)), std::make_pair('I', 30));
    EXPECT_EQ(intraday->quotes()[1].close, 1.25);
}

TEST(CsvPriceReader, BrokerRowsThatCannotBeReadSayWhere) {
    const std::pair<const char*, const char*> cases[] = {
        {"Date,Close\n2024-01-02,1.5\n2024-02-30,1.6\n", "line 3: bad date"},
        {"Date,Close\n2024-01-02,1.5\n02/01/2024,1.6\n", "line 3: bad date"},
        {"Date,Time,Close\n2024-01-02,10:00,1.5\n2024-01-02,25:00,1.6\n", "line 3: bad time"},
        {"Date,Time,Close\n2024-01-02,10:00,1.5\n2024-01-02\n", "line 3: bad time"},
        {"Date;Close\n2024-01-02;1,5\n2024-01-03;1,5x\n", "line 3: bad close"},
        {"Date,Open,High,Low,Close\n2024-01-02,1,2,1,1.5\n2024-01-03,1,2,,1.5\n", "line 3: bad low"},
        {"Date,Close\n2024-01-02,1.5\n1969-12-31,1.5\n", "line 3: time out of range"},
        {"Date,Close\n2024-01-03,1.5\n2024-01-02,1.5\n", "line 3: time goes backwards"}};
    for (const auto& c : cases) {
        std::string error;
        auto i = Read(c.first, &error);
        ASSERT_NE(i, nullptr) << c.first << ": " << error;
        EXPECT_EQ(i->quotes().size(), 1u) << c.first;
        EXPECT_EQ(std::make_pair(i->skippedRows(), i->skippedSample()), std::make_pair(std::size_t(1), std::string(c.second)))
            << c.first;
    }
    std::string error;
    EXPECT_EQ(Read("Day,Price\n2024-01-02,1.5\n", &error), nullptr);
    EXPECT_EQ(error, "the header needs a time column (time, or date, datetime or timestamp) and a close column");
}

TEST(CsvPriceReader, NamesAndPeriods) {
    using R = host::data::CsvPriceReader;
    EXPECT_EQ(R::nameFromPath("/a/b/usdchf-30min.csv"), "USDCHF");
    EXPECT_EQ(R::nameFromPath("ttrc-daily.csv"), "TTRC");
    EXPECT_EQ(R::nameFromPath("eurusd.csv"), "EURUSD");
    const std::tuple<std::int64_t, char, int> cases[] = {
        {1800, 'I', 30}, {3600, 'I', 60}, {86400, 'D', 1}, {3 * 86400, 'D', 1}, {604800, 'W', 1},
        {31 * 86400, 'M', 1}, {366 * 86400, 'Y', 1}, {0, 'I', 0}, {45, 'I', 0}};
    for (const auto& c : cases) {
        const namePeriod p = R::periodFromSpacing(std::get<0>(c));
        EXPECT_EQ(std::make_pair(char(p.type), int(p.length)), std::make_pair(std::get<1>(c), std::get<2>(c))) << std::get<0>(c);
    }
}

TEST(DataCoreInstruments, BuiltInsLoadOnFirstUseAndNamesAreUnique) {
    host::Host h;
    host::DataCore core(h);
    EXPECT_EQ(core.instrumentNames(), (std::vector<std::string>{"TTRC", "USDCHF"}));
    EXPECT_NE(core.instrument("USDCHF"), nullptr);
    EXPECT_EQ(core.instrument("usdchf"), nullptr);
    std::string error;
    EXPECT_EQ(core.loadInstrument(host::DataCore::builtInPath("USDCHF"), host::InstrumentOptions(), &error), nullptr);
    EXPECT_NE(error.find("already loaded"), std::string::npos);
    host::data::Instrument* held = core.loadInstrument(host::DataCore::builtInPath("TTRC"), {"HELD", 0});
    ASSERT_NE(held, nullptr);
    EXPECT_TRUE(held->quotes().empty());
    EXPECT_EQ(held->pendingCount(), 5550u);
    // A chart of an empty series is empty and fills as quotes arrive.
    void* chart = core.createChart("HELD", ChartType::Renko);
    ASSERT_NE(chart, nullptr);
    EXPECT_EQ(+core.arrays(chart)[0]->pointCount, 0);
    EXPECT_EQ(static_cast<void*>(core.arrays(chart)[0]->points), nullptr);
    EXPECT_EQ(core.replay("HELD", 10000), 5550u);
    EXPECT_GT(+core.arrays(chart)[0]->pointCount, 0);

    // The last quotes held back instead of the first ones kept.
    host::data::Instrument* tail = core.loadInstrument(host::DataCore::builtInPath("TTRC"), {"TAIL", -1, 500});
    ASSERT_NE(tail, nullptr);
    EXPECT_EQ(std::make_pair(tail->quotes().size(), tail->pendingCount()), std::make_pair(std::size_t(5050), std::size_t(500)));
    EXPECT_EQ(+core.arrays(core.baseHandle("TAIL"))[0]->pointCount, 5050);
}
