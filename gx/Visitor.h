// The visitor protocol of the chart tree.
//
// A visitor derives from gx::Visitor, brings its no-op overloads in with
// `using Visitor::Visit;` and defines only the overloads it needs. WidgetWalker (pre-order)
// and WidgetWalker2 (post-order) drive it over the whole tree (gx/Walkers.h).
#pragma once

#include <boost/shared_ptr.hpp>

namespace gx {

class Chart;
class Area;
class Layer;
class Indicator;
class Line;

struct Visitor {
    void Visit(Chart*) {}
    void Visit(boost::shared_ptr<Area>) {}
    void Visit(boost::shared_ptr<Layer>) {}
    void Visit(boost::shared_ptr<Indicator>) {}
    void Visit(boost::shared_ptr<Line>) {}
};

}  // namespace gx
