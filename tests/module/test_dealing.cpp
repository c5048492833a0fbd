// The chart module's account list, and its requests to the main window and the deal
// interfaces against a fake host: neutral without a host, cached look-ups, counts that
// cannot be believed, the default-parameters file.
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
    fxdDealAccount a{};
    a.dealHandle = deal;
    a.accountId = id;
    std::memcpy(a.name, name.utf16(), sizeof(coreWChar) * std::size_t(name.size()));
    return a;
}

// The count field of the module's packed request record, read by value.
std::int32_t DealCount(const PFChartModule& module) { return module.GetDealRequest().count; }

// A day-off event from the module's host handle carrying one payload.
FXEvent DayOffEvent(const PFChartModule& module, fxdDayOffEventPayload* payload) {
    FXEvent event{};
    event.sender = module.GetPFInterface()->GetHostHandle();
    event.code = EVENT_DAYOFF_CHANGED;
    event.payloadCount = 1;
    event.payload = payload;
    return event;
}

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

    fxdDealAccount unterminated = Account(1, 1, "");  // the name ends with the record
    for (coreWChar& c : unterminated.name) c = 'x';
    EXPECT_EQ(OneHandleAccount(unterminated, nullptr).GetAccountName(), QString(146, QChar('x')));
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
    std::vector<std::int32_t> list = {0, -1, -1};
    EXPECT_EQ(module.ReceiveMessageWrap(nullptr, MSG_NEED_TO_CONVERT, reinterpret_cast<std::intptr_t>(list.data()), 0), 0);
    EXPECT_EQ(list, (std::vector<std::int32_t>{1, 1, 1}));
}

// The fake host: main window 0x4D, transport 0x7A, deal interfaces 0xD1 and on. It reports
// `interfaces` deal interfaces and `count` accounts or day-off records everywhere.
class ChartModuleHost : public ::testing::Test {
protected:
    void SetUp() override {
        host.attach(module);
        module.CreateWindowComponentInterface();  // unanswered: each interface is its own handle
        host.fill<coreInterfaceRequest>(MSG_GET_INTERFACE, [](coreInterfaceRequest* r) {
            const std::string kind = r->kind;
            r->result[0] = kind == "MAINWINDOW" ? H(0x4D) : kind == "CANDLE" ? H(0x7A) : H(0xD1);
            r->count = 1000;  // a host scribbling over the count must not matter
        });
        // The count lands in a packed field: copied, not assigned.
        host.fill<void>(MSG_COUNT_INTERFACES, [this](void* c) { std::memcpy(c, &interfaces, 4); }, true);
        host.fill<fxdAccountRequest>(MSG_DEAL_ACCOUNT_COUNT, [this](fxdAccountRequest* r) { r->count = count; });
        host.fill<fxdDayOffRequest>(MSG_DEAL_DAYOFF_COUNT, [this](fxdDayOffRequest* r) { r->count = count; }, true);
        host.fill<void>(MSG_MAIN_WORK_FOLDER, [this](void* buffer) {
            std::memcpy(buffer, folder.utf16(), 2 * (folder.size() + 1));
        });
    }

    FakeHost host;
    PFChartModule module;
    std::int32_t interfaces = 1;
    std::int32_t count = 0;
    QString folder = "/work/folder";
};

TEST_F(ChartModuleHost, MainWindowAndTransportAreAskedOnce) {
    QWidget window;
    std::int32_t id = std::int32_t(window.winId());
    host.fill<std::int32_t>(MSG_MAIN_WINDOW_ID, [&](std::int32_t* slot) {
        EXPECT_EQ(*slot, -1);
        if (id != -1) *slot = id;
    });
    std::string notice;
    host.fill<const char>(MSG_MAIN_CHANGED, [&](const char* r) { notice = std::string(r, 4) + (r + 4); });
    host.clear();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(module.GetGlobalMainWindow(), H(0x4D));
        EXPECT_EQ(module.GetTransportInterface(), H(0x7A));
        EXPECT_EQ(module.GetWorkFolder(), "/work/folder");
        EXPECT_EQ(module.getMainWindow(), &window);
    }
    module.SendMainAboutChange();
    EXPECT_EQ(host.find(MSG_GET_INTERFACE).size(), 2u);
    for (const FakeHost::Call& c : host.find(MSG_MAIN_WORK_FOLDER)) EXPECT_EQ(c.target, H(0x4D));
    EXPECT_EQ(notice, std::string("\0\0\0\0Scale changed", 17));

    // A failing or overlong answer: empty, or cut at the buffer's end.
    host.on(MSG_MAIN_WORK_FOLDER, [](void*, std::intptr_t, std::intptr_t) { return 1; });
    EXPECT_TRUE(module.GetWorkFolder().isEmpty());
    host.fill<void>(MSG_MAIN_WORK_FOLDER, [](void* buffer) { std::memset(buffer, 'a', CORE_WORK_FOLDER_BUFFER); });
    EXPECT_EQ(module.GetWorkFolder().size(), CORE_WORK_FOLDER_BUFFER / 2 - 1);
    id = -1;  // no window, or one Qt does not know
    EXPECT_EQ(module.getMainWindow(), nullptr);
    id = 0x7fff0000;
    EXPECT_EQ(module.getMainWindow(), nullptr);
}

TEST_F(ChartModuleHost, UnbelievableCountsAllocateNothing) {
    fxdDayOffEventPayload payload = {0xD1, 1};
    FXEvent event = DayOffEvent(module, &payload);
    for (std::int32_t bad : {0, -1, 100001, 0x7fffffff}) {
        interfaces = bad;
        host.clear();
        module.ReceiveMessageWrap(nullptr, MSG_DEALING_READY, 0, 0);
        // After the dealing requests the status-bar panes are registered (3001, 7000 per pane).
        EXPECT_EQ(host.messages(), (std::vector<unsigned int>{3002, 3001, 7000, 7000})) << bad;
        EXPECT_EQ(DealCount(module), 0);

        interfaces = 1;
        count = bad;
        host.clear();
        module.ReceiveMessageWrap(nullptr, MSG_DEALING_READY, 0, 0);
        EXPECT_EQ(host.messages(), (std::vector<unsigned int>{3002, 3001, 16000, 3001, 7000, 7000})) << bad;
        EXPECT_EQ(DealCount(module), 1);
        host.clear();
        module.ReceiveMessageWrap(nullptr, MSG_EVENT, reinterpret_cast<std::intptr_t>(&event), 0);
        EXPECT_EQ(host.messages(), std::vector<unsigned int>{16026}) << bad;
        EXPECT_TRUE(module.GetDayOffTable().empty());
    }
}

TEST_F(ChartModuleHost, NullDealHandlesAreAskedLikeAnyOther) {
    // The host lists two deal interfaces and leaves the first slot empty.
    interfaces = 2;
    host.fill<coreInterfaceRequest>(MSG_GET_INTERFACE, [](coreInterfaceRequest* r) {
        const std::string kind = r->kind;
        r->result[0] = kind == "MAINWINDOW" ? H(0x4D) : kind == "CANDLE" ? H(0x7A) : nullptr;
        if (kind != "MAINWINDOW" && kind != "CANDLE") r->result[1] = H(0xD2);
    });
    host.clear();
    module.ReceiveMessageWrap(nullptr, MSG_DEALING_READY, 0, 0);
    const std::vector<FakeHost::Call> asked = host.find(MSG_DEAL_ACCOUNT_COUNT);
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].target, nullptr);
    EXPECT_EQ(asked[1].target, H(0xD2));

    // A day-off event naming deal handle 0 is asked about too.
    fxdDayOffEventPayload payload = {0, 1};
    FXEvent event = DayOffEvent(module, &payload);
    host.clear();
    module.ReceiveMessageWrap(nullptr, MSG_EVENT, reinterpret_cast<std::intptr_t>(&event), 0);
    ASSERT_EQ(host.find(MSG_DEAL_DAYOFF_COUNT).size(), 1u);
    EXPECT_EQ(host.find(MSG_DEAL_DAYOFF_COUNT)[0].target, nullptr);
}

TEST_F(ChartModuleHost, DefaultParametersFileInTheWorkFolder) {
    QString opened;
    void* document = H(0x5D);
    host.fill<coreOpenWorkData>(MSG_WD_OPEN, [&](coreOpenWorkData* r) {
        opened = QString::fromUtf16(reinterpret_cast<const char16_t*>(r->path));
        r->handle = document;
    });
    std::unique_ptr<CXMLWorkData> tree(module.getDefaultXml());
    ASSERT_TRUE(tree);
    EXPECT_EQ(host.find(MSG_WD_OPEN).at(0).target, host.handle());
    EXPECT_EQ(opened, "/work/folder/etc/PFChartModule.rdd");
    EXPECT_EQ(tree->document(), document);

    coreSzNode saved = {0, 0, 0};
    host.fill<coreSzNode>(MSG_WD_SAVE, [&](coreSzNode* node) { saved = *node; });
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
