// A font variable, shown as a font entry. A value that is no font gives a default font.
#pragma once

#include <QFont>

#include "property/COneProperty.h"

class CFontProperty : public COneProperty {
public:
    CFontProperty(CPropertyWork* page, int id, int group, bool notify, QFont* variable, QString name,
                  QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;

protected:
    QVariant Value() const override;

private:
    QFont* variable_;
};
