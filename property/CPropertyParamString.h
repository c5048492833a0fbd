// A text entry (PROPERTY_VALUE_TEXT): a stored text is cut to the field's 1,024 units and is
// terminated only when shorter; reading stops at the first NUL or at the field's end.
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
