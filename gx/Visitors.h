// The visitors run over a chart's object tree by WidgetWalker (pre-order) and WidgetWalker2
// (post-order). Each keeps its result in public members that the caller reads after the
// walk. A visitor that looks for one object overwrites its result, so the last match in
// walk order wins; one that looks for an extreme keeps the first found on ties.
#pragma once

#include <QPoint>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

#include "gx/FindMinMax.h"
#include "gx/Visitor.h"

class CXMLWorkData;

namespace pf {
class DataSource;
}

namespace gx {

class LineStudy;
class TimeScale;

// Lines whose data lies under the point, and line studies containing it.
struct CountUnderMouseObject : Visitor {
    using Visitor::Visit;
    explicit CountUnderMouseObject(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Line> line);
    QPoint point;
    int lines = 0;
    int studies = 0;
};

struct UpdateTime : Visitor {
    using Visitor::Visit;
    explicit UpdateTime(TimeScale* s) : scale(s) {}
    void Visit(boost::shared_ptr<Line> line);
    TimeScale* scale;
};

struct FindArea : Visitor {
    using Visitor::Visit;
    explicit FindArea(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Area> area);
    QPoint point;
    boost::shared_ptr<Area> found;
};

struct FindLayer : Visitor {
    using Visitor::Visit;
    explicit FindLayer(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Layer> layer);
    QPoint point;
    boost::shared_ptr<Layer> found;
};

struct UnSelectingLine : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

// Unselects line studies, except those still being drawn (state bit 2).
struct UnSelectingLS : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

struct SetManualDeleteLS : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

// The deletion cascade, from the leaves up: selected line studies, selected lines, then
// indicators without lines, layers without indicators and areas without layers. Given an
// area, the cascade stays inside it: what is selected elsewhere is left alone.
struct DeleteSelItems : Visitor {
    explicit DeleteSelItems(const Area* only = nullptr) : area(only) {}
    void Visit(Chart* chart);
    void Visit(boost::shared_ptr<Area> area);
    void Visit(boost::shared_ptr<Layer> layer);
    void Visit(boost::shared_ptr<Indicator> indicator);
    void Visit(boost::shared_ptr<Line> line);
    const Area* area;
};

struct SelectAreaLines : Visitor {
    using Visitor::Visit;
    explicit SelectAreaLines(const Area* a) : area(a) {}
    void Visit(boost::shared_ptr<Line> line);
    const Area* area;
};

struct SelectAreaLS : Visitor {
    using Visitor::Visit;
    explicit SelectAreaLS(const Area* a) : area(a) {}
    void Visit(boost::shared_ptr<Line> line);
    const Area* area;
};

// On the line of the given data array, every study of the given kind gets new counts.
struct UpdateCountLS : Visitor {
    using Visitor::Visit;
    UpdateCountLS(const void* array, const QString& kind, int cpCount, int shapeCount)
        : array(array), kind(kind), cpCount(cpCount), shapeCount(shapeCount) {}
    void Visit(boost::shared_ptr<Line> line);
    const void* array;
    QString kind;
    int cpCount;
    int shapeCount;
    int updated = 0;  // studies resized
    // Studies whose host failed the new exchange: they have left the host and are to be
    // taken off their lines once the walk is over.
    std::vector<boost::shared_ptr<LineStudy> > failed;
};

// The data source of the first indicator of the given area.
struct FindDataSource : Visitor {
    using Visitor::Visit;
    explicit FindDataSource(const Area* a) : area(a) {}
    void Visit(boost::shared_ptr<Area> a);
    const Area* area;
    boost::shared_ptr<pf::DataSource> found;
};

struct ReleaseTempLS : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

struct FindLayerByIndex : Visitor {
    using Visitor::Visit;
    explicit FindLayerByIndex(int i) : index(i) {}
    void Visit(boost::shared_ptr<Layer> layer);
    int index;
    boost::shared_ptr<Layer> found;
};

struct FindIndicatorByHandle : Visitor {
    using Visitor::Visit;
    explicit FindIndicatorByHandle(const void* h) : handle(h) {}
    void Visit(boost::shared_ptr<Indicator> indicator);
    const void* handle;
    boost::shared_ptr<Indicator> found;
};

struct FindLSByHandle : Visitor {
    using Visitor::Visit;
    explicit FindLSByHandle(const void* h) : handle(h) {}
    void Visit(boost::shared_ptr<Line> line);
    const void* handle;
    boost::shared_ptr<LineStudy> found;
};

// Writes one flag into the selected flag of the chart, every area and every layer.
struct Selector : Visitor {
    using Visitor::Visit;
    explicit Selector(bool s) : selected(s) {}
    void Visit(Chart* chart);
    void Visit(boost::shared_ptr<Area> area);
    void Visit(boost::shared_ptr<Layer> layer);
    bool selected;
};

struct UnSelLsNotUnderMouse : Visitor {
    using Visitor::Visit;
    explicit UnSelLsNotUnderMouse(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Line> line);
    QPoint point;
};

struct UnSelFigureNotUnderMouse : Visitor {
    using Visitor::Visit;
    explicit UnSelFigureNotUnderMouse(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Line> line);
    QPoint point;
};

// The captions of the indicators (of one area, or of the chart), joined with ", ".
struct MakeCaption : Visitor {
    using Visitor::Visit;
    explicit MakeCaption(const Area* a = nullptr) : area(a) {}
    void Visit(boost::shared_ptr<Indicator> indicator);
    const Area* area;
    QString caption;
};

// Points every line at its data source's current arrays (after the host renamed or
// replaced them) and repaints.
struct RenameDpa : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Indicator> indicator);
    int renamed = 0;
};

struct UpdateLS : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

struct FindUndoFirstVisibleFigure : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
    std::vector<boost::shared_ptr<Line> > lines;
};

struct FindSelLine : Visitor {
    using Visitor::Visit;
    explicit FindSelLine(const Area* a) : area(a) {}
    void Visit(boost::shared_ptr<Line> line);
    const Area* area;
    std::vector<boost::shared_ptr<Line> > lines;
};

struct FindUnderMouseObject : Visitor {
    using Visitor::Visit;
    explicit FindUnderMouseObject(const QPoint& p) : point(p) {}
    void Visit(boost::shared_ptr<Line> line);
    QPoint point;
    std::vector<boost::shared_ptr<Line> > lines;
    std::vector<boost::shared_ptr<LineStudy> > studies;
};

struct FindIndicatorHandle : Visitor {
    using Visitor::Visit;
    explicit FindIndicatorHandle(const Area* a) : area(a) {}
    void Visit(boost::shared_ptr<Area> a);
    const Area* area;
    std::vector<void*> handles;
};

// Every indicator (of the given area; of the chart when none is given).
struct FindAllIndicators : Visitor {
    using Visitor::Visit;
    explicit FindAllIndicators(const Area* a = nullptr) : area(a) {}
    void Visit(boost::shared_ptr<Indicator> indicator);
    const Area* area;
    std::vector<boost::shared_ptr<Indicator> > indicators;
};

struct FindSelLs : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
    std::vector<boost::shared_ptr<LineStudy> > studies;
};

struct FindLsByState : Visitor {
    using Visitor::Visit;
    explicit FindLsByState(int m) : mask(m) {}
    void Visit(boost::shared_ptr<Line> line);
    int mask;
    std::vector<boost::shared_ptr<LineStudy> > studies;
};

struct DeleteSelLS : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Line> line);
};

// In an area with two or more layers, erases the empty ones.
struct DeleteUnUsedLayers : Visitor {
    using Visitor::Visit;
    void Visit(boost::shared_ptr<Area> area);
};

// Saving the tree into the work data: each node of the chart becomes a child of the node of
// its parent ("PFChart" under the given node, then "PFArea", "PFLayer", "PFIndicator",
// "PFLine"), writes its attributes and sends them (pre-order walk). A node the host
// refuses leaves its subtree out.
struct SaveToXML : Visitor {
    explicit SaveToXML(CXMLWorkData* root) : root(root) {}
    void Visit(Chart* chart);
    void Visit(boost::shared_ptr<Area> area);
    void Visit(boost::shared_ptr<Layer> layer);
    void Visit(boost::shared_ptr<Indicator> indicator);
    void Visit(boost::shared_ptr<Line> line);
    CXMLWorkData* root;
    boost::shared_ptr<CXMLWorkData> chartNode;
    boost::shared_ptr<CXMLWorkData> areaNode;
    boost::shared_ptr<CXMLWorkData> layerNode;
    boost::shared_ptr<CXMLWorkData> indicatorNode;
    int nodes = 0;  // nodes written
};

// The line (of the given chart) whose first time is smallest; the first found wins ties. A
// line without data has first time 0.
struct FindMinTimeLine : Visitor {
    using Visitor::Visit;
    explicit FindMinTimeLine(const Chart* c = nullptr) : chart(c) {}
    void Visit(boost::shared_ptr<Line> line);
    const Chart* chart;
    boost::shared_ptr<Line> found;
};

}  // namespace gx
