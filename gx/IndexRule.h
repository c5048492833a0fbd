// The index of an element of a tree container, as areas, layers, indicators and lines give it:
// 0 for the first element, minus the position for later ones, -1 when the element is not in
// the container. The second element and a missing one thus both give -1; the undo records
// and the look-ups by index pass these same values back, so they are kept exactly.
#pragma once

#include <boost/shared_ptr.hpp>
#include <climits>
#include <cstddef>
#include <vector>

namespace gx {

template <class T>
int IndexOf(const std::vector<boost::shared_ptr<T> >& container, const T* element) {
    for (std::size_t i = 0; i < container.size(); ++i)
        if (container[i].get() == element) return -static_cast<int>(i);
    return -1;
}

// The value the rule gives the element at `position`: 0, -1, -2 ...
inline int IndexAt(std::size_t position) { return -static_cast<int>(position); }

// The position a value of the rule stands for; -1 for a value the rule never gives (one
// above 0, such as kNoIndex, or one whose position no int holds).
inline int PositionOf(int index) { return index > 0 || index < -INT_MAX ? -1 : -index; }

// What a reader of an undo record takes when a place is missing: no value of the rule.
const int kNoIndex = 1;

}  // namespace gx
