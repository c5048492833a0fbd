// The module frame on its own: log, log helper, interface look-up, events, languages and
// fonts, translation and date-time, against a fake host callback.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "FakeHost.h"
#include "module/CModule.h"
#include "module/DateTime.h"
#include "module/Log.h"
#include "module/LogHelper.h"

namespace {

// Every record the log sink received, as "type level name: text".
std::vector<std::string> g_sink;

int TestSink(const coreLogMessage* m) {
    g_sink.push_back(QString("%1 %2 %3: %4").arg(int(m->type)).arg(int(m->level))
                         .arg(QString::fromUtf16(reinterpret_cast<const char16_t*>(m->logName)), QString::fromUtf16(reinterpret_cast<const char16_t*>(m->text))).toStdString());
    return 0;
}

// Makes the fake host hand out TestSink on 3205.
void ServeSink(FakeHost& host) {
    g_sink.clear();
    host.fill<coreLogSink>(MSG_LOG_BIND, [](coreLogSink* sink) { *sink = &TestSink; });
}

class TestModule : public CModule {
public:
    TestModule() : CModule("Test module", 1, 2, 3, "TestLog", "TestContext") {}
};

coreLanguage Language(const char* name, int selected) {
    coreLanguage l{};
    std::strncpy(l.name, name, sizeof l.name - 1);
    l.selected = selected;
    return l;
}

// Installs a language list on the fake host for 3116/3117.
void ServeLanguages(FakeHost& host, std::vector<coreLanguage> list) {
    host.fill<coreLanguageRequest>(MSG_LANGUAGE_COUNT, [list](coreLanguageRequest* r) { r->count = std::int32_t(list.size()); });
    host.fill<coreLanguageRequest>(MSG_LANGUAGE_LIST, [list](coreLanguageRequest* r) {
        for (int i = 0; i < r->count && i < int(list.size()); ++i) r->languages[i] = list[i];
    });
}

}  // namespace

TEST(Log, LevelsSendingAndTypeFilterThroughTheHostSink) {
    FakeHost host;
    ServeSink(host);
    Log log;
    log.Create(QStringLiteral("PFChartModule"), host.callback(), host.handle());
    const int levels[] = {0, 5, 4, 3, 2};  // stream codes 0..4 set the levels in reverse
    for (int code = 0; code <= 4; ++code) {
        log << eLogMsgType(code);
        EXPECT_EQ(log.Level(), levels[code]) << "code " << code;
    }
    log << eLogMsgType(9);  // above 5: nothing happens
    EXPECT_EQ(log.Level(), 2);
    EXPECT_TRUE(g_sink.empty());

    // Code 5 sends one message and empties the text.
    log << LOG_LEVEL5 << "value " << 42 << ' ' << QStringLiteral("ü") << LOG_SEND;
    EXPECT_EQ(log.Text(), QString());
    EXPECT_EQ(log.TextLength(), 1);
    // ShowLogInfo sends only types 0 and 1.
    log.ShowLogInfo(coreLogMsgType(2), coreLogMsgLevel(4), QStringLiteral("ignored"));
    EXPECT_EQ(log.Text(), QString());
    log.ShowLogInfo(coreLogMsgType(0), coreLogMsgLevel(4), QStringLiteral("shown"));
    EXPECT_EQ(g_sink, (std::vector<std::string>{"1 5 PFChartModule: value 42 ü", "0 4 PFChartModule: shown"}));
}

TEST(Log, BufferGrowsByTheLargerOfSumAndDoubleAndWithoutSinkTextIsCleared) {
    Log log;
    EXPECT_EQ(log.TextCapacity(), 32);
    log << QString(40, QLatin1Char('x'));
    EXPECT_EQ(log.TextCapacity(), 73);  // 41 + 32 beats 2 * 32
    EXPECT_EQ(log.TextLength(), 41);
    log << QString(40, QLatin1Char('y'));
    EXPECT_EQ(log.TextCapacity(), 146);  // 2 * 73 beats 41 + 73
    EXPECT_EQ(log.Text(), QString(40, QLatin1Char('x')) + QString(40, QLatin1Char('y')));

    log.Create(QStringLiteral("PFChartModule"), nullptr, nullptr);
    EXPECT_EQ(log.SendMessage(), 1);
    log << "lost" << LOG_SEND;
    EXPECT_EQ(log.Text(), QString());
}

TEST(LogHelper, ReachesTheLogOfTheLiveModuleOnly) {
    EXPECT_EQ(LogHelper::GetLog(), nullptr);
    EXPECT_EQ(LogHelper::ShowLogInfo(1, 5, QStringLiteral("nobody")), 1);
    {
        TestModule module;
        EXPECT_EQ(LogHelper::GetLog(), module.GetLog());
    }
    EXPECT_EQ(LogHelper::GetLog(), nullptr);
}

TEST(CModule, InformationRecordStoresNumbersInReverse) {
    TestModule module;
    const MODULE_INFO& info = module.Info();
    EXPECT_STREQ(info.name, "Test module");
    EXPECT_STREQ(info.description, "Noname module");
    // Packed fields are copied out before comparing (gtest binds references).
    EXPECT_EQ(std::vector<int>({info.number3, info.number2, info.number1, info.fixed8, info.kind}),
              std::vector<int>({3, 2, 1, 8, 20}));
    EXPECT_EQ(std::string(info.translateContext, 11), "TestContext");

    CModule unnamed(nullptr, 1, 1, 1, "L", "a-context-longer-than-twenty");
    EXPECT_EQ(unnamed.Info().name[0], 0);
    EXPECT_EQ(unnamed.Info().description[0], 0);
    // Cut at 20 bytes with no terminator of its own.
    EXPECT_EQ(std::string(unnamed.Info().translateContext, 20), "a-context-longer-tha");
    EXPECT_EQ(unnamed.GetModuleInfoWrap(nullptr), 0);
}

TEST(CModule, InterfaceRequestCutsNameAndProviderToTheKindsLength) {
    FakeHost host;
    std::string seen;
    host.fill<coreInterfaceRequest>(MSG_GET_INTERFACE, [&](coreInterfaceRequest* r) {
        seen = std::string(r->kind) + "/" + r->provider + "/" + r->name + "/" + std::to_string(r->count);
        r->result[0] = reinterpret_cast<void*>(std::intptr_t(0x4242));
    });
    TestModule module;
    EXPECT_EQ(module.getInterface("AB", "CANDLE_TELVIX", "TELVIX"), nullptr);  // no callback yet
    host.attach(module);
    EXPECT_EQ(module.getInterface("AB", "CANDLE_TELVIX", "TELVIX"), reinterpret_cast<void*>(std::intptr_t(0x4242)));
    EXPECT_EQ(seen, "AB/TE/CA/1");
}

TEST(CModule, EventsUnknownNamesAreLoggedAndSubscriptionsCarryIdObjectAndMinusOne) {
    FakeHost host;
    ServeSink(host);
    host.fill<coreEventCreate>(MSG_EVENT_CREATE, [](coreEventCreate* r) { r->id = 77; });
    coreEventSubscribe subscribed{};
    host.fill<coreEventSubscribe>(MSG_EVENT_SUBSCRIBE, [&](coreEventSubscribe* r) { subscribed = *r; });
    TestModule module;
    EXPECT_EQ(module.UnSubscribeEvent(), 0);  // no callback: nothing sent
    EXPECT_TRUE(host.calls().empty());
    host.attach(module);
    module.GetLog()->Create(QStringLiteral("TestLog"), host.callback(), host.handle());

    FXEvent event;
    std::memset(&event, 0xAB, sizeof event);
    EXPECT_EQ(module.EmitEvent("Missing", event), 1);
    for (std::size_t i = 0; i < sizeof event; ++i) ASSERT_EQ(reinterpret_cast<unsigned char*>(&event)[i], 0xAB);
    EXPECT_EQ(g_sink, std::vector<std::string>{"1 4 TestLog: Can't emit event with name \"Missing\""});

    EXPECT_EQ(module.CreateEvent("Known"), 77);
    EXPECT_EQ(module.EmitEvent("Known", event), 0);
    EXPECT_STREQ(event.name, "Known");
    EXPECT_EQ(int(event.id), 77);
    const auto raised = host.find(MSG_EVENT_RAISE);
    ASSERT_EQ(raised.size(), 1u);
    EXPECT_EQ(raised[0].p1, 77);
    EXPECT_EQ(raised[0].p2, reinterpret_cast<std::intptr_t>(&event));

    module.SubscribeEvent("Quotes");
    EXPECT_STREQ(subscribed.name, "Quotes");
    EXPECT_EQ(std::make_pair(int(subscribed.zero), int(subscribed.last)), std::make_pair(0, -1));
    EXPECT_EQ(static_cast<void*>(subscribed.object), static_cast<void*>(&module));
}

TEST(CModule, FontManagerFollowsTheFirstSelectedLanguage) {
    struct Case {
        std::vector<coreLanguage> languages;
        int expectedSize;  // getFontSize(8)
    } cases[] = {
        {{}, 8},
        {{Language("Chinese (Simplified)", 0), Language("English", 0)}, 8},  // none selected
        {{Language("English", 0), Language("Chinese (Simplified)", 1), Language("German", 1)}, 10},
        {{Language("German", 1), Language("Chinese (Simplified)", 1)}, 8},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.languages.size());
        FakeHost host;
        ServeLanguages(host, c.languages);
        TestModule module;
        host.attach(module);
        module.ReceiveMessageWrap(nullptr, MSG_SETUP, 0, 0);
        ASSERT_NE(module.getFontManager(), nullptr);
        EXPECT_EQ(module.getFontSize(8), c.expectedSize);
        // The language list is asked for only when the host has languages.
        EXPECT_EQ(host.find(MSG_LANGUAGE_LIST).size(), c.languages.empty() ? 0u : 1u);
    }
}

TEST(CModule, WithoutHostSetUpKeepsFontsUnknownKeysTranslateToThemselvesZoneIsGst) {
    TestModule module;
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_SETUP, 0, 0), 0);
    EXPECT_EQ(module.getFontSize(8), 8);
    ASSERT_NE(module.GetDateTime(), nullptr);
    EXPECT_FALSE(module.GetDateTime()->IsValid());
    EXPECT_EQ(module.GetDateTime()->toString(0L, QStringLiteral("yyyy"), true), QString());
    EXPECT_EQ(module.tr("PF9999"), QStringLiteral("PF9999"));
    EXPECT_EQ(module.tr(QStringLiteral("G0135"), QString()), QStringLiteral("G0135"));
    CModule::SetTimeTz();
    ASSERT_NE(std::getenv("TZ"), nullptr);
    EXPECT_STREQ(std::getenv("TZ"), "GST0");
}
