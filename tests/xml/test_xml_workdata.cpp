// CXMLWorkData without the real store: attribute encodings on its local cache when it has
// no host (writes stay local), and the messages it exchanges with a scripted host that may
// misbehave the way a real one could (bad lengths, missing terminators, odd counts). The
// text each typed write leaves in the file is checked by the round trip through the store.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <tuple>

#include "FakeHost.h"
#include "xml/CXMLWorkData.h"

namespace {

void* handle(std::uintptr_t h) { return reinterpret_cast<void*>(h); }

struct ScriptedEntry {
    std::string name;      // bytes copied into the record, up to 255
    QString value;
    std::int32_t length;   // reported by 3169
    std::int32_t kind;
    std::uintptr_t node;
};

struct Exchange : ::testing::Test {
    FakeHost host;
    std::vector<ScriptedEntry> entries;
    std::int32_t reportedCount = -2;  // -2: the number of entries
    bool countAsResult = false;       // 3170 answers the count instead of writing the slot
    std::vector<std::pair<std::string, QString> > written;
    std::int32_t writtenCount = -1;
    bool writtenNullArray = false;
    std::vector<coreSzNode> addressed;  // the node record of every message, as sent

    void SetUp() override {
        host.on(MSG_WD_PARAM_COUNT, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            addressed.push_back(*reinterpret_cast<const coreSzNode*>(p1));
            const std::int32_t count = reportedCount == -2 ? std::int32_t(entries.size()) : reportedCount;
            if (countAsResult) {
                EXPECT_EQ(*reinterpret_cast<std::int32_t*>(p2), CXMLWorkData::kCountUnwritten);
                return int(count);
            }
            *reinterpret_cast<std::int32_t*>(p2) = count;
            return 0;
        });
        host.on(MSG_WD_PARAM_LENGTHS, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            addressed.push_back(*reinterpret_cast<const coreSzNode*>(p1));
            auto* list = reinterpret_cast<coreSzParamList*>(p2);
            for (int i = 0; i < list->count && i < int(entries.size()); ++i)
                list->params[i].valueLength = entries[i].length;
            return 0;
        });
        host.on(MSG_WD_READ_PARAMS, [this](void*, std::intptr_t p1, std::intptr_t p2) {
            addressed.push_back(*reinterpret_cast<const coreSzNode*>(p1));
            auto* list = reinterpret_cast<coreSzParamList*>(p2);
            for (int i = 0; i < list->count && i < int(entries.size()); ++i) {
                coreSzParam& p = list->params[i];
                const ScriptedEntry& e = entries[i];
                std::memcpy(p.name, e.name.data(), std::min<std::size_t>(e.name.size(), 255));
                // Fills the whole buffer when the value is long enough: no terminator.
                const int n = std::min<int>(e.value.size(), int(p.valueLength));
                std::memcpy(p.value, e.value.utf16(), n * sizeof(coreWChar));
                p.kind = e.kind;
                p.node = handle(e.node);
            }
            return 0;
        });
        host.on(MSG_WD_WRITE_PARAMS, [this](void*, std::intptr_t, std::intptr_t p2) {
            auto* list = reinterpret_cast<coreSzParamList*>(p2);
            writtenCount = list->count;
            writtenNullArray = list->params == nullptr;
            for (int i = 0; i < list->count; ++i) {
                const coreSzParam& p = list->params[i];
                EXPECT_EQ(int(p.valueLength), int(std::char_traits<char16_t>::length(
                                             reinterpret_cast<const char16_t*>(p.value))) + 1);
                written.emplace_back(std::string(p.name, strnlen(p.name, sizeof p.name)),
                                     QString::fromUtf16(reinterpret_cast<const char16_t*>(p.value)));
            }
            return 0;
        });
    }

    std::unique_ptr<CXMLWorkData> open() {
        return std::unique_ptr<CXMLWorkData>(
            new CXMLWorkData(host.handle(), handle(0x2000), handle(0x2010), host.callback()));
    }
};

TEST_F(Exchange, ReadingAsksCountThenLengthsThenFillsAndSortsEntries) {
    entries = {{"Zeta", "z", 2, 0, 0x2010},
               {"PFArea", "", 1, CORE_SZ_PARAM_CHILD, 0x2030},
               {"Alpha", "a", 2, 7, 0x2010},
               {"PFArea", "", 1, CORE_SZ_PARAM_CHILD, 0x2020}};
    auto data = open();
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{MSG_WD_PARAM_COUNT, MSG_WD_PARAM_LENGTHS,
                                                          MSG_WD_READ_PARAMS}));
    for (const FakeHost::Call& call : host.calls()) EXPECT_EQ(call.target, host.handle());
    ASSERT_EQ(addressed.size(), 3u);
    for (const coreSzNode& node : addressed)
        EXPECT_EQ(std::make_pair(std::uint32_t(node.document), std::uint32_t(node.node)), std::make_pair(0x2000u, 0x2010u));
    ASSERT_EQ(data->children().size(), 2u);  // children keep the host's order
    EXPECT_EQ(std::make_pair(data->children()[0].node, data->children()[1].node),
              std::make_pair(handle(0x2030), handle(0x2020)));
    ASSERT_EQ(data->attributeCount(), 2);
    EXPECT_EQ(data->attributes().begin()->name, "Alpha");
    EXPECT_EQ(data->readString("Zeta"), "z");
}

TEST_F(Exchange, HostileCountsLengthsNamesAndValuesStayInBounds) {
    entries = {{"A", "1", 2, 0, 0x2010}};
    for (std::int32_t count : {0, -1, -2147483647 - 1, CXMLWorkData::kMaxEntries + 1}) {
        host.clear();
        reportedCount = count;
        EXPECT_EQ(open()->attributeCount(), 0) << count;
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_WD_PARAM_COUNT}) << "nothing read further";
    }
    reportedCount = -2;
    const std::string longName(300, 'n');
    entries = {{"Negative", "lost", -5, 0, 0},
               {"Huge", "lost", CXMLWorkData::kMaxValueUnits + 1, 0, 0},
               {longName, "v", 2, 0, 0},
               {"Unterminated", "abcdef", 3, 0, 0},
               {"Zero", "lost", 0, 0, 0}};
    auto data = open();
    for (const char* lost : {"Negative", "Huge", "Zero"}) EXPECT_EQ(data->readString(lost, "default"), "") << lost;
    EXPECT_EQ(data->readString(std::string(255, 'n').c_str()), "v");
    EXPECT_EQ(data->readString("Unterminated"), "ab") << "cut at the end of its buffer";
}

TEST_F(Exchange, WritingSendsTheSetInNameOrderOrANullArray) {
    auto data = open();
    host.clear();
    EXPECT_EQ(data->writeParameters(), 0);
    EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_WD_WRITE_PARAMS});
    EXPECT_EQ(writtenCount, 0);
    EXPECT_TRUE(writtenNullArray);

    data->writeInteger("b", 2);
    data->writeString("a", QString::fromUtf8("\xe2\x82\xac"));
    data->writeString(std::string(300, 'x').c_str(), "long name");
    EXPECT_EQ(data->writeParameters(), 0);
    ASSERT_EQ(writtenCount, 3);
    EXPECT_EQ(written[0], std::make_pair(std::string("a"), QString::fromUtf8("\xe2\x82\xac")));
    EXPECT_EQ(written[1], std::make_pair(std::string("b"), QString("2")));
    EXPECT_EQ(written[2].first.size(), 255u) << "names are cut to 255 bytes";
}

TEST_F(Exchange, CreateNodeGivesNullUnlessTheHostReturnsAHandle) {
    auto data = open();
    coreCreateNode seen;
    void* answer = nullptr;
    int result = 0;
    host.on(MSG_WD_CREATE_NODE, [&](void*, std::intptr_t p1, std::intptr_t) {
        auto* r = reinterpret_cast<coreCreateNode*>(p1);
        seen = *r;
        r->result = answer;
        return result;
    });
    EXPECT_EQ(data->createNode("PFChart", 3), nullptr);
    EXPECT_STREQ(seen.name, "PFChart");
    EXPECT_EQ(std::make_pair(static_cast<void*>(seen.parent), int(seen.flag)), std::make_pair(handle(0x2010), 3));
    answer = handle(0x2040);
    result = 1;
    EXPECT_EQ(data->createNode("PFChart"), nullptr);
    result = 0;
    std::unique_ptr<CXMLWorkData> child(data->createNode("PFChart"));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->node(), handle(0x2040));
    std::unique_ptr<CXMLWorkData> again(data->getFirstNode("PFChart"));
    ASSERT_NE(again, nullptr) << "a created child is found by name";
    EXPECT_EQ(again->node(), handle(0x2040));
}

TEST_F(Exchange, HeadNodeAndArrayOriginAreKeptAsAttributes) {
    host.on(MSG_HEAD_NODE_INFO, [](void*, std::intptr_t p1, std::intptr_t p2) {
        if (p1 != 0x3000) return 1;
        auto* info = reinterpret_cast<coreHeadNodeInfo*>(p2);
        std::memset(info->interfaceName, 'I', sizeof info->interfaceName);  // no terminator
        std::strcpy(info->provider, "TELVIX");
        std::strcpy(info->name, "PF EURUSD");
        return 0;
    });
    auto data = open();
    data->writeHeadNode(handle(0x3001));
    EXPECT_FALSE(data->hasAttribute("FInterface")) << "nothing is written when 3012 fails";

    fxDataPointArray dpa{};
    const QString instrument = QString::fromUtf8("EUR/USD \xc2\xb5");
    std::memcpy(dpa.name.name, instrument.utf16(), instrument.size() * sizeof(coreWChar));
    std::strcpy(dpa.name.secondName, "Bid");
    dpa.name.period = namePeriod{'I', 15};
    dpa.name.value = -3;
    dpa.owner = handle(0x3000);
    data->writeDpaInfo(&dpa);
    EXPECT_EQ(data->readString("FInterface"), QString(255, 'I'));

    coreDemandsIndicator info;
    int found = -1;
    EXPECT_TRUE(data->readDpaInfo(&info, &found));
    EXPECT_EQ(found, 1);
    EXPECT_EQ(std::memcmp(info.instrument.name, dpa.name.name, sizeof dpa.name.name), 0);
    EXPECT_STREQ(info.instrument.secondName, "Bid");
    EXPECT_EQ(std::make_tuple(char(info.instrument.period.type), int(info.instrument.period.length),
                              int(info.instrument.value)), std::make_tuple('I', 15, -3));
    EXPECT_EQ(std::string(info.head.provider) + "/" + info.head.name, "TELVIX/PF EURUSD");
    EXPECT_EQ(std::strlen(info.head.interfaceName), 254u) << "255-byte buffer, terminated";

    CXMLWorkData empty(nullptr, nullptr, static_cast<void*>(nullptr), nullptr);
    EXPECT_FALSE(empty.readDpaInfo(&info, &found));
    EXPECT_EQ(found, 0);
}

// ---- no host ----

struct Detached : ::testing::Test {
    CXMLWorkData data{nullptr, nullptr, static_cast<void*>(nullptr), nullptr};
    QString text(const char* name) const { return data.readString(name, QStringLiteral("<absent>")); }
};

TEST_F(Detached, TypicalPricesSurviveFloatPrecision8AndANameWrittenTwiceIsOneEntry) {
    for (float v : {1.2345f, 0.1f, 123.456f, 1.0e-6f, 98765.43f, -0.00042f, 3.4e38f}) {
        data.writeFloat("v", v, 8);
        EXPECT_EQ(data.readFloat("v"), v) << v;
    }
    data.writeString("v", QStringLiteral("two"));
    ASSERT_EQ(data.attributeCount(), 1);
    EXPECT_EQ(text("v"), "two");
}

TEST_F(Detached, ColourStringsNeedThreeDecimalsInRange) {
    const QColor fallback(1, 2, 3);
    const struct {
        const char* text;
        QColor expected;
    } cases[] = {{"255,0,0", QColor(255, 0, 0, 255)}, {"0,128,255", QColor(0, 128, 255)},
                 {"red", fallback},  {"255,0", fallback},  {"255,0,0,0", fallback},
                 {"256,0,0", fallback}, {"-1,0,0", fallback}, {"", fallback}, {"1,,2", fallback}};
    for (const auto& c : cases) {
        data.writeString("c", c.text);
        EXPECT_EQ(data.readColorString("c", fallback), c.expected) << c.text;
    }
    EXPECT_EQ(data.readColorString("absent", fallback), fallback);
}

TEST_F(Detached, StringBuffersAreBoundedAndTerminated) {
    data.writeString("s", QString::fromUtf8("h\xc3\xa9llo"));
    char narrow[4];
    std::memset(narrow, 'x', sizeof narrow);
    EXPECT_TRUE(data.readString("s", narrow, 4));
    EXPECT_STREQ(narrow, "h\xc3\xa9");
    coreWChar wide[3] = {9, 9, 9};
    EXPECT_TRUE(data.readString("s", wide, 3));
    EXPECT_EQ(wide[0], 'h');
    EXPECT_EQ(wide[1], 0xE9);
    EXPECT_EQ(wide[2], 0);
    char untouched = 'x';
    data.readString("s", &untouched, 0);
    EXPECT_EQ(untouched, 'x');
    EXPECT_FALSE(data.readString("absent", narrow, 4, "default"));
    EXPECT_STREQ(narrow, "def");

    const coreWChar unterminated[] = {'a', 'b', 'c'};
    data.writeString("w", unterminated, 2);
    EXPECT_EQ(text("w"), "ab");
}

TEST_F(Detached, WithoutAHostNothingIsSentAndNavigationGivesNull) {
    data.writeInteger("k", 1);
    EXPECT_EQ(data.writeParameters(), 1);
    EXPECT_EQ(data.createNode("child"), nullptr);
    EXPECT_EQ(data.getFirstNode("child"), nullptr);
    EXPECT_EQ(data.getCountParamsInTag(), 0);
    data.writeFont("font", QFont("Arial", 9));
    EXPECT_EQ(data.readFont("font", QFont("Courier", 5)).family(), "Courier");
    CXMLWorkData byName(nullptr, nullptr, "Root", nullptr);
    EXPECT_FALSE(byName.isValid());
}

TEST_F(Exchange, TheCountIsTakenFromTheSlotOrFromTheAnswer) {
    entries = {{"A", "1", 2, 0, 0x2010}, {"PFArea", "", 1, CORE_SZ_PARAM_CHILD, 0x2020}};
    for (bool asResult : {false, true}) {
        countAsResult = asResult;
        auto data = open();
        EXPECT_EQ(data->readString("A"), "1") << asResult;
        EXPECT_EQ(data->children().size(), 1u) << asResult;
        EXPECT_EQ(data->getCountParamsInTag(), 2) << asResult;
    }
    // Answered counts keep the same bounds as written ones.
    for (std::int32_t count : {0, -3, CXMLWorkData::kMaxEntries + 1}) {
        host.clear();
        reportedCount = count;
        EXPECT_EQ(open()->attributeCount(), 0) << count;
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_WD_PARAM_COUNT}) << count;
    }
    // A host that writes the slot and answers failure gives nothing.
    countAsResult = false;
    reportedCount = -2;
    host.on(MSG_WD_PARAM_COUNT, [](void*, std::intptr_t, std::intptr_t p2) {
        *reinterpret_cast<std::int32_t*>(p2) = 2;
        return 1;
    });
    host.clear();
    EXPECT_EQ(open()->attributeCount(), 0);
    EXPECT_EQ(host.messages(), std::vector<unsigned int>{MSG_WD_PARAM_COUNT});
}

TEST_F(Exchange, EntriesWithAnEmptyNameAreKept) {
    entries = {{"", "anonymous", 10, 0, 0x2010}, {"", "", 1, CORE_SZ_PARAM_CHILD, 0x2030}, {"B", "b", 2, 0, 0x2010}};
    auto data = open();
    EXPECT_EQ(data->attributeCount(), 2);
    EXPECT_EQ(data->readString(""), "anonymous");
    ASSERT_EQ(data->children().size(), 1u);
    EXPECT_EQ(data->children()[0].node, handle(0x2030));
}

}  // namespace
