#include "property/CPropertyParamList.h"

#include <cstring>

#include "property/PropertyText.h"

CPropertyParamList::CPropertyParamList(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_LIST, "Error in CPropertyParamList")) {}

QVariant CPropertyParamList::GetPropertyItem() const {
    if (!value_) throw PropertyException("CPropertyParamList error in GetPropertyItem");
    PROPERTY_VALUE_LIST list;
    std::memcpy(&list, value_, sizeof list);
    return QVariant(int(list.selected));
}

void CPropertyParamList::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("CPropertyParamList error in GetPropertyItem");
    PROPERTY_VALUE_LIST list;
    std::memcpy(&list, value_, sizeof list);
    if (Is(value, QMetaType::Int)) {
        const int index = value.toInt();
        if (index < 0 || index >= list.count) return;
        list.selected = index;
    } else if (Is(value, QMetaType::QString)) {
        if (!list.items) return;
        const QString text = value.toString();
        int found = -1;
        for (int i = 0; i < list.count && found < 0; ++i)
            if (property::ReadUni(list.items[i].text, PROPERTY_NAME_UNITS) == text) found = i;
        if (found < 0) return;
        list.selected = found;
    } else {
        throw PropertyException("CPropertyParamList type in GetPropertyItem");
    }
    std::memcpy(value_, &list, sizeof list);
}

int CPropertyParamList::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_LIST)); }
