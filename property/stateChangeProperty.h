// The result of COneProperty::changeValue: whether the bound variable changed in a way the
// binding reports.
#pragma once

struct stateChangeProperty {
    bool changed = false;  // first byte
};
