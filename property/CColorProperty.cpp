#include "property/CColorProperty.h"

#include <QColor>

#include "property/CPropertyWork.h"

CColorProperty::CColorProperty(CPropertyWork* page, int id, int group, bool notify, long* variable, QString name,
                               QString description)
    : COneProperty(page, id, group, notify, name, description), variable_(variable) {}

CColorProperty::CColorProperty(CPropertyWork* page, int id, int group, bool notify, coreColorPoints* record,
                               QString name, QString description)
    : COneProperty(page, id, group, notify, name, description), record_(record) {}

void CColorProperty::changeValue(QVariant& value, stateChangeProperty& state) {
    const QColor color = value.canConvert<QColor>() ? value.value<QColor>() : QColor();
    const QRgb rgb = color.rgb();
    // Compared without the alpha byte, which the variable may or may not carry.
    if (variable_) {
        if ((std::uint32_t(rgb) & 0xFFFFFFu) != (std::uint32_t(*variable_) & 0xFFFFFFu)) state.changed = notify_;
        *variable_ = long(rgb);
    } else if (record_) {
        // Stored as rgb() gives it, alpha byte included, as the variable is.
        if ((std::uint32_t(rgb) & 0xFFFFFFu) != (record_->color & 0xFFFFFFu)) state.changed = notify_;
        record_->color = std::uint32_t(rgb);
    }
}

int CColorProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyColorItem(group_, name.utf16(), description.utf16(), Value().value<QColor>());
    return index_;
}

QVariant CColorProperty::Value() const {
    std::uint32_t rgb = 0;
    if (variable_) rgb = std::uint32_t(*variable_);
    else if (record_) rgb = record_->color;
    return QVariant(QColor(QRgb(rgb | 0xFF000000u)));
}
