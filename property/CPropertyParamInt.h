// An integer entry: value, minimum and maximum (PROPERTY_VALUE_INT). Without a buffer it reads 0 and refuses writes.
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamInt : public CPropertyParamItem {
public:
    explicit CPropertyParamInt(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamInt" for a record of another type.
    explicit CPropertyParamInt(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
