// A colour bound to a colour entry: either a variable (32-bit RGB in a long) or the colour of
// a host colour-points record (coreColorPoints), whose points are left alone. A value that
// is no colour gives an invalid colour, stored as what rgb() makes of it. A change is
// reported (with the notify flag) when the red, green or blue part differs.
#pragma once

#include "abi/records/property_records.h"
#include "property/COneProperty.h"

class CColorProperty : public COneProperty {
public:
    CColorProperty(CPropertyWork* page, int id, int group, bool notify, long* variable, QString name,
                   QString description);
    // The record's colour is kept as 0x00RRGGBB, as the terminal reads it.
    CColorProperty(CPropertyWork* page, int id, int group, bool notify, coreColorPoints* record, QString name,
                   QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;

protected:
    QVariant Value() const override;

private:
    long* variable_ = nullptr;
    coreColorPoints* record_ = nullptr;
};
