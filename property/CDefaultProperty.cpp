#include "property/CDefaultProperty.h"

#include "property/CPropertyWork.h"

CDefaultProperty::CDefaultProperty(CPropertyWork* page, int id, int group, void* owner)
    : COneProperty(page, id, group, false), owner_(static_cast<CPropertyHead*>(owner)) {}

void CDefaultProperty::changeValue(QVariant& value, stateChangeProperty&) {
    if (!value.toBool() || !owner_) return;
    SetProperty();
    owner_->setStartParam();
}

int CDefaultProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyBoolItem(group_, name.utf16(), description.utf16(), false);
    return index_;
}
