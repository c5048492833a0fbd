#include "property/CPropertyParamDouble.h"

#include <cstring>

CPropertyParamDouble::CPropertyParamDouble(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_DOUBLE, "Error in CPropertyParamDouble")) {}

QVariant CPropertyParamDouble::GetPropertyItem() const {
    if (!value_) return QVariant();
    double v = 0;
    std::memcpy(&v, value_, sizeof v);
    return QVariant(v);
}

void CPropertyParamDouble::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("Error memo in CPropertyParamDouble");
    // A single-precision value is taken without complaint and not stored: the dialog's
    // float editors round, and the stored double keeps its precision.
    if (Is(value, QMetaType::Float)) return;
    if (!Is(value, QMetaType::Double)) throw PropertyException("Error param in CPropertyParamDouble");
    const double v = value.toDouble();
    std::memcpy(value_, &v, sizeof v);
}

int CPropertyParamDouble::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_DOUBLE)); }
