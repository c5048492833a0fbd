// The two walks over a chart's object tree.
//
// WidgetWalker visits in pre-order (chart, then each area, its layers, their indicators and
// each indicator's lines); WidgetWalker2 in post-order (lines, then their indicator, ...,
// the chart last, even without areas). Containers are walked in vector order over a copy of
// the vector, so a visitor may erase children (the deletion cascade does) without
// disturbing the walk. A walk never stops early.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "gui/PFChartWidget.h"
#include "gx/Area.h"
#include "gx/Chart.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"

namespace gx {

template <class V>
class WidgetWalker {
public:
    WidgetWalker(const PFChartWidget* widget, const V& visitor)
        : chart_(widget ? widget->GetChart() : nullptr), visitor_(visitor) {}
    WidgetWalker(Chart* chart, const V& visitor) : chart_(chart), visitor_(visitor) {}

    V& Walk() {
        if (!chart_) return visitor_;
        visitor_.Visit(chart_);
        const std::vector<boost::shared_ptr<Area> > areas = chart_->GetAreas();
        for (const boost::shared_ptr<Area>& area : areas) {
            visitor_.Visit(area);
            const std::vector<boost::shared_ptr<Layer> > layers = area->GetLayers();
            for (const boost::shared_ptr<Layer>& layer : layers) {
                visitor_.Visit(layer);
                const std::vector<boost::shared_ptr<Indicator> > indicators = layer->GetIndicators();
                for (const boost::shared_ptr<Indicator>& indicator : indicators) {
                    visitor_.Visit(indicator);
                    const std::vector<boost::shared_ptr<Line> > lines = indicator->GetLines();
                    for (const boost::shared_ptr<Line>& line : lines) visitor_.Visit(line);
                }
            }
        }
        return visitor_;
    }
    V& Visitor() { return visitor_; }

private:
    Chart* chart_;
    V visitor_;
};

template <class V>
class WidgetWalker2 {
public:
    WidgetWalker2(const PFChartWidget* widget, const V& visitor)
        : chart_(widget ? widget->GetChart() : nullptr), visitor_(visitor) {}
    WidgetWalker2(Chart* chart, const V& visitor) : chart_(chart), visitor_(visitor) {}

    V& Walk() {
        if (!chart_) return visitor_;
        const std::vector<boost::shared_ptr<Area> > areas = chart_->GetAreas();
        for (const boost::shared_ptr<Area>& area : areas) {
            const std::vector<boost::shared_ptr<Layer> > layers = area->GetLayers();
            for (const boost::shared_ptr<Layer>& layer : layers) {
                const std::vector<boost::shared_ptr<Indicator> > indicators = layer->GetIndicators();
                for (const boost::shared_ptr<Indicator>& indicator : indicators) {
                    const std::vector<boost::shared_ptr<Line> > lines = indicator->GetLines();
                    for (const boost::shared_ptr<Line>& line : lines) visitor_.Visit(line);
                    visitor_.Visit(indicator);
                }
                visitor_.Visit(layer);
            }
            visitor_.Visit(area);
        }
        visitor_.Visit(chart_);
        return visitor_;
    }
    V& Visitor() { return visitor_; }

private:
    Chart* chart_;
    V visitor_;
};

}  // namespace gx
