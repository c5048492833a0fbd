// One horizontal pane of a chart: a caption strip with a close button, the layers that hold
// the indicators, one scale engine shared by all of them, and the overlays drawn over the
// data (zoom-range markers and the cross cursor).
#pragma once

#include <boost/shared_ptr.hpp>
#include <boost/scoped_ptr.hpp>
#include <QImage>
#include <vector>

#include "gx/Grid.h"
#include "gx/Object.h"

class QMouseEvent;
class CXMLWorkData;
class QKeyEvent;

namespace pf {
class ScaleEngine;
class DataSource;
}  // namespace pf

namespace gx {

class Chart;
class Layer;
class Caption;
class AreaPicture;

class Area : public Object {
public:
    Area(Chart* chart, const QRect& rect);
    ~Area() override;

    // Caption, layers, zoom markers, cross cursor, frame; clears the status bar when the
    // area is marked as under the mouse but the mouse has left it.
    void Draw(QPainter& painter) const override;
    void Resize(const QSize& size) override;
    void Select(bool selected) override;
    // `rect` is the full pane: the area keeps the data part between the two price scales,
    // the caption takes the pane's whole width at the top.
    void SetRect(const QRect& rect) override;

    boost::shared_ptr<Layer> AddLayer();
    // A new layer at `position` (clamped to 0 .. layer count).
    boost::shared_ptr<Layer> InsertLayer(int position);
    // 0 for the first area, -i for the one at position i, -1 when not in the chart.
    int GetIndex() const;
    boost::shared_ptr<Layer> GetSelLayer() const;
    int GetLayerCount() const { return static_cast<int>(layers_.size()); }
    const std::vector<boost::shared_ptr<Layer> >& GetLayers() const { return layers_; }
    std::vector<boost::shared_ptr<Layer> >& GetLayers() { return layers_; }
    Chart* GetChart() const { return chart_; }
    Caption* GetCaption() const { return caption_.get(); }
    const boost::shared_ptr<pf::ScaleEngine>& GetEngine() const { return engine_; }
    // The full pane given to the last SetRect (caption and scale columns included).
    const QRect& GetPaneRect() const { return pane_; }

    bool CheckClose(const QMouseEvent& event);
    void ResetCaption();
    void SetCaptionDayOff(bool dayOff);
    // Saving: "ObjectType", "LayerCount".
    void ToXML(CXMLWorkData* node) const;
    // One area per "PFArea" child of `chartNode`, each with its layers.
    static void FromXML(Chart& chart, CXMLWorkData* chartNode);
    // Writes this area with its layers, indicators and lines as a "PFArea" child of `parent`,
    // as a saved layout has it.
    static void SaveSubtree(const boost::shared_ptr<Area>& area, CXMLWorkData* parent);
    // Rebuilds an area saved by SaveSubtree (`areaNode` is its "PFArea" node) at `position`.
    static boost::shared_ptr<Area> InsertFromXML(Chart& chart, CXMLWorkData* areaNode, int position);
    void FillContextMenu();

    // For the next Draw only: the grid's lines of `data`, whose rows from `bodyTop` down the
    // grid left unpainted, to be painted with the lines' figures from one kept picture (see
    // AreaPicture). Version 0: the grid painted them all.
    void ComposeNextPaint(const Grid::Rows& grid, const QRect& data, int bodyTop) const;
    // The first row below the caption strip, within the data rectangle `data`.
    int BodyTop(const QRect& data) const;

    void DrawZoomSelect(QPainter& painter) const;
    void DrawCrossCursor(QPainter& painter) const;

    // Returns whether the caption's close button was hit.
    bool mousePressEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void mouseMoveEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent& event);

private:
    // The column offset (from the first visible one) under widget x.
    int e_unTranslate(int x) const;

    Chart* chart_;
    std::vector<boost::shared_ptr<Layer> > layers_;
    boost::scoped_ptr<Caption> caption_;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    QRect pane_;
    boost::scoped_ptr<AreaPicture> picture_;
    mutable Grid::Rows nextGrid_;
    mutable QRect nextData_;
    mutable int nextBodyTop_ = 0;
};

}  // namespace gx
