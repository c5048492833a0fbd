// A check entry: one byte, 0 or 1. A Bool or an Int variant is stored as toBool().
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamBoolean : public CPropertyParamItem {
public:
    explicit CPropertyParamBoolean(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamBoolean" for a record of another type.
    explicit CPropertyParamBoolean(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
