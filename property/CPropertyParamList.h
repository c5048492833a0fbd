// A choice among texts (PROPERTY_VALUE_LIST). An Int variant selects that index when it is one of the texts; a String selects the text that equals it. Anything else is refused.
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamList : public CPropertyParamItem {
public:
    explicit CPropertyParamList(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamList" for a record of another type.
    explicit CPropertyParamList(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
