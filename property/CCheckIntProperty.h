// An int variable that takes one of two values, shown as a check box. A check box never
// reports a change: the variable follows the box silently.
#pragma once

#include "property/COneProperty.h"

class CCheckIntProperty : public COneProperty {
public:
    CCheckIntProperty(CPropertyWork* page, int id, int group, bool notify, int* variable, int onValue, int offValue,
                      QString name, QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;
    // Whether the variable holds the on value.
    bool getBoolValue() const;

protected:
    QVariant Value() const override;

private:
    int* variable_;
    int on_;
    int off_;
};
