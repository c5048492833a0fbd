#include "property/CPropertyParamColor.h"

#include <QColor>
#include <cstring>

CPropertyParamColor::CPropertyParamColor(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_COLOR, "Error in CPropertyParamColor")) {}

QVariant CPropertyParamColor::GetPropertyItem() const {
    if (!value_) return QVariant();
    std::uint32_t rgb = 0;
    std::memcpy(&rgb, value_, sizeof rgb);
    return QVariant(QColor(QRgb(rgb | 0xFF000000u)));
}

void CPropertyParamColor::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("Error memo in CPropertyParamColor");
    std::uint32_t rgb;
    if (Is(value, QMetaType::Int)) rgb = std::uint32_t(value.toInt());
    else if (Is(value, QMetaType::QColor)) rgb = value.value<QColor>().rgb();
    else throw PropertyException("Error param in CPropertyParamColor");
    std::memcpy(value_, &rgb, sizeof rgb);
}

int CPropertyParamColor::GetLenItems() const { return int(sizeof(std::uint32_t)); }
