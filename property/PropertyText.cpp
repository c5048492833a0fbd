#include "property/PropertyText.h"

#include <algorithm>
#include <cstring>

namespace property {

QString ReadUni(const coreWChar* field, int units) {
    if (!field || units < 1) return QString();
    int n = 0;
    while (n < units && field[n] != 0) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(field), n);
}

void WriteUni(coreWChar* field, int units, const QString& text) {
    if (!field || units < 1) return;
    const int n = std::min(int(text.size()), units - 1);
    std::memcpy(field, text.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(n));
    field[n] = 0;
}

void FillUni(coreWChar* field, int units, const QString& text) {
    if (!field || units < 1) return;
    const int n = std::min(int(text.size()), units);
    std::memcpy(field, text.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(n));
    std::fill(field + n, field + units, coreWChar(0));
}

void FillUni(coreWChar* field, int units, const coreWChar* text) {
    if (!field || units < 1) return;
    int n = 0;
    if (text)
        for (; n < units && text[n] != 0; ++n) field[n] = text[n];
    std::fill(field + n, field + units, coreWChar(0));
}

}  // namespace property
