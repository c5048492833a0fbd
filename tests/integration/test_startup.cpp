// The terminal's start-up of the real libPFChartModule.so.1, loaded with dlopen by the
// emulator: module information, the start-up exchange, built-in texts, registration,
// routing and the module's exception guard.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QRegularExpression>
#include <cstring>
#include <stdexcept>

#include "ModuleHostTest.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/ModuleLoader.h"

namespace {

class StartUp : public ModuleHostTest {
protected:
    host::CoreServices& Core() { return emulator->core(); }

    std::size_t IndexOf(unsigned int message) {
        const auto& all = H().journal().entries();
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i].direction == host::Journal::ToModule && all[i].message == message) return i;
        return all.size();
    }
};

void Put32(unsigned char* at, std::int32_t v) { std::memcpy(at, &v, 4); }

}  // namespace

TEST_F(StartUp, ModuleInformationRecordByteForByte) {
    Load();
    unsigned char expected[2315] = {};
    std::memcpy(expected, "Telvix.PFChart module", 21);
    std::memcpy(expected + 255, "Points and Figures chart analysis", 33);
    Put32(expected + 1279, 9);
    Put32(expected + 1283, 1);
    Put32(expected + 1287, 1);
    Put32(expected + 1291, 8);
    std::memcpy(expected + 1295, "CTranslatePFgraph", 17);
    Put32(expected + 1315, 82);

    unsigned char actual[2315 + 16];
    std::memset(actual, 0xEE, sizeof actual);
    EXPECT_EQ(H().getModuleInfo(reinterpret_cast<MODULE_INFO*>(actual)), 0);
    // The same record was read at load, before Initialize, as the terminal does.
    EXPECT_EQ(std::memcmp(&emulator->moduleInfo(), expected, 2315), 0);
    EXPECT_EQ(std::memcmp(actual, expected, 2315), 0);
    for (std::size_t i = 2315; i < sizeof actual; ++i) ASSERT_EQ(actual[i], 0xEE) << "wrote past the record";
    EXPECT_EQ(H().getModuleInfo(nullptr), 0);

    // The record begins the data of the object GetModule() returns, right after its
    // virtual table pointer.
    host::ModuleLoader loader;
    std::string error;
    ASSERT_TRUE(loader.load(PF_MODULE_PATH, &error)) << error;
    ASSERT_NE(loader.getModule, nullptr);
    const unsigned char* object = static_cast<const unsigned char*>(loader.getModule());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(std::memcmp(object + sizeof(void*), expected, 2315), 0);
}

TEST_F(StartUp, SetUpAsksLanguagesDateFunctionsAndLogSink) {
    host::EmulatorOptions none;
    none.languages.clear();
    for (const auto& options : {host::EmulatorOptions(), none}) {
        Start(options);
        std::vector<unsigned int> sent;
        for (const auto& e : SentDuring(IndexOf(MSG_SETUP))) sent.push_back(e.message);
        // The language list is asked for only when there are languages.
        EXPECT_EQ(sent, options.languages.empty() ? std::vector<unsigned int>({3116, 3207, 3205})
                                                  : std::vector<unsigned int>({3116, 3117, 3207, 3205}));
    }
}

TEST_F(StartUp, RegistrationInsertsTextsThenRegistersThreeInterfaces) {
    Start();
    const auto sent = SentDuring(IndexOf(MSG_REGISTER));
    std::vector<unsigned int> order(52, 3019u);
    order.insert(order.end(), {3000u, 3110u, 3000u, 3000u});  // the PF interface subscribes right after registering
    std::vector<unsigned int> actual;
    for (const auto& e : sent) actual.push_back(e.message);
    ASSERT_EQ(actual, order);

    const auto& keys = Core().insertedKeys();
    ASSERT_EQ(keys.size(), 52u);
    EXPECT_EQ(keys.front(), std::make_pair(std::string("PF0001"), std::string("Point and Figure")));
    EXPECT_EQ(keys[3], std::make_pair(std::string("PF0004"), std::string("Select intstrument")));
    EXPECT_EQ(keys[41], std::make_pair(std::string("G0067Message"), std::string("Sets backcolor of  time scale")));
    EXPECT_EQ(keys.back(), std::make_pair(std::string("Tr0131SetOrdr"), std::string("Place order")));
    EXPECT_NE(sent[0].detail.find("CTranslatePFgraph PF0001"), std::string::npos);

    const auto& components = Core().components();
    ASSERT_EQ(components.size(), 3u);
    EXPECT_EQ(components[0].name + "/" + components[1].name + "/" + components[2].name, "Points and Figures/Renko/Kagi");
    const std::string second = "second=" + std::to_string(std::int32_t(reinterpret_cast<std::intptr_t>(H().coreHandle2())));
    for (std::size_t i : {52u, 54u, 55u}) {
        EXPECT_NE(sent[i].detail.find("register Windowcomponent/TELVIX/"), std::string::npos);
        EXPECT_NE(sent[i].detail.find(second), std::string::npos);
    }

    const auto subs = Core().subscribers("DealingEvent");
    ASSERT_EQ(subs.size(), 1u);
    EXPECT_EQ(subs[0].subscriberId, std::int32_t(reinterpret_cast<std::intptr_t>(components[0].handle)));
    EXPECT_EQ(subs[0].object, components[0].object);
    EXPECT_NE(components[0].object, components[1].object);

    // A component announced again is listed once, under its handle, at its new address.
    const std::size_t interfaces = H().interfaces().size();
    void* const handle = components[1].handle;
    coreInterfaceRequest again{};
    std::strcpy(again.kind, "Windowcomponent");
    std::strcpy(again.provider, "TELVIX");
    std::strcpy(again.name, "Renko");
    again.result = reinterpret_cast<void**>(components[0].object);
    ASSERT_EQ(H().callback(H().coreHandle(), MSG_REGISTER_INTERFACE, reinterpret_cast<std::intptr_t>(&again), 0), 0);
    EXPECT_EQ(Core().components().size(), 3u);
    EXPECT_EQ(H().interfaces().size(), interfaces);
    EXPECT_EQ(reinterpret_cast<void*>(again.result), handle);
    EXPECT_EQ(Core().components()[1].object, components[0].object);
}

TEST_F(StartUp, TextsComeBackTranslatedForTheSelectedLanguage) {
    host::EmulatorOptions options;
    options.languages = {"English", "Deutsch"};
    options.selectedLanguage = 1;
    Load(options);
    Core().setTranslation("Deutsch", QStringLiteral("PF0001"), QStringLiteral("Punkt und Figur"));
    H().startUp();
    EXPECT_EQ(QCoreApplication::translate("CTranslatePFgraph", "PF0003"), QStringLiteral("Kagi"));

    std::vector<char> icon(4096, 'z');
    fxwcNameCompUnicode name{};
    name.iconBuffer = icon.data();
    name.iconSize = std::int32_t(icon.size());
    void* pf = Core().componentObject("Points and Figures");
    EXPECT_EQ(H().send(pf, MSG_WC_UNICODE_NAME, reinterpret_cast<std::intptr_t>(&name)), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(name.name)), QStringLiteral("Punkt und Figur"));
    ASSERT_GT(int(name.iconSize), 8);
    ASSERT_LT(int(name.iconSize), 4096);
    EXPECT_EQ(std::memcmp(icon.data(), "\x89PNG", 4), 0);

    // A buffer too small for the icon is left alone, the name is still written.
    std::vector<char> small(8, 'z');
    name = fxwcNameCompUnicode{};
    name.iconBuffer = small.data();
    name.iconSize = 8;
    void* kagi = Core().componentObject("Kagi");
    EXPECT_EQ(H().send(kagi, MSG_WC_UNICODE_NAME, reinterpret_cast<std::intptr_t>(&name)), 0);
    EXPECT_EQ(int(name.iconSize), 8);
    EXPECT_EQ(std::string(small.data(), 8), "zzzzzzzz");
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(name.name)), QStringLiteral("Kagi"));

    nameComponent shortName;
    std::memset(&shortName, 0x55, sizeof shortName);
    EXPECT_EQ(H().send(kagi, MSG_WC_NAME, reinterpret_cast<std::intptr_t>(&shortName)), 0);
    EXPECT_STREQ(shortName.name, "Kagi chart");
    for (unsigned char b : shortName.zero) EXPECT_EQ(b, 0);
    EXPECT_EQ(H().send(kagi, MSG_WC_NAME, 0), 0);  // null record: the switch still answers 0
}

TEST_F(StartUp, InterfaceMessagesAlsoRunTheModuleSwitchUnknownWidgetsTouchNothing) {
    Start();
    void* pf = Core().componentObject("Points and Figures");

    std::int32_t query = 0;
    EXPECT_EQ(H().send(pf, MSG_WC_QUERY, reinterpret_cast<std::intptr_t>(&query)), 0);
    EXPECT_EQ(query, 1);  // the interface handled it
    query = 0;
    EXPECT_EQ(H().send(nullptr, MSG_WC_QUERY, reinterpret_cast<std::intptr_t>(&query)), 0);
    EXPECT_EQ(query, 0);  // not addressed to an interface: only the module switch, which ignores it

    struct {
        std::int32_t count;
        std::int32_t entries[2][2];
    } list = {0, {{9, 9}, {9, 9}}};
    EXPECT_EQ(H().send(pf, MSG_NEED_TO_CONVERT, reinterpret_cast<std::intptr_t>(&list)), 0);
    EXPECT_EQ(int(list.count), 1);  // the module switch ran as well

    // An interface's own "not listed" answer is not what the host gets back.
    coreCoreUpdateDpaData update{};
    EXPECT_EQ(H().send(pf, MSG_DATA_UPDATED, reinterpret_cast<std::intptr_t>(&update)), 0);
    EXPECT_EQ(H().send(pf, 987654), 0);

    // Window messages for widgets the module does not have touch nothing: the interface
    // answers 1, the module switch 0, and the switch's answer is returned.
    void* renko = Core().componentObject("Renko");
    int notAWidget = 0;
    for (unsigned int m : {MSG_WC_DESTROY, MSG_WC_RESIZE, MSG_WC_SHOW, MSG_WC_PRINT})
        EXPECT_EQ(H().send(renko, m, reinterpret_cast<std::intptr_t>(&notAWidget)), 0) << m;
    EXPECT_EQ(notAWidget, 0);
    EXPECT_EQ(H().send(renko, MSG_WC_CREATE, 0), 0);
    // An undo request naming a widget the module does not have is not handled and not answered.
    std::int32_t undo[8] = {0, 0, 0, 0x1234, 0, 0, 0, 0};
    EXPECT_EQ(H().send(nullptr, MSG_UNDO_REQUEST, reinterpret_cast<std::intptr_t>(undo)), 1);
    EXPECT_TRUE(H().journal().find(MSG_UNDO_REPLY).empty());
}

TEST_F(StartUp, ExceptionsInHandlersAnswerOneAndNeverEscape) {
    Start();
    H().on(MSG_INSERT_TRANSLATION, [](void*, std::intptr_t, std::intptr_t, std::string&) -> int {
        throw std::runtime_error("translation table full");
    });
    EXPECT_EQ(H().send(nullptr, MSG_REGISTER), 1);

    // The set-up message logs where it failed before the guard answers 1.
    H().on(MSG_LANGUAGE_COUNT, [](void*, std::intptr_t, std::intptr_t, std::string&) -> int { throw 42; });
    EXPECT_EQ(H().send(nullptr, MSG_SETUP), 1);
    ASSERT_FALSE(Core().logRecords().empty());
    const auto& last = Core().logRecords().back();
    EXPECT_EQ(last.level, 5);
    EXPECT_EQ(last.name, QStringLiteral("PFChartModule"));
    // "Unknown throw in <module>|file|line"
    EXPECT_TRUE(QRegularExpression("^Unknown throw in <PFChartModule>\\|.*CModule\\.cpp\\|\\d+$").match(last.text).hasMatch())
        << last.text.toStdString();
}

// A subscribed data object's change is sent to the module at the subscription's interface
// target, and the module's answer is recorded.
TEST_F(StartUp, DataNoticesReachTheModule) {
    Start();
    void* chart = emulator->data().createChart("USDCHF", host::data::ChartType::Kagi);
    coreDpaSubscription sub{reinterpret_cast<void*>(std::intptr_t(0x4100)), reinterpret_cast<void*>(std::intptr_t(0x4200))};
    ASSERT_EQ(host::Host::callback(nullptr, MSG_DPA_SUBSCRIBE, reinterpret_cast<std::intptr_t>(chart),
                                   reinterpret_cast<std::intptr_t>(&sub)), 0);
    ASSERT_TRUE(emulator->data().configure(chart, host::data::ChartSettings{0.0010, 0, 0}));
    ASSERT_EQ(emulator->data().notices().size(), 1u);
    const auto sent = H().journal().find(MSG_DATA_UPDATED);
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].result, emulator->data().notices()[0].result);
    EXPECT_EQ(sent[0].direction, host::Journal::ToModule);
    EXPECT_EQ(sent[0].target, std::uintptr_t(0x4100));
}
