// The data source against a fake host: the create record byte by byte, subscriptions, the
// array list at construction and at each update, and the neutral results without a host.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "FakeHost.h"
#include "abi/messages.h"
#include "data/DataSource.h"
#include "module/CModule.h"

namespace {

class TestModule : public CModule {
public:
    TestModule() : CModule("Test module", 1, 1, 9, "TestLog", "CTranslatePFgraph") {}
    void Attach(FakeHost& host) { InitializeWrap(host.callback(), host.callback(), host.handle(), nullptr); }
};

void* Handle(std::intptr_t v) { return reinterpret_cast<void*>(v); }

std::u16string Utf16(const std::string& s) { return std::u16string(s.begin(), s.end()); }

void SetName(coreNameInstrument& name, const std::string& wide, const char* narrow) {
    const std::u16string w = Utf16(wide);
    std::memcpy(name.name, w.c_str(), (w.size() + 1) * 2);
    std::strncpy(name.secondName, narrow, sizeof name.secondName - 1);
}

struct HostArrays {
    fxDataPointArray arrays[3];
    fxDataPointArray base;
    HostArrays() {
        std::memset(arrays, 0, sizeof arrays);
        std::memset(&base, 0, sizeof base);
        SetName(arrays[0].name, "USDCHF Renko", "");
        SetName(arrays[1].name, "second", "");
        SetName(arrays[2].name, "third", "");
        SetName(base.name, "USD/CHF", "usdchf");
    }
};

// Byte offsets of the create record; pointer fields are 4 bytes on the terminal.
constexpr std::size_t P = sizeof(void*);
#if PF_ABI_32
static_assert(P + 765 == 769 && 2 * P + 778 == 786 && 2 * P + 786 == 794, "terminal offsets");
#endif

template <typename T>
T At(const std::vector<unsigned char>& bytes, std::size_t offset) {
    T v;
    std::memcpy(&v, bytes.data() + offset, sizeof v);
    return v;
}

struct DataSourceTest : ::testing::Test {
    FakeHost host;
    TestModule module;
    HostArrays data;
    void* const dataHandle = Handle(0x2001);
    void* const baseHandle = Handle(0x2002);
    std::int32_t hostCount = 3;
    std::vector<std::int32_t> listCounts;  // count of each list the host was given

    void SetUp() override {
        module.Attach(host);
        host.on(MSG_DPA_COUNT, [this](void*, std::intptr_t, std::intptr_t p2) {
            *reinterpret_cast<std::int32_t*>(p2) = hostCount;
            return 0;
        });
        host.on(MSG_DPA_LIST, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            auto* list = reinterpret_cast<coreListCreateData*>(p2);
            listCounts.push_back(list->count);
            for (int i = 0; i < list->count && i < 3; ++i)
                list->arrays[i] = Handle(p1) == baseHandle ? &data.base : &data.arrays[i];
            return 0;
        });
    }

    coreNameInstrument Instrument() const {
        coreNameInstrument name;
        std::memset(&name, 0, sizeof name);
        SetName(name, "USDCHF", "chf");
        name.period = namePeriod{'D', 1};
        return name;
    }
};

}  // namespace

TEST_F(DataSourceTest, CreateFillsTheRecordAndReturnsTheHostsHandle) {
    std::vector<unsigned char> sent;
    host.on(MSG_CREATE_DPA, [&](void* target, std::intptr_t p1, std::intptr_t p2) {
        EXPECT_EQ(target, host.handle());
        EXPECT_EQ(p2, 0);
        auto* bytes = reinterpret_cast<unsigned char*>(p1);
        sent.assign(bytes, bytes + sizeof(coreCreateDpaData));
        reinterpret_cast<coreCreateDpaData*>(p1)->handle = Handle(0x3003);
        return 0;
    });
    const std::u16string name = Utf16("EURUSD");
    void* handle = pf::DataSource::Create(&module, Handle(0x77), reinterpret_cast<const unsigned short*>(name.c_str()),
                                          "", namePeriod{'I', 15}, 1, nullptr);
    EXPECT_EQ(handle, Handle(0x3003));
    ASSERT_EQ(sent.size(), 2 * P + 798);
    EXPECT_EQ(At<void*>(sent, 0), Handle(0x77));
    EXPECT_EQ(At<char16_t>(sent, P), u'E');
    EXPECT_EQ(At<char16_t>(sent, P + 10), u'D');
    EXPECT_EQ(At<char16_t>(sent, P + 12), 0);
    EXPECT_EQ(sent[P + 510], 0);
    EXPECT_EQ(sent[P + 765], 'I');
    EXPECT_EQ(At<std::int32_t>(sent, P + 766), 15);
    EXPECT_EQ(At<std::int32_t>(sent, P + 770), 0);
    EXPECT_EQ(At<void*>(sent, P + 774), nullptr);  // the host writes the handle here
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 774), 0);
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 778), 1);
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 782), 0);
    for (std::size_t i = 2 * P + 786; i < sent.size(); ++i) EXPECT_EQ(sent[i], 0) << i;

    // A node is copied; overlong names and texts are cut with their terminators kept.
    const std::u16string longName(300, u'n');
    const std::string longText(300, 't');
    coreSzNode node{1, 2, 3};
    pf::DataSource::Create(&module, nullptr, reinterpret_cast<const unsigned short*>(longName.c_str()),
                           longText.c_str(), namePeriod{'W', 2}, -5, &node);
    EXPECT_EQ(At<char16_t>(sent, P + 2 * 253), u'n');
    EXPECT_EQ(At<char16_t>(sent, P + 2 * 254), 0);
    EXPECT_EQ(sent[P + 510 + 253], 't');
    EXPECT_EQ(sent[P + 510 + 254], 0);
    EXPECT_EQ(sent[P + 765], 'W');
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 778), -5);
    EXPECT_EQ(At<std::uint32_t>(sent, 2 * P + 786), 1u);
    EXPECT_EQ(At<std::uint32_t>(sent, 2 * P + 794), 3u);
}

TEST_F(DataSourceTest, SubscriptionsCarryTheHandleAndThePair) {
    void* firstSeen = nullptr;
    void* subscriberSeen = nullptr;
    std::intptr_t handleSeen = 0;
    const auto record = [&](void*, std::intptr_t p1, std::intptr_t p2) {
        handleSeen = p1;
        const auto* s = reinterpret_cast<const coreDpaSubscription*>(p2);
        firstSeen = s->first;
        subscriberSeen = s->subscriber;
        return 7;
    };
    host.on(MSG_DPA_SUBSCRIBE, record);
    host.on(MSG_DPA_UNSUBSCRIBE, record);
    EXPECT_EQ(pf::DataSource::Subscribe(&module, Handle(0x11), Handle(0x22), dataHandle), 7);
    EXPECT_EQ(handleSeen, 0x2001);
    EXPECT_EQ(firstSeen, Handle(0x11));
    EXPECT_EQ(subscriberSeen, Handle(0x22));
    EXPECT_EQ(pf::DataSource::Unsubscribe(&module, Handle(0x33), Handle(0x44), baseHandle), 7);
    EXPECT_EQ(handleSeen, 0x2002);
    EXPECT_EQ(subscriberSeen, Handle(0x44));
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{MSG_DPA_SUBSCRIBE, MSG_DPA_UNSUBSCRIBE}));
}

TEST_F(DataSourceTest, ConstructionFetchesAFirstArrayAndUpdatesReplaceTheList) {
    pf::DataSource source(&module, nullptr, dataHandle, Instrument(), baseHandle);
    ASSERT_EQ(host.messages(), std::vector<unsigned int>{MSG_DPA_LIST});
    EXPECT_EQ(host.calls()[0].p1, 0x2001);
    EXPECT_EQ(source.GetList().count, 1);
    EXPECT_EQ(source.GetName(), "USDCHF Renko");
    EXPECT_EQ(source.GetBaseName(), "USDCHF");

    host.clear();
    listCounts.clear();
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.reference = 4242;
    EXPECT_EQ(source.UpdateData(&update), 0);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{MSG_DPA_COUNT, MSG_DPA_LIST, MSG_DPA_LIST}));
    EXPECT_EQ(host.calls()[0].p1, 0x2001);
    EXPECT_EQ(host.calls()[1].p1, 0x2001);
    EXPECT_EQ(host.calls()[2].p1, 0x2002);
    EXPECT_EQ(listCounts, (std::vector<std::int32_t>{3, 1}));
    EXPECT_EQ(source.GetList().count, 3);
    EXPECT_EQ(source.GetArray(0), &data.arrays[0]);
    EXPECT_EQ(source.GetArray(2), &data.arrays[2]);
    EXPECT_EQ(source.GetArray(3), nullptr);
    EXPECT_EQ(source.GetName(), "USDCHF Renko");
    EXPECT_EQ(source.GetReference(), 4242);
    EXPECT_EQ(source.GetStatus(), 0);
    // The stored instrument takes the base series' names and keeps its period.
    EXPECT_EQ(source.GetBaseName(), "USD/CHF");
    EXPECT_STREQ(source.GetInstrument().secondName, "usdchf");
    EXPECT_EQ(source.GetInstrument().period.type, 'D');
}

TEST_F(DataSourceTest, ImplausibleCountsKeepThePreviousList) {
    pf::DataSource source(&module, nullptr, dataHandle, Instrument(), baseHandle);
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.reference = 9;
    for (std::int32_t count : {0, -3, pf::DataSource::kMaxArrays + 1}) {
        host.clear();
        hostCount = count;
        EXPECT_EQ(source.UpdateData(&update), 0);
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_DPA_COUNT}) << count;
        EXPECT_EQ(source.GetList().count, 1);
        EXPECT_EQ(source.GetArray(0), &data.arrays[0]);
        EXPECT_EQ(source.GetReference(), 0);
    }
}

TEST(DataSourceWithoutHost, EveryRequestIsSkippedWithItsNeutralResult) {
    FakeHost host;  // installed, but the module was never given its callback
    TestModule module;
    const unsigned short name[] = {'X', 0};
    EXPECT_EQ(pf::DataSource::Create(&module, nullptr, name, "", namePeriod{'D', 1}, 1, nullptr), nullptr);
    EXPECT_EQ(pf::DataSource::Create(nullptr, nullptr, name, "", namePeriod{'D', 1}, 1, nullptr), nullptr);
    EXPECT_EQ(pf::DataSource::Subscribe(&module, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(pf::DataSource::Unsubscribe(nullptr, nullptr, nullptr, nullptr), -1);

    coreNameInstrument instrument;
    std::memset(&instrument, 0, sizeof instrument);
    pf::DataSource source(&module, nullptr, Handle(1), instrument, Handle(2));
    EXPECT_EQ(source.GetList().count, 1);
    EXPECT_EQ(source.GetArray(0), nullptr);
    EXPECT_EQ(source.GetName(), QString());
    EXPECT_EQ(source.UpdateData(nullptr), 0);
    EXPECT_EQ(source.GetList().count, 1);
    EXPECT_TRUE(host.calls().empty());
}
