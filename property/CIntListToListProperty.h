// An int code chosen from a list of codes, shown as a list of texts (one per code, same
// order). An index outside the texts is ignored; a different code is always a change.
#pragma once

#include <QStringList>
#include <vector>

#include "property/COneProperty.h"

class CIntListToListProperty : public COneProperty {
public:
    CIntListToListProperty(CPropertyWork* page, int id, int group, bool notify, QStringList& texts, int* variable,
                           int codeCount, int* codes, QString name, QString description);
    void changeValue(QVariant& value, stateChangeProperty& state) override;
    int AddProperty(QString name, QString description) override;
    using COneProperty::AddProperty;
    // The first position whose code equals the variable; 0 when none or without codes.
    int getStrForCode() const;

protected:
    QVariant Value() const override;

private:
    QStringList texts_;
    int* variable_;
    std::vector<int> codes_;
};
