// A floating-point entry (PROPERTY_VALUE_DOUBLE). A single-precision variant is accepted and stores nothing.
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamDouble : public CPropertyParamItem {
public:
    explicit CPropertyParamDouble(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamDouble" for a record of another type.
    explicit CPropertyParamDouble(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
