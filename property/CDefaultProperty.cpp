#include "property/CDefaultProperty.h"

#include "module/CModule.h"
#include "property/CPropertyWork.h"

namespace {

// The entry's label: the module's translation of its key; the key itself before a module
// exists (translation without a translator gives the key as well).
QString Label() {
    const CModule* module = CModule::Current();
    return module ? module->tr(CDefaultProperty::kLabelKey) : QString::fromLatin1(CDefaultProperty::kLabelKey);
}

}  // namespace

CDefaultProperty::CDefaultProperty(CPropertyWork* page, int id, int group, void* owner)
    : COneProperty(page, id, group, false, Label(), Label()), owner_(static_cast<CPropertyHead*>(owner)) {}

void CDefaultProperty::changeValue(QVariant& value, stateChangeProperty&) {
    if (!value.toBool() || !owner_) return;
    SetProperty();
    owner_->setStartParam();
}

int CDefaultProperty::AddProperty(QString name, QString description) {
    if (!page_) return -1;
    name_ = name;
    index_ = page_->AddPropertyBoolItem(group_, name.utf16(), description.utf16(), false);
    return index_;
}
