// The real libPFChartModule.so.1 against the emulator's dealing interfaces and main window:
// accounts fetched at start, account and day-off events, the conversion questions, and
// the main window interface as the module finds it.
#include <gtest/gtest.h>

#include <QMainWindow>
#include <QWidget>
#include <cstring>
#include <dlfcn.h>

#include "host/CoreServices.h"
#include "host/DealingService.h"
#include "host/Emulator.h"
#include "host/MainWindowService.h"
// Only for reading the module's state through GetModule(); no module code is linked here.
#include "module/PFChartModule.h"

namespace {

class Dealing : public ::testing::Test {
protected:
    void SetUp() override {
        host::EmulatorOptions options;
        options.modulePath = PF_MODULE_PATH;
        emulator.reset(new host::Emulator(options));
        alpha = Deals().addDealing("DEALING_ALPHA");
        beta = Deals().addDealing("DEALING_BETA");
        Deals().addAccount(alpha, 1, "One");
        Deals().addAccount(alpha, 2, "Two");
        Deals().addAccount(beta, 2, "Second two");
        Deals().addAccount(beta, 3, "Three");
        Deals().setDayOff(alpha, 1, "EURUSD", true);
        Deals().setDayOff(alpha, 1, "GBPUSD", false);
        Deals().setDayOff(alpha, 1, "A_SYMBOL_OF_19_CHAR", true);  // fills the field, no terminator
        std::string error;
        ASSERT_TRUE(emulator->loadModule(&error)) << error;
        emulator->startUp();
        void* library = dlopen(PF_MODULE_PATH, RTLD_NOW | RTLD_NOLOAD);
        ASSERT_TRUE(library);
        module = static_cast<PFChartModule*>(reinterpret_cast<GetModuleFn>(dlsym(library, "GetModule"))());
        dlclose(library);
    }
    host::Host& H() { return emulator->host(); }
    host::DealingService& Deals() { return emulator->dealing(); }
    std::size_t Count(unsigned int message) { return H().journal().find(message).size(); }
    std::vector<int> Ids() {
        std::vector<int> ids;
        for (const auto& entry : module->GetAccountList().GetEntries()) ids.push_back(entry->GetAccountId());
        return ids;
    }
    bool DayOff(const char* symbol) {
        auto it = module->GetDayOffTable().find(symbol);
        return it != module->GetDayOffTable().end() && it->second;
    }

    std::unique_ptr<host::Emulator> emulator;
    PFChartModule* module = nullptr;
    void* alpha = nullptr;
    void* beta = nullptr;
};

}  // namespace

TEST_F(Dealing, StartUpReadsEveryDealingsAccountsOnce) {
    EXPECT_EQ(H().journal().find(16001).size(), 2u);
    EXPECT_EQ(H().journal().find(16001).back().detail, "accounts=2");
    // Id 2 of the second dealing is refused: it is already listed from the first.
    EXPECT_EQ(Ids(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(module->GetAccountList().GetLastAccountHandle(), alpha);

    Deals().raiseAccountAdded(beta, 1, "One again");
    Deals().raiseAccountAdded(beta, 4, "Four");
    EXPECT_EQ(Ids(), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(module->GetAccountList().GetEntries().back()->GetDealHandle(), alpha);
}

TEST_F(Dealing, DayOffFollowsEventsAndTheLastAccountLeaving) {
    EXPECT_EQ(Deals().raiseDayOff(alpha, 1), 1);
    EXPECT_TRUE(DayOff("EURUSD"));
    EXPECT_FALSE(DayOff("GBPUSD"));
    EXPECT_TRUE(DayOff("A_SYMBOL_OF_19_CHAR"));
    EXPECT_EQ(H().journal().find(16027).back().detail, "account=1 symbols=3 dayoff=2");

    for (int id : {2, 3}) Deals().raiseAccountRemoved(id == 2 ? alpha : beta, id);
    EXPECT_TRUE(DayOff("EURUSD"));  // account 1 is still there
    const std::size_t asked = Count(16026);
    Deals().raiseAccountRemoved(alpha, 1);
    EXPECT_TRUE(module->GetAccountList().empty());
    EXPECT_EQ(Count(16026), asked + 1);
    EXPECT_EQ(H().journal().find(16026).back().param1, 1);
    EXPECT_FALSE(DayOff("EURUSD"));  // the dealing trades again
    EXPECT_FALSE(DayOff("A_SYMBOL_OF_19_CHAR"));

    // With the list empty, a removal that finds nothing clears all the same.
    EXPECT_EQ(Deals().raiseDayOff(alpha, 1), 1);
    ASSERT_TRUE(DayOff("EURUSD"));
    fxdDealAccount stranger = host::DealingService::makeAccount(alpha, 1, "Gone already");
    emulator->core().raiseEvent(host::DealingService::eventName(), EVENT_ACCOUNT_REMOVED, &stranger, 1);
    EXPECT_EQ(Count(16026), asked + 3);
    EXPECT_FALSE(DayOff("EURUSD"));
}

TEST_F(Dealing, DayOffEventFromAStrangerIsIgnored) {
    fxdDayOffEventPayload payload = {std::uint32_t(reinterpret_cast<std::uintptr_t>(alpha)), 1};
    FXEvent event{};
    event.sender = emulator->mainWindow().handle();
    event.code = EVENT_DAYOFF_CHANGED;
    event.payloadCount = 1;
    event.payload = &payload;
    void* pf = emulator->core().componentObject("Points and Figures");
    EXPECT_EQ(emulator->core().deliverEvent(pf, event), 0);
    EXPECT_EQ(Count(16026), 0u);
    EXPECT_FALSE(DayOff("EURUSD"));

    const auto subscribers = emulator->core().subscribers(host::DealingService::eventName());
    ASSERT_EQ(subscribers.size(), 1u);
    event.sender = reinterpret_cast<void*>(std::intptr_t(subscribers[0].subscriberId));
    emulator->core().deliverEvent(pf, event);
    EXPECT_EQ(Count(16026), 1u);
    EXPECT_TRUE(DayOff("EURUSD"));
}

TEST_F(Dealing, ConversionQuestionsWithoutChartWindows) {
    std::int32_t list[5] = {1, 0, 3, -1, -1};
    const std::size_t reads = Count(16000);
    EXPECT_EQ(H().send(nullptr, MSG_NEED_TO_CONVERT, reinterpret_cast<std::intptr_t>(list)), 0);
    EXPECT_EQ(std::vector<std::int32_t>(list, list + 5), (std::vector<std::int32_t>{2, 0, 3, 1, 1}));
    EXPECT_EQ(Count(16000), reads + 2);  // accounts re-read first
    EXPECT_EQ(H().send(nullptr, MSG_CONVERT_TO_TYPE, 7), 0);
}

TEST_F(Dealing, MainWindowInterfaceAsTheModuleSeesIt) {
    host::MainWindowService& main = emulator->mainWindow();
    EXPECT_EQ(H().findInterfaces("MAINWINDOW", "TELVIX", "").at(0).handle, main.handle());
    EXPECT_EQ(H().findInterfaces("CANDLE", "TELVIX", "CANDLE_TELVIX").at(0).handle, main.transportHandle());
    auto ask = [&](unsigned int message, void* target, const void* record) {
        return host::Host::callback(target, message, reinterpret_cast<std::intptr_t>(record), 0);
    };
    std::int32_t id = -1;
    EXPECT_EQ(ask(MSG_MAIN_WINDOW_ID, main.handle(), &id), 0);
    EXPECT_EQ(QWidget::find(WId(std::uint32_t(id))), main.window());

    std::vector<coreWChar> folder(CORE_WORK_FOLDER_BUFFER / 2, 0xFFFF);
    EXPECT_EQ(ask(MSG_MAIN_WORK_FOLDER, main.handle(), folder.data()), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(folder.data())).toStdString(), emulator->options().workFolder);

    EXPECT_EQ(ask(MSG_MAIN_CHANGED, main.handle(), "\0\0\0\0Scale changed"), 0);
    ASSERT_EQ(main.notices().size(), 1u);
    EXPECT_EQ(main.notices()[0].text, "Scale changed");
}

namespace {

// A terminal that counts two deal interfaces (3002) but fills only the first slot (3001):
// the unfilled, null slot is asked for its accounts like any other (16000 to a null target),
// and the accounts of the filled one are taken.
TEST_F(Dealing, AnUnfilledDealInterfaceSlotIsAskedLikeAnyOther) {
    const host::Host::Handler fill = H().handler(MSG_GET_INTERFACE);
    H().on(MSG_GET_INTERFACE, [fill](void* t, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        const int answer = fill(t, p1, p2, d);
        coreInterfaceRequest request;
        std::memcpy(&request, reinterpret_cast<const void*>(p1), sizeof request);
        if (std::strncmp(request.kind, "DEALING", sizeof request.kind) == 0 && request.count == 2 && request.result)
            request.result[1] = nullptr;
        return answer;
    });
    const std::size_t at = H().journal().entries().size();
    ASSERT_EQ(H().send(nullptr, MSG_DEALING_READY), 0);
    std::vector<std::uintptr_t> asked;
    for (std::size_t i = at; i < H().journal().entries().size(); ++i)
        if (H().journal().entries()[i].message == MSG_DEAL_ACCOUNT_COUNT) asked.push_back(H().journal().entries()[i].target);
    EXPECT_EQ(asked, (std::vector<std::uintptr_t>{reinterpret_cast<std::uintptr_t>(alpha), 0}));
    EXPECT_EQ(Ids(), (std::vector<int>{1, 2}));
    H().on(MSG_GET_INTERFACE, fill);
}

}  // namespace
