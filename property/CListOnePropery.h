// The bindings of one property page, in the order they were added; owns them.
#pragma once

#include <QString>
#include <vector>

#include "property/stateChangeProperty.h"

class COneProperty;
class CPropertyWork;

class CListOnePropery {
public:
    explicit CListOnePropery(CPropertyWork* page) : page_(page) {}
    ~CListOnePropery();
    CListOnePropery(const CListOnePropery&) = delete;
    CListOnePropery& operator=(const CListOnePropery&) = delete;

    // Takes ownership; the number of bindings afterwards.
    int addProperty(COneProperty* binding);
    int count() const { return int(items_.size()); }
    COneProperty* at(int i) const { return i >= 0 && i < count() ? items_[std::size_t(i)] : nullptr; }
    // The binding whose entry is shown as `name`; null when none.
    COneProperty* find(const QString& name) const;

    // Every added binding takes its entry's value from the page.
    void checkParameters(stateChangeProperty& state);
    void setParameters();
    void inicWidget();
    void refreshParameters();

private:
    CPropertyWork* page_;
    std::vector<COneProperty*> items_;
};
