#include "property/CListOnePropery.h"

#include "property/COneProperty.h"
#include "property/CPropertyWork.h"

CListOnePropery::~CListOnePropery() {
    for (COneProperty* p : items_) delete p;
}

int CListOnePropery::addProperty(COneProperty* binding) {
    if (binding) items_.push_back(binding);
    return count();
}

COneProperty* CListOnePropery::find(const QString& name) const {
    for (COneProperty* p : items_)
        if (p->GetName() == name) return p;
    return nullptr;
}

void CListOnePropery::checkParameters(stateChangeProperty& state) {
    if (!page_) return;
    for (COneProperty* p : items_) {
        if (p->GetIndex() == -1) continue;
        QVariant value = page_->GetPropertyItem(p->GetGroup(), p->GetIndex());
        p->changeValue(value, state);
    }
}

void CListOnePropery::setParameters() {
    for (COneProperty* p : items_) p->SetProperty();
}

void CListOnePropery::inicWidget() {
    for (COneProperty* p : items_) p->inicWidget();
}

void CListOnePropery::refreshParameters() {
    for (COneProperty* p : items_) p->RefreshProperty();
}
