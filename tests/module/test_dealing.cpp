// The chart module's accounts, day-off table, host interface look-ups and conversion
// answers, against a fake host that plays the main window and two deal interfaces.
#include <gtest/gtest.h>

#include <QWidget>
#include <cstring>

#include "FakeHost.h"
#include "module/ChartInterface.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

void* H(std::intptr_t value) { return reinterpret_cast<void*>(value); }

fxdDealAccount Account(std::uint32_t deal, int id, const QString& name) {
    fxdDealAccount a;
    std::memset(&a, 0, sizeof a);
    a.dealHandle = deal;
    a.accountId = id;
    std::memcpy(a.name, name.utf16(), sizeof(coreWChar) * std::size_t(name.size()));
    return a;
}

fxdDayOff DayOff(const char* symbol, int flag) {
    fxdDayOff r;
    std::memset(&r, 0, sizeof r);
    std::memcpy(r.symbol, symbol, std::min(std::strlen(symbol), sizeof r.symbol));
    r.dayOff = flag;
    return r;
}

// The count field of the module's packed request record, read by value.
std::int32_t DealCount(const PFChartModule& module) { return module.GetDealRequest().count; }

std::vector<int> Ids(const AccountList& list) {
    std::vector<int> ids;
    for (const auto& entry : list.GetEntries()) ids.push_back(entry->GetAccountId());
    return ids;
}

}  // namespace

TEST(AccountList, IdsAreUniqueAndTheFirstAccountSelectsItsDealing) {
    AccountList list;
    EXPECT_TRUE(list.addToAccountList(Account(1, 7, "Main"), H(0x10)));
    EXPECT_EQ(list.GetLastAccountHandle(), H(0x10));
    EXPECT_FALSE(list.addToAccountList(Account(2, 7, "Other"), H(0x20)));  // same id, other dealing
    EXPECT_TRUE(list.addToAccountList(Account(2, 8, "Main"), H(0x20)));
    EXPECT_EQ(list.GetLastAccountHandle(), H(0x10));  // only the first entry selects
    EXPECT_EQ(Ids(list), (std::vector<int>{7, 8}));

    list.setLastAccount("Main");  // the last match wins
    EXPECT_EQ(list.GetLastAccountHandle(), H(0x20));
    list.setLastAccount("Nobody");
    EXPECT_EQ(list.GetLastAccountHandle(), H(0x20));
    EXPECT_EQ(list.getActiveAccount("Main"), 7);  // the first match
    EXPECT_EQ(list.getActiveAccount("Nobody"), 0);

    EXPECT_FALSE(list.delFromAccountList(Account(1, 9, "Main"), H(0x10)));
    EXPECT_TRUE(list.delFromAccountList(Account(9, 7, ""), nullptr));  // by id alone
    EXPECT_EQ(Ids(list), (std::vector<int>{8}));
    list.clearAccountList();
    EXPECT_TRUE(list.empty());
}

TEST(AccountList, UnterminatedNameEndsWithTheRecord) {
    fxdDealAccount a = Account(1, 1, "");
    for (coreWChar& c : a.name) c = 'x';
    EXPECT_EQ(OneHandleAccount(a, nullptr).GetAccountName(), QString(146, QChar('x')));
}

TEST(ChartModuleWithoutHost, EveryRequestIsNeutral) {
    PFChartModule module;
    EXPECT_EQ(module.GetGlobalMainWindow(), nullptr);
    EXPECT_EQ(module.GetTransportInterface(), nullptr);
    EXPECT_EQ(module.getMainWindow(), nullptr);
    EXPECT_TRUE(module.GetWorkFolder().isEmpty());
    EXPECT_EQ(module.getDefaultXml(), nullptr);
    module.SendMainAboutChange();
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_DEALING_READY, 0, 0), 0);
    EXPECT_TRUE(module.GetAccountList().empty());
    EXPECT_EQ(DealCount(module), 0);
    EXPECT_FALSE(module.IsDayOff("EURUSD"));
    std::int32_t list[3] = {0, -1, -1};
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_NEED_TO_CONVERT, reinterpret_cast<std::intptr_t>(list), 0), 0);
    EXPECT_EQ(list[0], 1);
    EXPECT_EQ(list[1], 1);
    EXPECT_EQ(list[2], 1);
}

// The fake host: main window 0x4D, transport 0x7A, deal interfaces 0xD1 and 0xD2.
class ChartModuleDealing : public ::testing::Test {
protected:
    void SetUp() override {
        module.InitializeWrap(host.callback(), host.callback(), host.handle(), nullptr);
        module.CreateWindowComponentInterface();  // unanswered: each interface is its own handle
        host.on(MSG_GET_INTERFACE, [this](void*, std::intptr_t p1, std::intptr_t) {
            auto* r = reinterpret_cast<coreInterfaceRequest*>(p1);
            const std::string kind = r->kind;
            if (kind == "DEALING") {
                for (int i = 0; i < r->count && i < 2; ++i) r->result[i] = H(0xD1 + i);
                r->count = 1000;  // a host scribbling over the count must not matter
            } else {
                r->result[0] = kind == "MAINWINDOW" ? H(0x4D) : kind == "CANDLE" ? H(0x7A) : nullptr;
            }
            return 0;
        });
        host.on(MSG_COUNT_INTERFACES, [this](void*, std::intptr_t, std::intptr_t p2) {
            std::memcpy(reinterpret_cast<void*>(p2), &dealings, sizeof dealings);  // packed field
            return 0;
        });
        host.on(MSG_DEAL_ACCOUNT_COUNT, [this](void* target, std::intptr_t p1, std::intptr_t) {
            reinterpret_cast<fxdAccountRequest*>(p1)->count = int(accounts[target].size()) + extraAccounts;
            return 0;
        });
        host.on(MSG_DEAL_ACCOUNT_LIST, [this](void* target, std::intptr_t p1, std::intptr_t) {
            auto* r = reinterpret_cast<fxdAccountRequest*>(p1);
            for (std::size_t i = 0; i < accounts[target].size() && int(i) < r->count; ++i)
                r->accounts[i] = accounts[target][i];
            return 0;
        });
        host.on(MSG_DEAL_DAYOFF_COUNT, [this](void*, std::intptr_t, std::intptr_t p2) {
            reinterpret_cast<fxdDayOffRequest*>(p2)->count = dayOffCount;
            return 0;
        });
        host.on(MSG_DEAL_DAYOFF_LIST, [this](void*, std::intptr_t, std::intptr_t p2) {
            auto* r = reinterpret_cast<fxdDayOffRequest*>(p2);
            for (std::size_t i = 0; i < dayOff.size() && int(i) < r->count; ++i) r->records[i] = dayOff[i];
            r->count = 99;  // the module reads only what it allocated
            return 0;
        });
        accounts[H(0xD1)] = {Account(0xD1, 1, "Alpha"), Account(0xD1, 0, "none"), Account(0xD1, 2, "Beta")};
        accounts[H(0xD2)] = {Account(0xD2, 2, "Twin"), Account(0xD2, 3, "Gamma")};
        dayOff = {DayOff("EURUSD", 1), DayOff("GBPUSD", 0), DayOff("A_SYMBOL_OF_19_CHAR", 7)};
        dayOffCount = 3;
    }
    int Send(unsigned int message, const void* p1 = nullptr) {
        return module.ReceiveMessageWrap(nullptr, message, reinterpret_cast<std::intptr_t>(p1), 0);
    }
    int Event(int code, void* payload, int count = 1, void* sender = nullptr) {
        FXEvent event;
        std::memset(&event, 0, sizeof event);
        event.sender = sender ? sender : module.GetPFInterface()->GetHostHandle();
        event.code = code;
        event.payloadCount = count;
        event.payload = payload;
        return Send(MSG_EVENT, &event);
    }

    FakeHost host;
    PFChartModule module;
    std::int32_t dealings = 2;
    int extraAccounts = 0;
    std::map<void*, std::vector<fxdDealAccount> > accounts;
    std::vector<fxdDayOff> dayOff;
    std::int32_t dayOffCount = 0;
};

TEST_F(ChartModuleDealing, MainWindowAndTransportAreAskedOnce) {
    host.clear();
    host.on(MSG_MAIN_WORK_FOLDER, [](void* target, std::intptr_t p1, std::intptr_t) {
        EXPECT_EQ(target, H(0x4D));
        const QString folder = "/work/folder";
        std::memcpy(reinterpret_cast<void*>(p1), folder.utf16(), 2 * (folder.size() + 1));
        return 0;
    });
    std::string notice;
    host.on(MSG_MAIN_CHANGED, [&](void* target, std::intptr_t p1, std::intptr_t) {
        const char* r = reinterpret_cast<const char*>(p1);
        notice = std::string(r, 4) + (r + 4);
        return 0;
    });
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(module.GetGlobalMainWindow(), H(0x4D));
        EXPECT_EQ(module.GetTransportInterface(), H(0x7A));
        EXPECT_EQ(module.GetWorkFolder(), "/work/folder");
    }
    module.SendMainAboutChange();
    EXPECT_EQ(host.find(MSG_GET_INTERFACE).size(), 2u);
    EXPECT_EQ(notice, std::string("\0\0\0\0Scale changed", 17));

    // A failing or overlong answer: empty, or cut at the buffer's end.
    host.on(MSG_MAIN_WORK_FOLDER, [](void*, std::intptr_t, std::intptr_t) { return 1; });
    EXPECT_TRUE(module.GetWorkFolder().isEmpty());
    host.on(MSG_MAIN_WORK_FOLDER, [](void*, std::intptr_t p1, std::intptr_t) {
        std::memset(reinterpret_cast<void*>(p1), 'a', CORE_WORK_FOLDER_BUFFER);
        return 0;
    });
    EXPECT_EQ(module.GetWorkFolder().size(), CORE_WORK_FOLDER_BUFFER / 2 - 1);
}

TEST_F(ChartModuleDealing, MainWindowIsFoundByItsWindowId) {
    QWidget window;
    std::int32_t id = std::int32_t(window.winId());
    host.on(MSG_MAIN_WINDOW_ID, [&](void* target, std::intptr_t p1, std::intptr_t) {
        EXPECT_EQ(*reinterpret_cast<std::int32_t*>(p1), -1);
        if (id != -1) *reinterpret_cast<std::int32_t*>(p1) = id;
        return 0;
    });
    EXPECT_EQ(module.getMainWindow(), &window);
    id = -1;
    EXPECT_EQ(module.getMainWindow(), nullptr);
    id = 0x7fff0000;
    EXPECT_EQ(module.getMainWindow(), nullptr);
}

TEST_F(ChartModuleDealing, AccountsOfEveryDealInterfaceInOrder) {
    host.clear();
    EXPECT_EQ(Send(MSG_DEALING_READY), 0);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{3002, 3001, 16000, 16001, 16000, 16001}));
    const FakeHost::Call count = host.find(MSG_COUNT_INTERFACES)[0];
    EXPECT_EQ(count.p2, count.p1 + 765);
    EXPECT_EQ(host.calls()[2].target, H(0xD1));
    EXPECT_EQ(host.calls()[4].target, H(0xD2));
    EXPECT_EQ(DealCount(module), 2);
    EXPECT_EQ(std::string(module.GetDealRequest().kind), "DEALING");
    // Id 0 is no account; id 2 of the second dealing is already listed from the first.
    EXPECT_EQ(Ids(module.GetAccountList()), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(module.GetAccountList().GetEntries().back()->GetDealHandle(), H(0xD2));
    EXPECT_EQ(module.GetAccountList().GetLastAccountHandle(), H(0xD1));
}

TEST_F(ChartModuleDealing, UnbelievableCountsAllocateNothing) {
    for (std::int32_t bad : {0, -1, 100001, 0x7fffffff}) {
        dealings = bad;
        host.clear();
        Send(MSG_DEALING_READY);
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{3002}) << bad;
        EXPECT_EQ(DealCount(module), 0);
        EXPECT_TRUE(module.GetAccountList().empty());
    }
    dealings = 2;
    extraAccounts = -10;  // negative account counts
    host.clear();
    Send(MSG_DEALING_READY);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{3002, 3001, 16000, 16000}));
    dayOffCount = -1;
    fxdDealAccount a = Account(0xD1, 5, "Delta");
    host.clear();
    Event(EVENT_ACCOUNT_ADDED, &a);
    EXPECT_EQ(host.messages(), std::vector<unsigned int>{16026});
    EXPECT_TRUE(module.GetDayOffTable().empty());
}

TEST_F(ChartModuleDealing, DayOffEventsFromTheModulesOwnInterfacesOnly) {
    fxdDayOffEventPayload payload = {0xD2, 42};
    host.clear();
    Event(EVENT_DAYOFF_CHANGED, &payload, 1, H(0x999));  // a stranger
    Event(EVENT_DAYOFF_CHANGED, &payload, 0);
    Event(EVENT_DAYOFF_CHANGED, nullptr, 1);
    EXPECT_TRUE(host.calls().empty());

    Event(EVENT_DAYOFF_CHANGED, &payload, 1, module.GetKagiInterface()->GetHostHandle());
    ASSERT_EQ(host.messages(), (std::vector<unsigned int>{16026, 16027}));
    for (const FakeHost::Call& c : host.calls()) {
        EXPECT_EQ(c.target, H(0xD2));
        EXPECT_EQ(c.p1, 42);
    }
    EXPECT_TRUE(module.IsDayOff("EURUSD"));
    EXPECT_FALSE(module.IsDayOff("GBPUSD"));
    EXPECT_TRUE(module.IsDayOff("A_SYMBOL_OF_19_CHAR"));  // no terminator: 19 bytes read
    EXPECT_FALSE(module.IsDayOff("USDJPY"));
}

TEST_F(ChartModuleDealing, AccountEventsKeepListAndDayOffTableCurrent) {
    Send(MSG_DEALING_READY);
    fxdDealAccount delta = Account(0xD2, 4, "Delta");
    host.clear();
    Event(EVENT_ACCOUNT_ADDED, &delta);
    EXPECT_EQ(Ids(module.GetAccountList()), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(module.GetAccountList().GetEntries().back()->GetDealHandle(), H(0xD1));  // first dealing
    EXPECT_EQ(host.find(MSG_DEAL_DAYOFF_COUNT)[0].target, H(0xD2));  // the account's own dealing
    EXPECT_TRUE(module.IsDayOff("EURUSD"));

    host.clear();
    Event(EVENT_ACCOUNT_ADDED, nullptr);
    for (int id : {1, 2, 3, 99}) {
        fxdDealAccount gone = Account(0xD2, id, "");
        Event(EVENT_ACCOUNT_REMOVED, &gone);
    }
    EXPECT_TRUE(host.calls().empty());  // accounts are left
    Event(EVENT_ACCOUNT_REMOVED, &delta);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{16026, 16027}));
    EXPECT_TRUE(module.GetAccountList().empty());
    EXPECT_FALSE(module.IsDayOff("EURUSD"));  // the dealing trades again
}

TEST_F(ChartModuleDealing, ConversionAnswersWithoutChartWindows) {
    Send(MSG_DEALING_READY);
    EXPECT_TRUE(module.NeedToSwitchToBid());
    EXPECT_TRUE(module.NeedToSwitchToMid());
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_CONVERT_TO_TYPE, 7, 0), 0);

    std::int32_t list[7] = {2, 1, 0, 0, 3, -1, -1};
    host.clear();
    EXPECT_EQ(Send(MSG_NEED_TO_CONVERT, list), 0);
    EXPECT_EQ(host.messages(), (std::vector<unsigned int>{16000, 16001, 16000, 16001}));  // accounts re-read
    EXPECT_EQ(std::vector<std::int32_t>(list, list + 7), (std::vector<std::int32_t>{3, 1, 0, 0, 3, 1, 1}));
    std::int32_t negative[3] = {-1, 5, 5};
    EXPECT_EQ(Send(MSG_NEED_TO_CONVERT, negative), 0);
    EXPECT_EQ(std::vector<std::int32_t>(negative, negative + 3), (std::vector<std::int32_t>{-1, 5, 5}));
    EXPECT_EQ(Send(MSG_NEED_TO_CONVERT, nullptr), 0);
}

TEST_F(ChartModuleDealing, DefaultParametersFileInTheWorkFolder) {
    QString folder = "/work/folder";
    host.on(MSG_MAIN_WORK_FOLDER, [&](void*, std::intptr_t p1, std::intptr_t) {
        std::memcpy(reinterpret_cast<void*>(p1), folder.utf16(), 2 * (folder.size() + 1));
        return 0;
    });
    QString opened;
    void* document = H(0x5D);
    host.on(MSG_WD_OPEN, [&](void* target, std::intptr_t p1, std::intptr_t) {
        auto* r = reinterpret_cast<coreOpenWorkData*>(p1);
        EXPECT_EQ(target, host.handle());
        opened = QString::fromUtf16(r->path);
        r->handle = document;
        return 0;
    });
    std::unique_ptr<CXMLWorkData> tree(module.getDefaultXml());
    ASSERT_TRUE(tree);
    EXPECT_EQ(opened, "/work/folder/etc/PFChartModule.rdd");
    EXPECT_EQ(tree->document(), document);

    coreSzNode saved = {0, 0, 0};
    host.on(MSG_WD_SAVE, [&](void*, std::intptr_t p1, std::intptr_t) {
        saved = *reinterpret_cast<coreSzNode*>(p1);
        return 0;
    });
    module.saveDefaultXml(tree.get());
    module.saveDefaultXml(nullptr);
    EXPECT_EQ(host.find(MSG_WD_SAVE).size(), 1u);
    EXPECT_EQ(saved.document, 0x5Du);

    document = nullptr;  // the host opened nothing
    EXPECT_EQ(module.getDefaultXml(), nullptr);
    // 232 + 22 units fill the path field; one more is refused without asking the host.
    folder = QString(232, QChar('f'));
    host.clear();
    delete module.getDefaultXml();
    EXPECT_EQ(host.find(MSG_WD_OPEN).size(), 1u);
    folder += 'f';
    host.clear();
    EXPECT_EQ(module.getDefaultXml(), nullptr);
    EXPECT_TRUE(host.find(MSG_WD_OPEN).empty());
}
