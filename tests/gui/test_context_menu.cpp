// The chart window's context menu: its entries for no, one and several accounts, and deals
// and orders placed from it reaching the account's deal interface. No translation table is
// installed, so every text is its key.
#include <QAction>
#include <QMenu>

#include "ChartWindowFixture.h"
#include "data/ScaleEngine.h"

namespace {

struct Trade {
    void* target;
    unsigned int message;
    std::string instrument;
    int accountId;
    double price;
};

fxdDealAccount Account(int id, const QString& name) {
    fxdDealAccount a{};
    a.accountId = id;
    std::memcpy(a.name, name.utf16(), sizeof(coreWChar) * std::size_t(name.size()));
    return a;
}

void* const kMainDealing = reinterpret_cast<void*>(std::intptr_t(0x40));
void* const kSecondDealing = reinterpret_cast<void*>(std::intptr_t(0x50));

QStringList Texts(const QMenu* menu) {
    QStringList out;
    for (const QAction* action : menu->actions()) out << action->text();
    return out;
}

struct ContextMenu : ChartWindowFixture {
    std::vector<Trade> trades;

    void SetUp() override {
        ChartWindowFixture::SetUp();
        for (unsigned int message : {unsigned(MSG_DEAL_DEAL), unsigned(MSG_DEAL_ORDER)})
            host.on(message, [this, message](void* target, std::intptr_t p1, std::intptr_t) {
                const fxdTradeRequest r = *reinterpret_cast<const fxdTradeRequest*>(p1);
                trades.push_back({target, message, std::string(r.instrument), r.accountId, r.price});
                return 0;
            });
    }
    void AddAccount(int id, const QString& name, void* dealing) {
        module.GetAccountList().addToAccountList(Account(id, name), dealing);
    }
    QMenu* Open(const QPoint& at) {
        widget->ShowPopupMenu(at);
        QMenu* menu = widget->GetAreaMenu();
        if (menu) menu->hide();
        return menu;
    }
    // The action `text` of the account menu `account` (several accounts) after hovering it.
    QAction* AccountAction(QMenu* menu, int account, const QString& text) {
        QMenu* own = menu->actions().at(0)->menu()->actions().at(account)->menu();
        for (QAction* action : own->actions())
            if (action->text() == text) {
                action->hover();
                return action;
            }
        return nullptr;
    }
};

}  // namespace

TEST_F(ContextMenu, TradeEntryFollowsTheAccounts) {
    widget->ShowPopupMenu(QPoint(100, 100));
    EXPECT_EQ(widget->GetAreaMenu(), nullptr);  // no area: no menu at all
    Show("EURUSD");

    QMenu* menu = Open(MiddleOfArea(0));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(widget->GetTradeAccountMode(), 0);
    EXPECT_EQ(Texts(menu), (QStringList{"C0030Propes", "C0033Select", "C0015Delete", "C0046ZoomIN", "PF0021"}));
    EXPECT_EQ(Texts(menu->actions()[0]->menu()), QStringList{"EURUSD I, 60"});
    EXPECT_FALSE(menu->actions()[3]->icon().isNull());
    EXPECT_FALSE(menu->actions()[4]->icon().isNull());

    AddAccount(7, "Main", kMainDealing);
    menu = Open(MiddleOfArea(0));
    EXPECT_EQ(widget->GetTradeAccountMode(), 1);
    EXPECT_EQ(Texts(menu), (QStringList{"PF0019", "C0030Propes", "C0033Select", "C0015Delete", "C0046ZoomIN", "PF0021"}));
    EXPECT_FALSE(menu->actions()[0]->icon().isNull());
    QMenu* trade = menu->actions()[0]->menu();
    ASSERT_NE(trade, nullptr);
    EXPECT_EQ(Texts(trade), (QStringList{"Tr0038Deal", "Tr0131SetOrdr"}));
    for (const QAction* action : trade->actions()) {
        EXPECT_FALSE(action->icon().isNull());
        EXPECT_TRUE(action->shortcut().isEmpty());
    }

    AddAccount(8, "Second", kSecondDealing);
    menu = Open(MiddleOfArea(0));
    EXPECT_EQ(widget->GetTradeAccountMode(), 2);
    trade = menu->actions()[0]->menu();
    EXPECT_EQ(Texts(trade), (QStringList{"Main", "Second"}));
    for (const QAction* account : trade->actions()) EXPECT_EQ(Texts(account->menu()), (QStringList{"Tr0038Deal", "Tr0131SetOrdr"}));
    EXPECT_EQ(Texts(menu).size(), 6);  // rebuilt, not appended to
}

TEST_F(ContextMenu, DealAndOrderReachTheHoveredAccountsDealing) {
    Show("EURUSD");
    Show("AVERYLONGINSTRUMENTNAME");
    AddAccount(7, "Main", kMainDealing);
    AddAccount(8, "Second", kSecondDealing);

    const QPoint at = MiddleOfArea(1) + QPoint(0, 7);
    QMenu* menu = Open(at);
    AccountAction(menu, 1, "Tr0038Deal")->trigger();
    AccountAction(menu, 0, "Tr0131SetOrdr")->trigger();
    ASSERT_EQ(trades.size(), 2u);
    EXPECT_EQ(trades[0].message, unsigned(MSG_DEAL_DEAL));
    EXPECT_EQ(trades[0].target, kSecondDealing);
    EXPECT_EQ(trades[0].accountId, 8);
    EXPECT_EQ(trades[0].instrument, "AVERYLONGINSTRUMENTN");  // 20 characters

    EXPECT_EQ(trades[1].message, unsigned(MSG_DEAL_ORDER));
    EXPECT_EQ(trades[1].target, kMainDealing);
    EXPECT_EQ(trades[1].accountId, 7);
    const pf::ScaleEngine& e = *widget->GetChart()->GetAreas()[1]->GetEngine();
    EXPECT_GT(trades[1].price, e.UnTranslateY(at.y() + 1));  // the menu's own pixel row
    EXPECT_LT(trades[1].price, e.UnTranslateY(at.y() - 1));

    // One account: the trade goes to it without any hover; the first area's instrument.
    module.GetAccountList().delFromAccountList(Account(8, ""), nullptr);
    menu = Open(MiddleOfArea(0));
    menu->actions()[0]->menu()->actions()[0]->trigger();
    ASSERT_EQ(trades.size(), 3u);
    EXPECT_EQ(trades[2].target, kMainDealing);
    EXPECT_EQ(trades[2].instrument, "EURUSD");
}

TEST_F(ContextMenu, NothingIsSentWithoutAnAccountOrOffTheData) {
    Show("EURUSD");
    Open(MiddleOfArea(0));
    widget->TradeDeal();  // no account
    widget->TradeOrder();

    AddAccount(7, "Main", kMainDealing);
    AddAccount(8, "Second", kSecondDealing);
    Open(MiddleOfArea(0));
    widget->TradeDeal();  // several accounts, none hovered

    module.GetAccountList().delFromAccountList(Account(8, ""), nullptr);
    Open(QPoint(widget->width() / 2, PFChartWidget::kToolBarHeight / 2));  // over the tool bar
    EXPECT_TRUE(widget->GetTradeInstrument().isEmpty());
    widget->TradeDeal();
    widget->TradeOrder();
    EXPECT_TRUE(trades.empty());
}
