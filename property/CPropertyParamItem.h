// The typed wrapper of one property's value buffer: converts between the buffer and a
// QVariant, and refuses what does not fit with a PropertyException.
//
// A wrapper does not own the buffer; it holds a pointer to it (null when the property has
// none). Each kind checks, when made from a PROPERTY record, that the record is of its type.
#pragma once

#include <QVariant>

#include "abi/records/property_records.h"
#include "property/PropertyException.h"

class CPropertyParamItem {
public:
    explicit CPropertyParamItem(void* value) : value_(value) {}
    virtual ~CPropertyParamItem() {}

    // The value as a QVariant.
    virtual QVariant GetPropertyItem() const = 0;
    // Stores `value` into the buffer; throws PropertyException when it cannot.
    virtual void SetProperty(QVariant& value) = 0;
    // Size of the value buffer in bytes.
    virtual int GetLenItems() const = 0;

    void* GetValue() const { return value_; }

protected:
    // The buffer of `property`, after checking its type; throws `error` for another type.
    static void* Checked(const PROPERTY* property, int type, const char* error) {
        if (!property) return nullptr;
        if (property->type != type) throw PropertyException(error);
        return property->value;
    }
    // Whether `v` holds exactly the type `t` (QMetaType::Type).
    static bool Is(const QVariant& v, int t) { return v.userType() == t; }

    void* value_;
};
