#include "host/terminal/DialogParts.h"

#include <QColorDialog>
#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace host {
namespace terminal {

void showColour(QPushButton* button, const QColor& colour) {
    button->setText(colour.name());
    button->setStyleSheet(QStringLiteral("background-color: %1; color: %2")
                              .arg(colour.name(), colour.lightness() < 128 ? QStringLiteral("white") : QStringLiteral("black")));
}

bool chooseColour(QWidget* parent, QPushButton* button, QColor* colour) {
    const QColor chosen = QColorDialog::getColor(*colour, parent, QDialog::tr("Colour"));
    if (!chosen.isValid()) return false;
    *colour = chosen;
    showColour(button, chosen);
    return true;
}

QDialogButtonBox* applyButtons(QDialog* dialog, std::function<bool()> apply) {
    QDialogButtonBox* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Apply)->setObjectName(QStringLiteral("apply"));
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("ok"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    QObject::connect(buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, dialog, [apply] { apply(); });
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, [dialog, apply] {
        if (apply()) dialog->accept();
    });
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

}  // namespace terminal
}  // namespace host
