// A place for a widget of the dialog's own (PROPERTY_VALUE_WIDGET); nothing is ever stored through it.
#pragma once

#include "property/CPropertyParamItem.h"

class CPropertyParamWidget : public CPropertyParamItem {
public:
    explicit CPropertyParamWidget(void* value) : CPropertyParamItem(value) {}
    // A record of another type gives a wrapper without a buffer.
    explicit CPropertyParamWidget(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
};
