#include "property/CPropertyParamString.h"

#include "property/PropertyText.h"

CPropertyParamString::CPropertyParamString(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_TEXT, "Error in CPropertyParamString")) {}

QVariant CPropertyParamString::GetPropertyItem() const {
    if (!value_) return QVariant();
    return QVariant(property::ReadUni(static_cast<const PROPERTY_VALUE_TEXT*>(value_)->text, PROPERTY_TEXT_UNITS));
}

void CPropertyParamString::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("Error memo in CPropertyParamString");
    if (!Is(value, QMetaType::QString)) throw PropertyException("Error param in CPropertyParamString");
    property::FillUni(static_cast<PROPERTY_VALUE_TEXT*>(value_)->text, PROPERTY_TEXT_UNITS, value.toString());
}

int CPropertyParamString::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_TEXT)); }
