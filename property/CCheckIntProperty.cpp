#include "property/CCheckIntProperty.h"

#include "property/CPropertyWork.h"

CCheckIntProperty::CCheckIntProperty(CPropertyWork* page, int id, int group, bool notify, int* variable, int onValue,
                                     int offValue, QString name, QString description)
    : COneProperty(page, id, group, notify, name, description), variable_(variable), on_(onValue), off_(offValue) {}

void CCheckIntProperty::changeValue(QVariant& value, stateChangeProperty&) {
    if (variable_) *variable_ = value.toBool() ? on_ : off_;
}

int CCheckIntProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyBoolItem(group_, name.utf16(), description.utf16(), getBoolValue());
    return index_;
}

bool CCheckIntProperty::getBoolValue() const { return variable_ && *variable_ == on_; }

QVariant CCheckIntProperty::Value() const { return QVariant(getBoolValue()); }
