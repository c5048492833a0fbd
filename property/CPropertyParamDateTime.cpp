#include "property/CPropertyParamDateTime.h"

#include <QDateTime>
#include <cstring>

CPropertyParamDateTime::CPropertyParamDateTime(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_DATETIME, "Error in CPropertyParamDateTime")) {}

QVariant CPropertyParamDateTime::GetPropertyItem() const {
    if (!value_) throw PropertyException("Error memo in CPropertyParamDateTime");
    std::int32_t t = 0;
    std::memcpy(&t, value_, sizeof t);
    return QVariant(QDateTime::fromSecsSinceEpoch(t, Qt::UTC));
}

void CPropertyParamDateTime::SetProperty(QVariant& value) {
    // Both texts name the double class; they are the texts this family has always thrown.
    if (!value_) throw PropertyException("CPropertyParamDouble error in SetProperty");
    if (!Is(value, QMetaType::QDateTime)) throw PropertyException("CPropertyParamDouble error in CPropertyParamDateTime");
    const std::int32_t t = std::int32_t(value.toDateTime().toSecsSinceEpoch());
    std::memcpy(value_, &t, sizeof t);
}

int CPropertyParamDateTime::GetLenItems() const { return int(sizeof(std::int32_t)); }
