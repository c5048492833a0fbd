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

void* Handle(std::intptr_t v) { return reinterpret_cast<void*>(v); }
const unsigned short* Wide(const std::u16string& s) { return reinterpret_cast<const unsigned short*>(s.c_str()); }

void SetName(coreNameInstrument& name, const std::u16string& wide, const char* narrow) {
    std::memcpy(name.name, wide.c_str(), (wide.size() + 1) * 2);
    std::strncpy(name.secondName, narrow, sizeof name.secondName - 1);
}

// Byte offsets of the create record are given for 4-byte pointers (the terminal's); on
// wider builds the provider and handle fields widen in place.
constexpr std::size_t P = sizeof(void*);

template <typename T>
T At(const std::vector<unsigned char>& bytes, std::size_t offset) {
    T v;
    std::memcpy(&v, bytes.data() + offset, sizeof v);
    return v;
}

struct DataSourceTest : ::testing::Test {
    FakeHost host;
    CModule module{"Test module", 1, 1, 9, "TestLog", "CTranslatePFgraph"};
    fxDataPointArray arrays[3] = {};
    fxDataPointArray base{};
    void* const dataHandle = Handle(0x2001);
    void* const baseHandle = Handle(0x2002);
    std::int32_t hostCount = 3;
    std::vector<std::int32_t> listCounts;  // the count of each list the host filled
    coreNameInstrument instrument{};

    void SetUp() override {
        SetName(arrays[0].name, u"USDCHF Renko", "");
        SetName(base.name, u"USD/CHF", "usdchf");
        SetName(instrument, u"USDCHF", "chf");
        instrument.period = namePeriod{'D', 1};
        host.attach(module);
        host.fill<std::int32_t>(MSG_DPA_COUNT, [this](std::int32_t* count) { *count = hostCount; }, true);
        host.on(MSG_DPA_LIST, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            auto* list = reinterpret_cast<coreListCreateData*>(p2);
            listCounts.push_back(list->count);
            for (int i = 0; i < list->count && i < 3; ++i)
                list->arrays[i] = Handle(p1) == baseHandle ? &base : &arrays[i];
            return 0;
        });
    }
};

}  // namespace

TEST_F(DataSourceTest, CreateFillsTheRecordAndReturnsTheHostsHandle) {
    std::vector<unsigned char> sent;
    host.fill<coreCreateDpaData>(MSG_CREATE_DPA, [&](coreCreateDpaData* r) {
        sent.assign(reinterpret_cast<unsigned char*>(r), reinterpret_cast<unsigned char*>(r + 1));
        r->handle = Handle(0x3003);
    });
    EXPECT_EQ(pf::DataSource::Create(&module, Handle(0x77), Wide(u"EURUSD"), "", namePeriod{'I', 15}, 1, nullptr),
              Handle(0x3003));
    ASSERT_EQ(sent.size(), 798 + 2 * P);  // 806 on the terminal
    EXPECT_EQ(At<void*>(sent, 0), Handle(0x77));
    EXPECT_EQ(At<char16_t>(sent, P + 10), u'D');
    EXPECT_EQ(At<char16_t>(sent, P + 12), 0);
    EXPECT_EQ(sent[P + 765], 'I');                       // 769
    EXPECT_EQ(At<std::int32_t>(sent, P + 766), 15);      // 770
    EXPECT_EQ(At<std::int32_t>(sent, P + 770), 0);       // 774
    EXPECT_EQ(At<void*>(sent, P + 774), nullptr);        // 778: the handle, written by the host
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 774), 0);   // 782
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 778), 1);   // 786
    for (std::size_t i = 2 * P + 782; i < sent.size(); ++i) EXPECT_EQ(sent[i], 0) << i;

    // A node is copied; overlong names and texts are cut with their terminators kept.
    coreSzNode node{1, 2, 3};
    pf::DataSource::Create(&module, nullptr, Wide(std::u16string(300, u'n')), std::string(300, 't').c_str(),
                           namePeriod{'W', 2}, -5, &node);
    EXPECT_EQ(At<char16_t>(sent, P + 2 * 253), u'n');
    EXPECT_EQ(At<char16_t>(sent, P + 2 * 254), 0);
    EXPECT_EQ(sent[P + 510 + 253], 't');
    EXPECT_EQ(sent[P + 510 + 254], 0);
    EXPECT_EQ(At<std::int32_t>(sent, 2 * P + 778), -5);
    EXPECT_EQ(At<std::uint32_t>(sent, 2 * P + 786), 1u);  // 794
    EXPECT_EQ(At<std::uint32_t>(sent, 2 * P + 794), 3u);
}

TEST_F(DataSourceTest, SubscriptionsCarryTheHandleAndThePair) {
    std::vector<std::intptr_t> seen;
    const auto record = [&](void*, std::intptr_t p1, std::intptr_t p2) {
        const auto* s = reinterpret_cast<const coreDpaSubscription*>(p2);
        seen.insert(seen.end(), {p1, reinterpret_cast<std::intptr_t>(s->first), reinterpret_cast<std::intptr_t>(s->subscriber)});
        return 7;
    };
    host.on(MSG_DPA_SUBSCRIBE, record);
    host.on(MSG_DPA_UNSUBSCRIBE, record);
    EXPECT_EQ(pf::DataSource::Subscribe(&module, Handle(0x11), Handle(0x22), dataHandle), 7);
    EXPECT_EQ(pf::DataSource::Unsubscribe(&module, Handle(0x33), Handle(0x44), baseHandle), 7);
    EXPECT_EQ(seen, (std::vector<std::intptr_t>{0x2001, 0x11, 0x22, 0x2002, 0x33, 0x44}));
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{MSG_DPA_SUBSCRIBE, MSG_DPA_UNSUBSCRIBE}));
}

TEST_F(DataSourceTest, ConstructionFetchesAFirstArrayAndUpdatesReplaceTheList) {
    pf::DataSource source(&module, nullptr, dataHandle, instrument, baseHandle);
    ASSERT_EQ(host.messages(), std::vector<unsigned int>{MSG_DPA_LIST});
    EXPECT_EQ(source.GetList().count, 1);
    EXPECT_EQ(source.GetName(), "USDCHF Renko");
    EXPECT_EQ(source.GetBaseName(), "USDCHF");

    host.clear();
    listCounts.clear();
    coreCoreUpdateDpaData update{};
    update.reference = 4242;
    EXPECT_EQ(source.UpdateData(&update), 0);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{MSG_DPA_COUNT, MSG_DPA_LIST, MSG_DPA_LIST}));
    EXPECT_EQ(host.calls()[1].p1, 0x2001);
    EXPECT_EQ(host.calls()[2].p1, 0x2002);
    EXPECT_EQ(listCounts, (std::vector<std::int32_t>{3, 1}));
    EXPECT_EQ(source.GetList().count, 3);
    EXPECT_EQ(source.GetArray(2), &arrays[2]);
    EXPECT_EQ(source.GetArray(3), nullptr);
    EXPECT_EQ(source.GetReference(), 4242);
    // The stored instrument takes the base series' names and keeps its period.
    EXPECT_EQ(source.GetBaseName(), "USD/CHF");
    EXPECT_STREQ(source.GetInstrument().secondName, "usdchf");
    EXPECT_EQ(source.GetInstrument().period.type, 'D');

    // No arrays, a negative or an absurd count: the previous list stays.
    for (std::int32_t count : {0, -3, pf::DataSource::kMaxArrays + 1}) {
        host.clear();
        hostCount = count;
        update.reference = 9;
        EXPECT_EQ(source.UpdateData(&update), 0);
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_DPA_COUNT}) << count;
        EXPECT_EQ(source.GetList().count, 3);
        EXPECT_EQ(source.GetReference(), 4242);
    }
}

TEST(DataSourceWithoutHost, EveryRequestIsSkippedWithItsNeutralResult) {
    FakeHost host;  // installed, but the module was never given its callback
    CModule module("Test module", 1, 1, 9, "TestLog", "CTranslatePFgraph");
    EXPECT_EQ(pf::DataSource::Create(&module, nullptr, Wide(u"X"), "", namePeriod{'D', 1}, 1, nullptr), nullptr);
    EXPECT_EQ(pf::DataSource::Subscribe(&module, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(pf::DataSource::Unsubscribe(nullptr, nullptr, nullptr, nullptr), -1);
    pf::DataSource source(&module, nullptr, Handle(1), coreNameInstrument{}, Handle(2));
    EXPECT_EQ(source.UpdateData(nullptr), 0);
    EXPECT_EQ(source.GetList().count, 1);
    EXPECT_EQ(source.GetArray(0), nullptr);
    EXPECT_TRUE(source.GetName().isEmpty());
    EXPECT_TRUE(host.calls().empty());
}
