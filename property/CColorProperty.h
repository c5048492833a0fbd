// A colour variable (32-bit RGB in a long), shown as a colour entry. A value that is no
// colour gives an invalid colour, stored as what rgb() makes of it.
#pragma once

#include "property/COneProperty.h"

class CColorProperty : public COneProperty {
public:
    CColorProperty(CPropertyWork* page, int id, int group, bool notify, long* variable, QString name,
                   QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;

protected:
    QVariant Value() const override;

private:
    long* variable_;
};
