// An int variable with a range, shown as an integer entry. A new value is taken always; it
// counts as a change only when it differs and the binding notifies.
#pragma once

#include "property/COneProperty.h"

class CIntProperty : public COneProperty {
public:
    CIntProperty(CPropertyWork* page, int id, int group, bool notify, int minimum, int maximum, int* variable,
                 QString name, QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;

protected:
    QVariant Value() const override;

private:
    int minimum_;
    int maximum_;
    int* variable_;
};
