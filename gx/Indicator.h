// What the user adds to an area: one instrument in one chart type and period. It owns the
// data source subscribed to the host's data core and one line per data point array that the
// source delivers, names itself in the caption and the title, and offers itself in the
// chart's select, properties and delete menus.
#pragma once

#include <QObject>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

#include "abi/records/dpa_records.h"
#include "gx/Object.h"

class QMenu;
class CXMLWorkData;
class QMouseEvent;
class QKeyEvent;

namespace pf {
class ScaleEngine;
class DataSource;
}  // namespace pf

namespace gx {

class Chart;
class Layer;
class Line;

class Indicator : public QObject, public Object {
    Q_OBJECT
public:
    // Where the indicator's data comes from, as the host described the instrument when it
    // was added; saved with the layout so that the data can be asked for again.
    struct Origin {
        QString symbol;      // "InstrumentName"
        QString type;        // "InstrumentType"
        QString provider;    // "NameProvider"
        char periodType = 0;
        int periodLength = 0;
        int startTime = 0;
        int style = 0;       // "PrimitiveStyle"
    };

    Indicator(Layer* layer, const boost::shared_ptr<pf::DataSource>& source, const QRect& rect,
              const boost::shared_ptr<pf::ScaleEngine>& engine);
    ~Indicator() override;

    // Rebuilds the area's caption, then draws every line.
    void Draw(QPainter& painter) const override;
    void Resize(const QSize& size) override;
    void SetRect(const QRect& rect) override;
    void Select(bool selected) override;

    // A line on `array`, the source's array at `sourceIndex` (-1: not the source's).
    boost::shared_ptr<Line> AddLine(fxDataPointArray* array, int sourceIndex = -1);
    // Gives every line the source's current array of its own position among the arrays,
    // and adds lines for arrays beyond every position seen before (a line deleted by hand
    // does not come back with the next data); returns whether the lines changed.
    bool UpdateLines();
    int GetLineCount() const { return static_cast<int>(lines_.size()); }
    // 0 for the first indicator of the layer, -i for position i, -1 when absent.
    int GetIndex() const;
    Chart* GetChart() const;
    Layer* GetLayer() const { return layer_; }
    const std::vector<boost::shared_ptr<Line> >& GetLines() const { return lines_; }
    std::vector<boost::shared_ptr<Line> >& GetLines() { return lines_; }
    const boost::shared_ptr<pf::DataSource>& GetDataSource() const { return source_; }
    // Another data object for the same instrument (another price type); UpdateLines then
    // gives the lines its arrays.
    void SetDataSource(const boost::shared_ptr<pf::DataSource>& source) { source_ = source; }
    const Origin& GetOrigin() const { return origin_; }
    void SetOrigin(const Origin& origin) { origin_ = origin; }

    // Saving: the "PFIndicator" attributes, then the host's description of the data object.
    void ToXML(CXMLWorkData* node) const;
    // Rebuilds every "PFIndicator" of `layerNode` in `layer`: the data is asked for again
    // through the widget, the lines take their saved places. Indicators whose data the host
    // cannot give are left out.
    static void FromXML(const boost::shared_ptr<Layer>& layer, CXMLWorkData* layerNode);
    // One saved "PFIndicator" node, added to the layer.
    static void FromXMLNode(const boost::shared_ptr<Layer>& layer, CXMLWorkData* node);
    // A deleted line back at `index` among the lines, on the first of the source's arrays
    // that lie between its neighbours' and have no line; the lines that stayed keep their
    // studies and settings. False (nothing
    // added) when the source has no such array or the place is beyond the lines.
    bool RestoreLine(int index);
    const boost::shared_ptr<pf::ScaleEngine>& GetEngine() const { return engine_; }
    // The data object's handle in the host; null without a source.
    void* GetHandle() const;

    // 3053: the host's index of the array's line; 0 when the host gives none.
    int RequestLineIndex(fxDataPointArray* array) const;
    // "<base name>/<period>".
    QString MakeCaptionIndicator() const;
    // The period as shown: "Tick", "%d Min", "%d Hour", "Day", "Week", "Month", "Year".
    QString GetCaptionPeriod() const;
    void FillContextMenu();
    // The entry "<base name> %c, %d" (period character and length) connected to `slot`
    // through the module's barrier.
    void AddToMenu(const boost::shared_ptr<QMenu>& menu, void (Indicator::*slot)());

    void mousePressEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent& event);
    void mouseMoveEvent(const QMouseEvent& event);

public slots:
    void OnSelectedIndicator();
    void OnShowPropIndicator();
    void OnDeleteIndicator();

private:
    Layer* layer_;
    std::vector<boost::shared_ptr<Line> > lines_;
    boost::shared_ptr<pf::DataSource> source_;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    Origin origin_;
    // How many of the source's arrays the lines have been made for.
    int arraysSeen_ = 0;
};

}  // namespace gx
