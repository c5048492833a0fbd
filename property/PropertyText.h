// UTF-16 fields of the property records: read without trusting the terminator. Name fields
// are written cut to the field and always terminated; a text entry's value may fill its
// whole field, the terminator following only when there is room for it.
#pragma once

#include <QString>

#include "abi/records/layout.h"

namespace property {

// The text of a field of `units` units: up to the first NUL, or the whole field.
QString ReadUni(const coreWChar* field, int units);
// Writes `text` into a field of `units` units, cut to units - 1 and terminated. Nothing for
// a null field or units below 1.
void WriteUni(coreWChar* field, int units, const QString& text);
// Writes at most `units` units of `text` (a null `text` counts as empty) and zeroes the rest
// of the field: a text as long as the field has no terminator. Nothing for a null field or
// units below 1.
void FillUni(coreWChar* field, int units, const QString& text);
void FillUni(coreWChar* field, int units, const coreWChar* text);

}  // namespace property
