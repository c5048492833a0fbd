#include "property/CIntProperty.h"

#include "property/CPropertyWork.h"

CIntProperty::CIntProperty(CPropertyWork* page, int id, int group, bool notify, int minimum, int maximum,
                           int* variable, QString name, QString description)
    : COneProperty(page, id, group, notify, name, description), minimum_(minimum), maximum_(maximum),
      variable_(variable) {}

void CIntProperty::changeValue(QVariant& value, stateChangeProperty& state) {
    const int v = value.toInt();
    state.changed = false;
    if (!variable_) return;
    if (v != *variable_) state.changed = notify_;
    *variable_ = v;
}

int CIntProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyIntItem(group_, name.utf16(), description.utf16(), variable_ ? *variable_ : 0, minimum_,
                                       maximum_, false);
    return index_;
}

QVariant CIntProperty::Value() const { return QVariant(variable_ ? *variable_ : 0); }
