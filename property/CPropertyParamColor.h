// A colour entry: 32-bit RGB. An Int variant is stored as it is, a Color as its rgb().
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamColor : public CPropertyParamItem {
public:
    explicit CPropertyParamColor(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamColor" for a record of another type.
    explicit CPropertyParamColor(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
