// "Save as default": a check entry that, when the dialog applies it checked, clears itself
// again and has the object store its current settings as the defaults of its kind
// (CPropertyHead::setStartParam). It never reports a change.
//
// The entry labels itself with the module's translation of "C0035SetAsDef" (name and
// description); AddProperty() adds it so. The object is passed as the address of its
// CPropertyHead part.
#pragma once

#include "property/COneProperty.h"

class CPropertyHead;

class CDefaultProperty : public COneProperty {
public:
    // The translation key of the entry's label.
    static constexpr const char* kLabelKey = "C0035SetAsDef";

    CDefaultProperty(CPropertyWork* page, int id, int group, void* owner);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;

protected:
    QVariant Value() const override { return QVariant(false); }

private:
    CPropertyHead* owner_;
};
