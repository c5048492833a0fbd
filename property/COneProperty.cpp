#include "property/COneProperty.h"

#include "property/CPropertyWork.h"

COneProperty::COneProperty(CPropertyWork* page, int id, int group, bool notify, const QString& name,
                           const QString& description)
    : page_(page), id_(id), group_(group), notify_(notify), name_(name), description_(description) {}

void COneProperty::SetProperty() {
    if (page_ && index_ >= 0) page_->SetProperty(group_, index_, Value());
}

void COneProperty::RefreshProperty() {
    if (page_ && index_ >= 0) page_->SetPropertyMessage(group_, index_, Value());
}
