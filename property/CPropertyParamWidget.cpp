#include "property/CPropertyParamWidget.h"

#include <QVariantList>
#include <cstring>

// No text of the family names this class: a record of another type gives a wrapper without
// a buffer, which reads as nothing and stores nothing anyway.
CPropertyParamWidget::CPropertyParamWidget(const PROPERTY* property)
    : CPropertyParamItem(property && property->type == PROPERTY_TYPE_WIDGET ? property->value : nullptr) {}

QVariant CPropertyParamWidget::GetPropertyItem() const {
    if (!value_) return QVariant();
    PROPERTY_VALUE_WIDGET w;
    std::memcpy(&w, value_, sizeof w);
    return QVariantList{int(w.first), int(w.second)};
}

void CPropertyParamWidget::SetProperty(QVariant&) {}

int CPropertyParamWidget::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_WIDGET)); }
