#include "property/CPropertyParamInt.h"

#include <cstring>

CPropertyParamInt::CPropertyParamInt(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_INT, "Error in CPropertyParamInt")) {}

QVariant CPropertyParamInt::GetPropertyItem() const {
    std::int32_t v = 0;
    if (value_) std::memcpy(&v, value_, sizeof v);
    return QVariant(int(v));
}

void CPropertyParamInt::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("Error memo in CPropertyParamInt");
    if (!Is(value, QMetaType::Int)) throw PropertyException("Error param in CPropertyParamInt");
    const std::int32_t v = value.toInt();
    std::memcpy(value_, &v, sizeof v);
}

int CPropertyParamInt::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_INT)); }
