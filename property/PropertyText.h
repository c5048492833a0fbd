// UTF-16 fields of the property records: read without trusting the terminator, written cut
// to the field and always terminated.
#pragma once

#include <QString>

#include "abi/records/layout.h"

namespace property {

// The text of a field of `units` units: up to the first NUL, or the whole field.
QString ReadUni(const coreWChar* field, int units);
// Writes `text` into a field of `units` units, cut to units - 1 and terminated. Nothing for
// a null field or units below 1.
void WriteUni(coreWChar* field, int units, const QString& text);

}  // namespace property
