// A layer of an area: the indicators drawn over one another with the area's scale engine.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "gx/Object.h"

class QMouseEvent;
class CXMLWorkData;
class QKeyEvent;

namespace pf {
class ScaleEngine;
class DataSource;
}  // namespace pf

namespace gx {

class Area;
class Indicator;

class Layer : public Object {
public:
    Layer(Area* area, const QRect& rect, const boost::shared_ptr<pf::ScaleEngine>& engine);
    ~Layer() override;

    // Every indicator in order, then the frame.
    void Draw(QPainter& painter) const override;
    void Resize(const QSize& size) override;
    void SetRect(const QRect& rect) override;

    boost::shared_ptr<Indicator> AddIndicator(const boost::shared_ptr<pf::DataSource>& source);
    // 0 for the first layer of the area, -i for position i, -1 when not in the area.
    int GetIndex() const;
    int GetIndicatorCount() const { return static_cast<int>(indicators_.size()); }
    bool IsEmpty() const { return indicators_.empty(); }
    const std::vector<boost::shared_ptr<Indicator> >& GetIndicators() const { return indicators_; }
    std::vector<boost::shared_ptr<Indicator> >& GetIndicators() { return indicators_; }
    Area* GetArea() const { return area_; }
    const boost::shared_ptr<pf::ScaleEngine>& GetEngine() const { return engine_; }
    // Saving: "IndicatorCount".
    void ToXML(CXMLWorkData* node) const;
    // One layer per "PFLayer" child of `areaNode`, each with its indicators.
    static void FromXML(const boost::shared_ptr<Area>& area, CXMLWorkData* areaNode);
    void FillContextMenu();

    void mousePressEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent& event);
    // Moves are passed down so that line studies being placed can follow the mouse; drawing
    // happens in the next paint.
    void mouseMoveEvent(const QMouseEvent& event);

private:
    Area* area_;
    std::vector<boost::shared_ptr<Indicator> > indicators_;
    boost::shared_ptr<pf::ScaleEngine> engine_;
};

}  // namespace gx
