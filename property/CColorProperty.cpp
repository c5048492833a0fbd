#include "property/CColorProperty.h"

#include <QColor>

#include "property/CPropertyWork.h"

CColorProperty::CColorProperty(CPropertyWork* page, int id, int group, bool notify, long* variable, QString name,
                               QString description)
    : COneProperty(page, id, group, notify, name, description), variable_(variable) {}

void CColorProperty::changeValue(QVariant& value, stateChangeProperty& state) {
    const QColor color = value.canConvert<QColor>() ? value.value<QColor>() : QColor();
    const long rgb = long(color.rgb());
    if (!variable_) return;
    // Compared without the alpha byte, which the variable may or may not carry.
    if ((std::uint32_t(rgb) & 0xFFFFFFu) != (std::uint32_t(*variable_) & 0xFFFFFFu)) state.changed = notify_;
    *variable_ = rgb;
}

int CColorProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyColorItem(group_, name.utf16(), description.utf16(), Value().value<QColor>());
    return index_;
}

QVariant CColorProperty::Value() const {
    return QVariant(QColor(QRgb(variable_ ? std::uint32_t(*variable_) | 0xFF000000u : 0xFF000000u)));
}
