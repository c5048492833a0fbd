// A date and time entry: 32-bit seconds since 1970, UTC.
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamDateTime : public CPropertyParamItem {
public:
    explicit CPropertyParamDateTime(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamDateTime" for a record of another type.
    explicit CPropertyParamDateTime(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
