#include "host/terminal/TradeTicket.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>

namespace host {
namespace terminal {

namespace {

// Amounts in units of the instrument's base currency.
const double kFirstAmount = 100000;
const double kMostAmount = 1e12;
const double kAmountStep = 10000;
double gLastAmount = kFirstAmount;

}  // namespace

double TradeTicket::lastAmount() { return gLastAmount; }

TradeTicket::TradeTicket(DealingService& dealing, const DealingService::Trade& request, std::function<double()> market,
                         int decimals, QWidget* parent)
    : QDialog(parent), dealing_(dealing), request_(request), market_(std::move(market)), decimals_(decimals) {
    const bool order = request.kind == DealingService::TradeKind::Order;
    const QString instrument = QString::fromStdString(request.instrument);
    setObjectName(QStringLiteral("tradeTicket"));
    setWindowTitle(order ? tr("Order ticket: %1").arg(instrument) : tr("Deal ticket: %1").arg(instrument));

    QFormLayout* form = new QFormLayout;
    QLabel* what = new QLabel(order ? tr("<b>%1</b>, an order at a price").arg(instrument)
                                    : tr("<b>%1</b>, a deal at the market").arg(instrument));
    form->addRow(tr("Instrument:"), what);

    QHBoxLayout* sides = new QHBoxLayout;
    side_ = new QButtonGroup(this);
    QRadioButton* buy = new QRadioButton(tr("&Buy"));
    QRadioButton* sell = new QRadioButton(tr("&Sell"));
    buy->setObjectName(QStringLiteral("buy"));
    sell->setObjectName(QStringLiteral("sell"));
    side_->addButton(buy, int(DealingService::Side::Buy));
    side_->addButton(sell, int(DealingService::Side::Sell));
    sides->addWidget(buy);
    sides->addWidget(sell);
    sides->addStretch(1);
    form->addRow(tr("Side:"), sides);

    amount_ = new QDoubleSpinBox;
    amount_->setObjectName(QStringLiteral("amount"));
    amount_->setDecimals(0);
    amount_->setRange(0, kMostAmount);
    amount_->setSingleStep(kAmountStep);
    amount_->setGroupSeparatorShown(true);
    amount_->setValue(gLastAmount);
    form->addRow(tr("&Amount:"), amount_);

    if (order) {
        price_ = new QDoubleSpinBox;
        price_->setObjectName(QStringLiteral("price"));
        price_->setDecimals(std::max(0, std::min(8, decimals)));
        price_->setRange(0, 1e9);
        price_->setSingleStep(std::pow(10.0, -price_->decimals()));
        price_->setValue(request.price);
        form->addRow(tr("&Price:"), price_);
    } else {
        marketPrice_ = new QLabel;
        marketPrice_->setObjectName(QStringLiteral("marketPrice"));
        form->addRow(tr("Price:"), marketPrice_);
    }

    account_ = new QComboBox;
    account_->setObjectName(QStringLiteral("account"));
    for (void* d : dealing.dealings())
        for (const fxdDealAccount& a : dealing.accounts(d)) {
            const QString name = dealing.accountName(d, a.accountId);
            account_->addItem(tr("%1 (%2, %3)").arg(name).arg(a.accountId).arg(QString::fromStdString(dealing.dealingName(d))),
                              QVariant::fromValue(QList<QVariant>{QVariant::fromValue(reinterpret_cast<quintptr>(d)),
                                                                  QVariant(int(a.accountId))}));
            if (d == request.dealing && a.accountId == request.accountId) account_->setCurrentIndex(account_->count() - 1);
        }
    form->addRow(tr("A&ccount:"), account_);

    hint_ = new QLabel;
    hint_->setObjectName(QStringLiteral("ticketHint"));
    QDialogButtonBox* buttons = new QDialogButtonBox;
    book_ = buttons->addButton(tr("Book"), QDialogButtonBox::AcceptRole);
    book_->setObjectName(QStringLiteral("book"));
    book_->setDefault(true);  // Return books (once it can)
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { bookIt(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    QVBoxLayout* top = new QVBoxLayout(this);
    top->addLayout(form);
    top->addWidget(hint_);
    top->addWidget(buttons);

    connect(side_, static_cast<void (QButtonGroup::*)(QAbstractButton*)>(&QButtonGroup::buttonClicked), this, [this] { update(); });
    connect(amount_, static_cast<void (QDoubleSpinBox::*)(double)>(&QDoubleSpinBox::valueChanged), this, [this] { update(); });
    if (price_)
        connect(price_, static_cast<void (QDoubleSpinBox::*)(double)>(&QDoubleSpinBox::valueChanged), this, [this] { update(); });
    update();
}

DealingService::Trade TradeTicket::trade() const {
    DealingService::Trade t = request_;
    const int side = side_->checkedId();
    t.side = side == int(DealingService::Side::Buy)    ? DealingService::Side::Buy
             : side == int(DealingService::Side::Sell) ? DealingService::Side::Sell
                                                       : DealingService::Side::None;
    t.amount = amount_->value();
    if (price_) {
        t.price = price_->value();
    } else {
        const double m = market_ ? market_() : std::nan("");
        t.price = std::isfinite(m) ? m : 0;
    }
    const QList<QVariant> account = account_->currentData().toList();
    if (account.size() == 2) {
        t.dealing = reinterpret_cast<void*>(account[0].value<quintptr>());
        t.accountId = account[1].toInt();
    }
    return t;
}

void TradeTicket::update() {
    if (marketPrice_) {
        const double m = market_ ? market_() : std::nan("");
        marketPrice_->setText(std::isfinite(m) ? tr("at the market (now %1)").arg(QString::number(m, 'f', decimals_))
                                               : tr("at the market"));
    }
    QString missing;
    if (side_->checkedId() < 0)
        missing = tr("Choose buy or sell.");
    else if (amount_->value() <= 0)
        missing = tr("Give an amount.");
    else if (price_ && price_->value() <= 0)
        missing = tr("Give a price above 0.");
    else if (account_->count() == 0)
        missing = tr("There is no account to book on.");
    hint_->setText(missing);
    book_->setEnabled(missing.isEmpty());
}

void TradeTicket::bookIt() {
    update();
    if (!book_->isEnabled()) return;
    const DealingService::Trade t = trade();
    if (!dealing_.book(t)) {
        hint_->setText(tr("The dealing did not take it: the account is gone. Choose another."));
        return;
    }
    gLastAmount = t.amount;
    emit booked(dealing_.blotter().back());
    accept();
}

}  // namespace terminal
}  // namespace host
