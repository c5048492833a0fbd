#include "property/CPropertyParamBoolean.h"

CPropertyParamBoolean::CPropertyParamBoolean(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_BOOL, "Error in CPropertyParamBoolean")) {}

QVariant CPropertyParamBoolean::GetPropertyItem() const {
    if (!value_) throw PropertyException("CPropertyParamBoolean error in GetPropertyItem");
    return QVariant(*static_cast<const std::uint8_t*>(value_) != 0);
}

void CPropertyParamBoolean::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("CPropertyParamBoolean error in GetPropertyItem");
    if (!Is(value, QMetaType::Bool) && !Is(value, QMetaType::Int))
        throw PropertyException("CPropertyParamBoolean type in GetPropertyItem");
    *static_cast<std::uint8_t*>(value_) = value.toBool() ? 1 : 0;
}

int CPropertyParamBoolean::GetLenItems() const { return 1; }
