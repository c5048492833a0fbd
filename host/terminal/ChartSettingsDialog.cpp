#include "host/terminal/ChartSettingsDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "host/DataCore.h"
#include "host/terminal/DialogParts.h"
#include "host/data/ChartObject.h"
#include "host/data/Instrument.h"
#include "host/terminal/ChartDescription.h"

namespace host {
namespace terminal {

namespace {

// Largest box the fields offer; the data core checks the real bound for the instrument.
const double kMaxBox = 1e9;

}  // namespace

ChartSettingsDialog::ChartSettingsDialog(DataCore& data, void* chart, QWidget* parent)
    : QDialog(parent), data_(data), chart_(chart) {
    setObjectName(QStringLiteral("chartSettingsDialog"));
    QVBoxLayout* layout = new QVBoxLayout(this);
    const data::ChartObject* c = data_.chart(chart_);
    error_ = new QLabel;
    error_->setObjectName(QStringLiteral("settingsError"));
    error_->setStyleSheet(QStringLiteral("color: #b00000"));
    error_->setWordWrap(true);
    if (!c) {
        setWindowTitle(tr("Chart settings"));
        error_->setText(tr("This chart is no longer in the data core."));
        layout->addWidget(error_);
        QDialogButtonBox* close = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);
        layout->addWidget(close);
        return;
    }
    type_ = c->type();
    setWindowTitle(tr("%1 settings").arg(QString::fromLatin1(data::chartTypeName(type_))));
    QLabel* title = new QLabel(chartHeader(*c));
    title->setObjectName(QStringLiteral("settingsTitle"));
    layout->addWidget(title);

    QFormLayout* form = new QFormLayout;
    const int decimals = std::max(0, std::min(9, c->instrument().precision()));
    box_ = new QDoubleSpinBox;
    box_->setObjectName(QStringLiteral("boxSize"));
    box_->setDecimals(decimals);
    box_->setRange(std::pow(10.0, -decimals), kMaxBox);
    box_->setSingleStep(std::pow(10.0, -decimals));
    form->addRow(type_ == data::ChartType::Renko ? tr("&Brick size:") : tr("&Box size:"), box_);
    if (type_ != data::ChartType::Renko) {
        reversal_ = new QSpinBox;
        reversal_->setObjectName(QStringLiteral("reversal"));
        reversal_->setRange(1, 1000);
        reversal_->setSuffix(tr(" boxes"));
        form->addRow(tr("&Reversal:"), reversal_);
    }
    if (type_ == data::ChartType::Kagi) {
        percent_ = new QDoubleSpinBox;
        percent_->setObjectName(QStringLiteral("reversalPercent"));
        percent_->setRange(0, 100);
        percent_->setDecimals(2);
        percent_->setSuffix(tr(" %"));
        percent_->setSpecialValueText(tr("by boxes"));
        form->addRow(tr("Reversal &percentage:"), percent_);
    }
    if (c->instrument().hasOhlc()) {
        price_ = new QComboBox;
        price_->setObjectName(QStringLiteral("priceField"));
        price_->addItem(tr("Close"), int(data::PriceField::Close));
        price_->addItem(tr("Median (high + low) / 2"), int(data::PriceField::Median));
        price_->addItem(tr("Typical (high + low + close) / 3"), int(data::PriceField::Typical));
        form->addRow(tr("P&rice:"), price_);
    } else {
        form->addRow(tr("Price:"), new QLabel(tr("Close (the quotes have no high and low)")));
    }
    const bool pf = type_ == data::ChartType::PointAndFigure;
    risingButton_ = new QPushButton;
    risingButton_->setObjectName(QStringLiteral("risingColour"));
    fallingButton_ = new QPushButton;
    fallingButton_->setObjectName(QStringLiteral("fallingColour"));
    form->addRow(pf ? tr("&X colour:") : type_ == data::ChartType::Renko ? tr("R&ising colour:") : tr("&Thick line colour:"),
                 risingButton_);
    form->addRow(pf ? tr("&O colour:") : type_ == data::ChartType::Renko ? tr("&Falling colour:") : tr("T&hin line colour:"),
                 fallingButton_);
    connect(risingButton_, &QPushButton::clicked, this, [this] { chooseColour(this, risingButton_, &rising_); });
    connect(fallingButton_, &QPushButton::clicked, this, [this] { chooseColour(this, fallingButton_, &falling_); });
    layout->addLayout(form);
    layout->addWidget(error_);

    layout->addWidget(applyButtons(this, [this] { return apply(); }));
    setSettings(c->settings());
}

data::ChartSettings ChartSettingsDialog::settings() const {
    data::ChartSettings s;
    if (box_) s.box = box_->value();
    s.reversal = reversal_ ? reversal_->value() : data::kDefaultReversal;
    s.percent = percent_ ? percent_->value() : 0;
    s.price = price_ ? data::PriceField(price_->currentData().toInt()) : data::PriceField::Close;
    s.rising = rising_.rgba();
    s.falling = falling_.rgba();
    if (const data::ChartObject* c = data_.chart(chart_))
        if (!reversal_) s.reversal = c->settings().reversal;  // Renko keeps what it had
    return s;
}

void ChartSettingsDialog::setSettings(const data::ChartSettings& s) {
    if (box_) box_->setValue(s.box);
    if (reversal_) reversal_->setValue(s.reversal);
    if (percent_) percent_->setValue(s.percent);
    if (price_) price_->setCurrentIndex(std::max(0, price_->findData(int(s.price))));
    rising_ = QColor::fromRgba(s.rising);
    falling_ = QColor::fromRgba(s.falling);
    if (risingButton_) showColour(risingButton_, rising_);
    if (fallingButton_) showColour(fallingButton_, falling_);
}

bool ChartSettingsDialog::apply(QString* error) {
    std::string why = "the chart is no longer in the data core";
    if (box_ && data_.chart(chart_) && data_.configure(chart_, settings(), &why)) {
        error_->clear();
        emit applied(chart_);
        return true;
    }
    const QString text = tr("Not applied: %1.").arg(QString::fromStdString(why));
    error_->setText(text);
    if (error) *error = text;
    return false;
}

}  // namespace terminal
}  // namespace host
