// A text entry of at most 1023 units (PROPERTY_VALUE_TEXT).
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamString : public CPropertyParamItem {
public:
    explicit CPropertyParamString(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamString" for a record of another type.
    explicit CPropertyParamString(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
