// The root of a chart window's object tree: the stacked areas of one PFChartWidget.
//
// The chart owns its areas (top to bottom, which is also the drawing order), forwards
// painting and input down the tree, stacks the areas in its rectangle and keeps the three
// pop-up menus (properties, select, delete) that the tree's objects fill.
#pragma once

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

#include "gx/Object.h"

class QMenu;
class QMouseEvent;
class QKeyEvent;
class PFChartWidget;
class CXMLWorkData;

namespace pf {
namespace gui {
class ToolBar;
}
}  // namespace pf

namespace gx {

class Area;
class TimeScale;
class LRScale;

class Chart : public Object {
public:
    Chart(PFChartWidget* widget, const QRect& rect);
    ~Chart() override;

    // The empty-chart message without areas, else every area in order; then the frame.
    void Draw(QPainter& painter) const override;
    // Base resize, then every area gets the full width and an equal share of the height.
    void Resize(const QSize& size) override;

    // Area i gets rows top + i * share .. top + (i + 1) * share - 1, share being the height
    // divided by the number of areas (integer division); the remainder stays empty.
    void RePlaceAreas();
    boost::shared_ptr<Area> AddArea();
    // A new area at `position` (clamped to 0 .. area count); the areas are re-stacked.
    boost::shared_ptr<Area> InsertArea(int position);
    // Unsubscribes the area's indicators from the host, removes the area, and has the widget
    // re-place the areas and update its title.
    void DeleteArea(boost::shared_ptr<Area> area);
    void ResetAreaCaption();
    void FillContextMenu();

    int GetLScaleWidth() const;
    int GetRScaleWidth() const;
    int GetVScaleWidth() const { return GetLScaleWidth() + GetRScaleWidth(); }

    const std::vector<boost::shared_ptr<Area> >& GetAreas() const { return areas_; }
    std::vector<boost::shared_ptr<Area> >& GetAreas() { return areas_; }
    int GetAreaCount() const { return static_cast<int>(areas_.size()); }
    PFChartWidget* GetWidget() const { return widget_; }

    // Forwarded to the widget or its module.
    TimeScale* GetTimeScale() const;
    pf::gui::ToolBar* GetToolBar() const;
    LRScale* GetRightScale() const;
    int GetCrossCursorState() const;
    QColor GetAreasColor() const;
    void* GetMainGUIInterface() const;
    QRect Rect() const { return rect_; }
    QPoint MapFromGlobal(const QPoint& global) const;
    // Where the mouse was last seen over the widget, in widget coordinates.
    QPoint MousePos() const;
    void UpdateScreen() const;
    void RepaintScreen() const;
    void ResetCursor() const;
    void StartSelectedPF(const QMouseEvent& event) const;

    // The three object menus, each made on first request.
    boost::shared_ptr<QMenu> GetPropMenu();
    boost::shared_ptr<QMenu> GetSelectMenu();
    boost::shared_ptr<QMenu> GetDeleteMenu();

    // Saving: "AreaCount".
    void ToXML(CXMLWorkData* node) const;
    // Builds the areas from the "PFChart" child of `widgetNode`; without one the chart stays
    // empty. Returns whether there was one.
    static bool FromXML(PFChartWidget* widget, CXMLWorkData* widgetNode);

    // Builds "<module name>, <indicator caption>, ..." and has the widget show it; returns it.
    QString UpdateTitle();
    // Removes the selected objects bottom-up and tells the host "Replace instrument".
    void RePlaceInstrument();

    void mousePressEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void mouseMoveEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent& event);

private:
    boost::shared_ptr<QMenu> MakeMenu(boost::shared_ptr<QMenu>& menu);

    PFChartWidget* widget_;
    std::vector<boost::shared_ptr<Area> > areas_;
    boost::shared_ptr<QMenu> propMenu_;
    boost::shared_ptr<QMenu> selectMenu_;
    boost::shared_ptr<QMenu> deleteMenu_;
};

}  // namespace gx
