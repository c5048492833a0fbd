#include "host/terminal/AccountsPanel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/data/Instrument.h"

namespace host {
namespace terminal {

namespace {

const int kDealingRole = Qt::UserRole;
const int kIdRole = Qt::UserRole + 1;

// The account record's name, read bytewise (the packed record need not be aligned).
QString accountName(const fxdDealAccount& account) {
    coreWChar name[sizeof account.name / sizeof(coreWChar) + 1] = {};
    std::memcpy(name, reinterpret_cast<const char*>(&account) + offsetof(fxdDealAccount, name), sizeof account.name);
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(name));
}

}  // namespace

AccountsPanel::AccountsPanel(DealingService& dealing, DataCore& data, const std::vector<void*>& dealings,
                             QWidget* parent)
    : QWidget(parent), dealing_(dealing), data_(data), dealings_(dealings) {
    setObjectName(QStringLiteral("accountsPanel"));
    accounts_ = new QTreeWidget;
    accounts_->setObjectName(QStringLiteral("accounts"));
    accounts_->setHeaderLabels({tr("Account"), tr("Id"), tr("Dealing")});
    accounts_->setRootIsDecorated(false);
    accounts_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    QPushButton* add = new QPushButton(tr("&Add account"));
    QPushButton* remove = new QPushButton(tr("Re&move account"));
    dayOff_ = new QListWidget;
    dayOff_->setObjectName(QStringLiteral("dayOff"));
    QHBoxLayout* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(accounts_, 2);
    layout->addLayout(buttons);
    layout->addWidget(new QLabel(tr("Day off of the selected account:")));
    layout->addWidget(dayOff_, 1);
    connect(add, &QPushButton::clicked, this, [this] { addAccount(); });
    connect(remove, &QPushButton::clicked, this, [this] { removeSelected(); });
    connect(accounts_, &QTreeWidget::currentItemChanged, this, [this] { showDayOff(); });
    connect(dayOff_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        if (!filling_) setDayOff(item->text(), item->checkState() == Qt::Checked);
    });
    refresh();
}

void AccountsPanel::refresh() {
    void* keepDealing = nullptr;
    int keepId = 0;
    selected(&keepDealing, &keepId);
    accounts_->clear();
    for (void* d : dealings_)
        for (const fxdDealAccount& a : dealing_.accounts(d)) {
            const int id = a.accountId;
            QTreeWidgetItem* item = new QTreeWidgetItem(
                accounts_, {accountName(a), QString::number(id), QString::fromStdString(dealing_.dealingName(d))});
            item->setData(0, kDealingRole, QVariant::fromValue(reinterpret_cast<quintptr>(d)));
            item->setData(0, kIdRole, id);
            if (d == keepDealing && id == keepId) accounts_->setCurrentItem(item);
        }
    if (!accounts_->currentItem() && accounts_->topLevelItemCount() > 0)
        accounts_->setCurrentItem(accounts_->topLevelItem(0));
    showDayOff();
}

bool AccountsPanel::selected(void** dealing, int* id) const {
    const QTreeWidgetItem* item = accounts_ ? accounts_->currentItem() : nullptr;
    if (!item) return false;
    *dealing = reinterpret_cast<void*>(item->data(0, kDealingRole).value<quintptr>());
    *id = item->data(0, kIdRole).toInt();
    return true;
}

int AccountsPanel::addAccount() {
    if (dealings_.empty()) return 0;
    const int id = ++nextId_;
    const QString name = tr("Account %1").arg(id);
    dealing_.raiseAccountAdded(dealings_.front(), id, name);
    refresh();
    emit message(tr("%1 opened (event 16002)").arg(name));
    return id;
}

bool AccountsPanel::removeSelected() {
    void* d = nullptr;
    int id = 0;
    if (!selected(&d, &id)) return false;
    dealing_.raiseAccountRemoved(d, id);
    refresh();
    emit message(tr("account %1 closed (event 16003)").arg(id));
    return true;
}

bool AccountsPanel::setDayOff(const QString& symbol, bool dayOff) {
    void* d = nullptr;
    int id = 0;
    if (!selected(&d, &id) || !dealing_.setDayOff(d, id, symbol.toStdString(), dayOff)) return false;
    const auto key = std::make_pair(std::make_pair(d, id), symbol);
    off_.erase(std::remove(off_.begin(), off_.end(), key), off_.end());
    if (dayOff) off_.push_back(key);
    dealing_.raiseDayOff(d, id);
    showDayOff();
    emit message(tr("%1 %2 for account %3 (event 16048)")
                     .arg(symbol, dayOff ? tr("in a day off") : tr("trading"))
                     .arg(id));
    return true;
}

void AccountsPanel::showDayOff() {
    void* d = nullptr;
    int id = 0;
    const bool any = selected(&d, &id);
    filling_ = true;
    dayOff_->clear();
    if (any)
        for (const std::string& name : data_.instrumentNames()) {
            if (!data_.loaded(name)) continue;
            const QString symbol = QString::fromStdString(name);
            QListWidgetItem* item = new QListWidgetItem(symbol, dayOff_);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
            const bool off = std::find(off_.begin(), off_.end(), std::make_pair(std::make_pair(d, id), symbol)) != off_.end();
            item->setCheckState(off ? Qt::Checked : Qt::Unchecked);
        }
    filling_ = false;
}

}  // namespace terminal
}  // namespace host
