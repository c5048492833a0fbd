// The chart window's context menu: trading from the chart (a deal or an order through the
// dealing interface of an account), the properties, select and delete menus that the chart's
// objects fill, and zooming.
//
// Menu layout, top to bottom:
//   Trade                     only with at least one account; with one account it holds
//     Trade, Place order      the two actions, with several one submenu per account
//   Properties / Select / Delete   one entry per indicator of the chart
//   Zoom In, Zoom Out
#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <cmath>
#include <cstring>

#include "abi/messages.h"
#include "abi/records/dealing_records.h"
#include "data/DataSource.h"
#include "data/ScaleEngine.h"
#include "gui/CSkin.h"
#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "module/AccountList.h"
#include "module/PFChartModule.h"
#include "util/QtCompat.h"

namespace {

// How the account of a trade is found (the trade-account mode).
enum TradeAccountMode { NoAccount = 0, OneAccount = 1, SeveralAccounts = 2 };

// The dealing dialog takes at most this many characters of the instrument's name.
const int kTradeInstrumentChars = 20;

QString Text(const PFChartModule* module, const char* key) {
    return module ? module->tr(key) : QString::fromLatin1(key);
}

// The two trade actions, in the menu given.
void AddTradeActions(QMenu* menu, PFChartWidget* widget, const PFChartModule* module) {
    // The deal icon is the skin's.
    const CSkin* skin = widget->GetSkin();
    const QIcon deal = skin && !skin->GetDealIcon().isNull() ? QIcon(QPixmap::fromImage(skin->GetDealIcon()))
                                                             : QIcon(QStringLiteral(":/b_g_deal.png"));
    pf::gui::ConnectGuarded(menu->addAction(deal, Text(module, "Tr0038Deal")), &QAction::triggered, widget,
                            &PFChartWidget::TradeDeal);
    pf::gui::ConnectGuarded(menu->addAction(QIcon(QStringLiteral(":/b_g_order.png")), Text(module, "Tr0131SetOrdr")),
                            &QAction::triggered, widget, &PFChartWidget::TradeOrder);
}

// The line a trade at `point` is for: the first line whose figure lies under the point;
// failing that, the first line of the area whose data part holds the point. Empty off the
// areas.
boost::shared_ptr<gx::Line> TradeLine(gx::Chart* chart, const QPoint& point) {
    if (!chart) return boost::shared_ptr<gx::Line>();
    const gx::FindUnderMouseObject under =
        gx::WidgetWalker<gx::FindUnderMouseObject>(chart, gx::FindUnderMouseObject(point)).Walk();
    if (!under.lines.empty()) return under.lines.front();
    const boost::shared_ptr<gx::Area> area = gx::WidgetWalker<gx::FindArea>(chart, gx::FindArea(point)).Walk().found;
    if (!area) return boost::shared_ptr<gx::Line>();
    for (const boost::shared_ptr<gx::Layer>& layer : area->GetLayers())
        for (const boost::shared_ptr<gx::Indicator>& indicator : layer->GetIndicators())
            if (!indicator->GetLines().empty()) return indicator->GetLines().front();
    return boost::shared_ptr<gx::Line>();
}

QString InstrumentOf(const boost::shared_ptr<gx::Line>& line) {
    if (!line || !line->GetIndicator() || !line->GetIndicator()->GetDataSource()) return QString();
    return line->GetIndicator()->GetDataSource()->GetBaseName().left(kTradeInstrumentChars);
}

// The account a trade goes to, with the deal interface it came from.
struct TradeAccount {
    int id = 0;
    void* dealHandle = nullptr;
    QString name;
};

// Mode 1: the only account; mode 2: the account whose submenu was hovered last. An account
// id of 0 means none was found.
TradeAccount FindTradeAccount(const AccountList& accounts, int mode, const QString& lastHover) {
    TradeAccount found;
    const AccountList::Entries& entries = accounts.GetEntries();
    if (entries.empty()) return found;
    boost::shared_ptr<OneHandleAccount> entry;
    if (mode == OneAccount) {
        entry = entries.front();
    } else if (mode == SeveralAccounts) {
        const int id = accounts.getActiveAccount(lastHover);
        for (const boost::shared_ptr<OneHandleAccount>& e : entries)
            if (id != 0 && e->GetAccountId() == id) {
                entry = e;
                break;
            }
    }
    if (!entry) return found;
    found.id = entry->GetAccountId();
    found.dealHandle = entry->GetDealHandle();
    found.name = entry->GetAccountName();
    return found;
}

// Fills the trade record and sends it to the account's deal interface. Nothing is sent
// without an instrument, an account or a host callback.
void SendTrade(PFChartModule* module, unsigned int message, const QString& instrument, const TradeAccount& account,
               double price) {
    if (!module || !module->sendToHost || instrument.isEmpty() || account.id == 0) return;
    fxdTradeRequest request;
    std::memset(&request, 0, sizeof request);
    const QByteArray name = instrument.toLocal8Bit().left(kTradeInstrumentChars);
    std::memcpy(request.instrument, name.constData(), static_cast<std::size_t>(name.size()));
    request.accountId = account.id;
    request.price = price;
    module->sendToHost(account.dealHandle, message, reinterpret_cast<std::intptr_t>(&request), 0);
    // The dealing the user traded through becomes the module's last selected one.
    module->GetAccountList().setLastAccount(account.name);
}

}  // namespace

void PFChartWidget::OnCustomContextMenuRequested(const QPoint& point) { ShowPopupMenu(point); }

void PFChartWidget::ShowPopupMenu(const QPoint& point) {
    if (chart_->GetAreas().empty()) return;
    tradeAccountMode_ = NoAccount;
    if (!areaMenu_) areaMenu_.reset(new QMenu(this));
    // The trade menus of the previous popup are the area menu's only child menus (the
    // object menus belong to the chart); they go with the actions.
    for (QMenu* old : areaMenu_->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) old->deleteLater();
    areaMenu_->clear();
    menuPoint_ = point;

    // A copy: the host may change the accounts (3114) while the menu is open.
    const AccountList accounts = module_ ? module_->GetAccountList() : AccountList();
    const AccountList::Entries& entries = accounts.GetEntries();
    if (!entries.empty()) {
        QMenu* trade = new QMenu(Text(module_, "PF0019"), areaMenu_.get());
        trade->setIcon(QIcon(QStringLiteral(":/currency.png")));
        pf::gui::ConnectGuarded(trade, &QMenu::hovered, this, &PFChartWidget::OnHovered);
        if (entries.size() == 1) {
            tradeAccountMode_ = OneAccount;
            AddTradeActions(trade, this, module_);
        } else {
            tradeAccountMode_ = SeveralAccounts;
            for (const boost::shared_ptr<OneHandleAccount>& account : entries) {
                QMenu* sub = trade->addMenu(account->GetAccountName());
                // The account's own menu reports its hovers too, so that the account is
                // known however the action was reached.
                pf::gui::ConnectGuarded(sub, &QMenu::hovered, this, &PFChartWidget::OnHovered);
                AddTradeActions(sub, this, module_);
            }
        }
        areaMenu_->addMenu(trade);
    }

    FillContextMenu();
    const struct {
        boost::shared_ptr<QMenu> menu;
        const char* key;
    } objectMenus[] = {{chart_->GetPropMenu(), "C0030Propes"},
                       {chart_->GetSelectMenu(), "C0033Select"},
                       {chart_->GetDeleteMenu(), "C0015Delete"}};
    for (const auto& m : objectMenus) {
        m.menu->setTitle(Text(module_, m.key));
        areaMenu_->addMenu(m.menu.get());
    }
    pf::gui::ConnectGuarded(areaMenu_->addAction(QIcon(QStringLiteral(":/zm1.png")), Text(module_, "C0046ZoomIN")),
                            &QAction::triggered, this, &PFChartWidget::ZoomIn);
    pf::gui::ConnectGuarded(areaMenu_->addAction(QIcon(QStringLiteral(":/zm2.png")), Text(module_, "PF0021")),
                            &QAction::triggered, this, &PFChartWidget::ZoomOut);
    areaMenu_->popup(mapToGlobal(point));
}

void PFChartWidget::FillContextMenu() {
    chart_->GetPropMenu()->clear();
    chart_->GetSelectMenu()->clear();
    chart_->GetDeleteMenu()->clear();
    chart_->FillContextMenu();
}

QString PFChartWidget::GetTradeInstrument() const { return InstrumentOf(TradeLine(chart_.get(), menuPoint_)); }

void PFChartWidget::OnHovered(QAction* action) {
    if (!action) return;
    // The menu that holds the action: an account's own menu under several accounts.
    for (QObject* holder : pf::ActionHolders(action))
        if (const QMenu* menu = qobject_cast<const QMenu*>(holder)) {
            lastHover_ = menu->title();
            return;
        }
}

void PFChartWidget::TradeDeal() {
    if (!module_) return;
    const QString instrument = GetTradeInstrument();
    SendTrade(module_, MSG_DEAL_DEAL, instrument,
              FindTradeAccount(module_->GetAccountList(), tradeAccountMode_, lastHover_), 0.0);
}

void PFChartWidget::TradeOrder() {
    if (!module_) return;
    const boost::shared_ptr<gx::Line> line = TradeLine(chart_.get(), menuPoint_);
    if (!line || !line->GetEngine()) return;
    // The order's price is the price at the row the menu was opened on.
    const double price = line->GetEngine()->UnTranslateY(menuPoint_.y());
    if (!std::isfinite(price)) return;  // the area has not been laid out yet
    SendTrade(module_, MSG_DEAL_ORDER, InstrumentOf(line),
              FindTradeAccount(module_->GetAccountList(), tradeAccountMode_, lastHover_), price);
}

void PFChartWidget::ZoomIn() { toolBar_->OnBnClickedZoomIn(true); }

void PFChartWidget::ZoomOut() { toolBar_->OnBnClickedZoomOut(true); }

void PFChartWidget::OnDelete() {
    gx::WidgetWalker<gx::SetManualDeleteLS>(chart_.get(), gx::SetManualDeleteLS()).Walk();
    RecordLineDelete();
    gx::WidgetWalker2<gx::DeleteSelItems>(chart_.get(), gx::DeleteSelItems()).Walk();
    AfterDelete();
}
