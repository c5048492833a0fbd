// The index of an element of a tree container, as areas, layers, indicators and lines give it:
// 0 for the first element, minus the position for later ones, -1 when the element is not in
// the container. The second element and a missing one thus both give -1; the undo records
// and the look-ups by index pass these same values back, so they are kept exactly.
#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <vector>

namespace gx {

template <class T>
int IndexOf(const std::vector<boost::shared_ptr<T> >& container, const T* element) {
    for (std::size_t i = 0; i < container.size(); ++i)
        if (container[i].get() == element) return -static_cast<int>(i);
    return -1;
}

}  // namespace gx
