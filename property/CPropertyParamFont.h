// A font entry: family, point size and style flags (PROPERTY_VALUE_FONT).
#pragma once

#include <QFont>

#include "property/CPropertyParamItem.h"

class CPropertyParamFont : public CPropertyParamItem {
public:
    explicit CPropertyParamFont(void* value) : CPropertyParamItem(value) {}
    // Throws "Error in CPropertyParamFont" for a record of another type.
    explicit CPropertyParamFont(const PROPERTY* property);

    QVariant GetPropertyItem() const override;
    void SetProperty(QVariant& value) override;
    int GetLenItems() const override;
    // The font a description stands for, and the description of a font.
    static QFont ToFont(const PROPERTY_VALUE_FONT& description);
    static void FromFont(const QFont& font, PROPERTY_VALUE_FONT* description);
};
