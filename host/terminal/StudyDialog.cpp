#include "host/terminal/StudyDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "host/LineStudies.h"
#include "host/terminal/DialogParts.h"

namespace host {
namespace terminal {

namespace {

// Room for the text in the shape record the chart reads, its end mark included.
const int kMaxTextChars = LS_TEXT_CHARS - 1;
const int kMaxWidth = 20;
const int kMinPoints = 4, kMaxPoints = 144;

QCheckBox* check(const QString& text, const char* name) {
    QCheckBox* box = new QCheckBox(text);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}

}  // namespace

StudyDialog::StudyDialog(LineStudies& studies, std::int32_t id, QWidget* parent)
    : QDialog(parent), studies_(studies), id_(id) {
    setObjectName(QStringLiteral("studyDialog"));
    QVBoxLayout* layout = new QVBoxLayout(this);
    error_ = new QLabel;
    error_->setObjectName(QStringLiteral("studyError"));
    error_->setStyleSheet(QStringLiteral("color: #b00000"));
    const LineStudies::Study* s = studies_.study(id_);
    if (!s) {
        setWindowTitle(tr("Line study"));
        error_->setText(tr("This line study is no longer on the chart."));
        layout->addWidget(error_);
        QDialogButtonBox* close = new QDialogButtonBox(QDialogButtonBox::Close);
        connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);
        layout->addWidget(close);
        return;
    }
    setWindowTitle(tr("%1 properties").arg(ls::studyTitle(s->kind)));
    QFormLayout* form = new QFormLayout;
    colourButton_ = new QPushButton;
    colourButton_->setObjectName(QStringLiteral("studyColour"));
    connect(colourButton_, &QPushButton::clicked, this, [this] { chooseColour(this, colourButton_, &colour_); });
    form->addRow(tr("&Colour:"), colourButton_);
    if (s->kind == ls::StudyKind::Text) {
        text_ = new QLineEdit;
        text_->setObjectName(QStringLiteral("studyText"));
        text_->setMaxLength(kMaxTextChars);
        form->addRow(tr("&Text:"), text_);
        family_ = new QFontComboBox;
        family_->setObjectName(QStringLiteral("studyFont"));
        form->addRow(tr("&Font:"), family_);
        size_ = new QSpinBox;
        size_->setObjectName(QStringLiteral("studyFontSize"));
        size_->setRange(kMinPoints, kMaxPoints);
        size_->setSuffix(tr(" pt"));
        form->addRow(tr("&Size:"), size_);
        QHBoxLayout* styles = new QHBoxLayout;
        styles->addWidget(bold_ = check(tr("&Bold"), "studyBold"));
        styles->addWidget(italic_ = check(tr("&Italic"), "studyItalic"));
        styles->addWidget(underline_ = check(tr("&Underline"), "studyUnderline"));
        styles->addWidget(strikeOut_ = check(tr("Stri&ke out"), "studyStrikeOut"));
        form->addRow(QString(), styles);
    } else {
        width_ = new QSpinBox;
        width_->setObjectName(QStringLiteral("studyWidth"));
        width_->setRange(1, kMaxWidth);
        width_->setSuffix(tr(" px"));
        form->addRow(tr("&Width:"), width_);
        style_ = new QComboBox;
        style_->setObjectName(QStringLiteral("studyStyle"));
        style_->addItem(tr("Solid"), int(Qt::SolidLine));
        style_->addItem(tr("Dashed"), int(Qt::DashLine));
        style_->addItem(tr("Dotted"), int(Qt::DotLine));
        style_->addItem(tr("Dash and dot"), int(Qt::DashDotLine));
        form->addRow(tr("St&yle:"), style_);
        if (s->kind == ls::StudyKind::Line) {
            QHBoxLayout* extend = new QHBoxLayout;
            extend->addWidget(left_ = check(tr("Extend &left"), "studyExtendLeft"));
            extend->addWidget(right_ = check(tr("Extend &right"), "studyExtendRight"));
            form->addRow(QString(), extend);
        }
    }
    layout->addLayout(form);
    layout->addWidget(error_);
    layout->addWidget(applyButtons(this, [this] { return apply(); }));
    setParams(s->params);
}

ls::StudyParams StudyDialog::params() const {
    ls::StudyParams p = base_;
    p.colour = colour_.rgb() & 0xFFFFFFu;
    if (width_) p.penWidth = width_->value();
    if (style_) p.penStyle = style_->currentData().toInt();
    if (left_) p.extendLeft = left_->isChecked();
    if (right_) p.extendRight = right_->isChecked();
    if (text_) p.text = text_->text();
    if (family_) p.family = family_->currentFont().family().toStdString();
    if (size_) p.pointSize = size_->value();
    if (bold_) p.bold = bold_->isChecked();
    if (italic_) p.italic = italic_->isChecked();
    if (underline_) p.underline = underline_->isChecked();
    if (strikeOut_) p.strikeOut = strikeOut_->isChecked();
    return p;
}

void StudyDialog::setParams(const ls::StudyParams& p) {
    base_ = p;
    colour_ = QColor::fromRgb(p.colour & 0xFFFFFFu);
    if (colourButton_) showColour(colourButton_, colour_);
    if (width_) width_->setValue(p.penWidth);
    if (style_) {
        const int at = style_->findData(int(p.penStyle));
        style_->setCurrentIndex(at < 0 ? 0 : at);
    }
    if (left_) left_->setChecked(p.extendLeft);
    if (right_) right_->setChecked(p.extendRight);
    if (text_) text_->setText(p.text);
    if (family_) family_->setCurrentFont(QFont(QString::fromStdString(p.family)));
    if (size_) size_->setValue(p.pointSize);
    if (bold_) bold_->setChecked(p.bold);
    if (italic_) italic_->setChecked(p.italic);
    if (underline_) underline_->setChecked(p.underline);
    if (strikeOut_) strikeOut_->setChecked(p.strikeOut);
}

bool StudyDialog::apply() {
    if (!studies_.setParams(id_, params())) {
        error_->setText(tr("This line study is no longer on the chart."));
        return false;
    }
    base_ = params();
    error_->clear();
    emit applied(id_);
    return true;
}

}  // namespace terminal
}  // namespace host
