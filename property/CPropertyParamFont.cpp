#include "property/CPropertyParamFont.h"

#include <cstring>

#include "property/PropertyText.h"

CPropertyParamFont::CPropertyParamFont(const PROPERTY* property)
    : CPropertyParamItem(Checked(property, PROPERTY_TYPE_FONT, "Error in CPropertyParamFont")) {}

QFont CPropertyParamFont::ToFont(const PROPERTY_VALUE_FONT& d) {
    QFont font(property::ReadUni(d.family, PROPERTY_TEXT_UNITS));
    std::int32_t size;
    std::memcpy(&size, &d.pointSize, sizeof size);
    // A size the host could not have meant leaves the family's default size.
    if (size > 0 && size <= 1000) font.setPointSize(size);
    font.setBold(d.bold != 0);
    font.setItalic(d.italic != 0);
    font.setUnderline(d.underline != 0);
    font.setStrikeOut(d.strikeOut != 0);
    return font;
}

void CPropertyParamFont::FromFont(const QFont& font, PROPERTY_VALUE_FONT* d) {
    if (!d) return;
    property::WriteUni(d->family, PROPERTY_TEXT_UNITS, font.family());
    const std::int32_t size = font.pointSize();
    std::memcpy(&d->pointSize, &size, sizeof size);
    d->bold = font.bold() ? 1 : 0;
    d->italic = font.italic() ? 1 : 0;
    d->underline = font.underline() ? 1 : 0;
    d->strikeOut = font.strikeOut() ? 1 : 0;
}

QVariant CPropertyParamFont::GetPropertyItem() const {
    if (!value_) return QVariant();
    return QVariant(ToFont(*static_cast<const PROPERTY_VALUE_FONT*>(value_)));
}

void CPropertyParamFont::SetProperty(QVariant& value) {
    if (!value_) throw PropertyException("Error memo in CPropertyParamFont");
    if (!Is(value, QMetaType::QFont)) throw PropertyException("Error param in CPropertyParamFont");
    FromFont(value.value<QFont>(), static_cast<PROPERTY_VALUE_FONT*>(value_));
}

int CPropertyParamFont::GetLenItems() const { return int(sizeof(PROPERTY_VALUE_FONT)); }
