// One entry of a property page bound to one variable of an object: it puts the variable's
// value into the page, takes the edited value back and says whether that is a change.
//
// The entry's index is -1 until AddProperty has added it to the page.
#pragma once

#include <QString>
#include <QVariant>

#include "property/stateChangeProperty.h"

class CPropertyWork;

class COneProperty {
public:
    COneProperty(CPropertyWork* page, int id, int group, bool notify, const QString& name = QString(),
                 const QString& description = QString());
    virtual ~COneProperty() {}

    // Takes the edited `value` into the variable; `state` says whether that is a change.
    virtual void changeValue(QVariant& value, stateChangeProperty& state) = 0;
    // Adds the entry (name, description) to the page with the variable's value and records
    // its index; -1 when the page refused it.
    virtual int AddProperty(QString name, QString description) = 0;
    // Writes the variable's current value into the entry.
    virtual void SetProperty();
    virtual void inicWidget() {}
    // SetProperty, then 10053 so an open dialog shows the value.
    virtual void RefreshProperty();

    // AddProperty with the name and description given at construction.
    int AddProperty() { return AddProperty(name_, description_); }

    int GetId() const { return id_; }
    int GetGroup() const { return group_; }
    int GetIndex() const { return index_; }
    bool IsNotify() const { return notify_; }
    const QString& GetName() const { return name_; }

protected:
    // The variable's value as the entry's wrapper takes it.
    virtual QVariant Value() const = 0;

    CPropertyWork* page_;
    int id_;
    int group_;
    int index_ = -1;
    bool notify_;
    QString name_;
    QString description_;
};
