#include "property/CFontProperty.h"

#include "property/CPropertyWork.h"

CFontProperty::CFontProperty(CPropertyWork* page, int id, int group, bool notify, QFont* variable, QString name,
                             QString description)
    : COneProperty(page, id, group, notify, name, description), variable_(variable) {}

void CFontProperty::changeValue(QVariant& value, stateChangeProperty& state) {
    const QFont font = value.canConvert<QFont>() ? value.value<QFont>() : QFont();
    if (!variable_) return;
    if (font != *variable_) state.changed = notify_;
    *variable_ = font;
}

int CFontProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyFontItem(group_, name.utf16(), description.utf16(), variable_ ? *variable_ : QFont());
    return index_;
}

QVariant CFontProperty::Value() const { return QVariant(variable_ ? *variable_ : QFont()); }
