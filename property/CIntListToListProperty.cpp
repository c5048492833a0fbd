#include "property/CIntListToListProperty.h"

#include "property/CPropertyWork.h"

CIntListToListProperty::CIntListToListProperty(CPropertyWork* page, int id, int group, bool notify, QStringList& texts,
                                               int* variable, int codeCount, int* codes, QString name,
                                               QString description)
    : COneProperty(page, id, group, notify, name, description), texts_(texts), variable_(variable) {
    if (codes && codeCount > 0) codes_.assign(codes, codes + codeCount);
}

void CIntListToListProperty::changeValue(QVariant& value, stateChangeProperty& state) {
    const int i = value.toInt();
    if (i < 0 || i >= texts_.size() || i >= int(codes_.size()) || !variable_) return;
    const int code = codes_[std::size_t(i)];
    if (code == *variable_) return;
    *variable_ = code;
    state.changed = true;
}

int CIntListToListProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyListItem(group_, name.utf16(), description.utf16(), texts_, getStrForCode());
    return index_;
}

int CIntListToListProperty::getStrForCode() const {
    if (!variable_) return 0;
    for (std::size_t i = 0; i < codes_.size(); ++i)
        if (codes_[i] == *variable_) return int(i);
    return 0;
}

QVariant CIntListToListProperty::Value() const { return QVariant(getStrForCode()); }
