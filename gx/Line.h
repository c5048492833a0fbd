// A line: one price series drawn in a layer. It binds a data point array of the host (a
// Point and Figure, Renko or Kagi array) to the renderer of its chart type and to the area's
// scale engine, carries the line studies drawn on it and answers the time questions of the
// time scale and the line studies.
#pragma once

#include <QByteArray>
#include <QString>
#include <boost/scoped_ptr.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

#include "abi/records/dpa_records.h"
#include "gx/Object.h"

class QMouseEvent;
class CXMLWorkData;
class QKeyEvent;

namespace pf {
class ScaleEngine;
class PointData;
}  // namespace pf

namespace gx {

class Chart;
class Indicator;
class LineStudy;
class TimeScale;

class FigurePicture;

class Line : public Object {
public:
    // Interval kinds of GetTimeInterval.
    enum Interval { kNone = 0, kMinutes = 2, kDays = 3, kWeeks = 4, kMonths = 5, kYears = 6 };

    // The renderer is made from the array's name; an array of an unknown chart type throws
    // "Unexpected name of data point".
    Line(Indicator* indicator, fxDataPointArray* array, const boost::shared_ptr<pf::ScaleEngine>& engine,
         const QRect& rect);
    // A line without data or renderer (a layout restored before its data arrives).
    explicit Line(Indicator* indicator = nullptr,
                  const boost::shared_ptr<pf::ScaleEngine>& engine = boost::shared_ptr<pf::ScaleEngine>(),
                  const QRect& rect = QRect());
    ~Line() override;

    // The renderer clipped to the line's rectangle, the caption's colour from the array, then
    // the line studies.
    void Draw(QPainter& painter) const override;
    void Resize(const QSize& size) override;
    void Select(bool selected) override;
    void SetRect(const QRect& rect) override;
    // Whether the studies go into the line's picture (none is being placed or moved), with
    // what they read appended to `key` when given; true without studies.
    bool KeepsStudies(QByteArray* key = nullptr) const;

    // True when the renderer reports a figure under `point`.
    bool IsOnDataClicked(const QPoint& point) const;
    // The renderer's tooltip text for `point`; empty when nothing is under it.
    QString ToolTipAt(const QPoint& point) const;

    // The host's newer array of the same data (after an update): the renderer keeps going.
    void SetArray(fxDataPointArray* array);
    // The array's records changed in place (the host's update came with the same array).
    void DataChanged() { ++generation_; }
    fxDataPointArray* GetArray() const { return array_; }
    int Size() const;
    Chart* GetChart() const;
    Indicator* GetIndicator() const { return indicator_; }
    const boost::shared_ptr<pf::ScaleEngine>& GetEngine() const { return engine_; }
    const boost::shared_ptr<pf::PointData>& GetRenderer() const { return renderer_; }
    // 0 for the first line of the indicator, -i for position i, -1 when absent.
    int GetIndex() const;
    const QString& GetName() const { return name_; }
    void SetName(const QString& name) { name_ = name; }
    // The position of the line's array among its source's arrays; -1 for a line not made
    // from a source. Lines deleted by hand leave their positions unused.
    int GetSourceIndex() const { return sourceIndex_; }
    void SetSourceIndex(int index) { sourceIndex_ = index; }
    int GetFirstVisibleFigure() const { return firstVisibleFigure_; }
    void SetFirstVisibleFigure(int index) { firstVisibleFigure_ = index; }
    // 1 when the last press lets the studies change their selection.
    int GetGroupSelect() const { return groupSelect_; }
    // TIME of position `index`; 0 outside the data.
    std::int32_t GetTime(int index) const;
    // The period of the array ('I' when there is none) and its length.
    char GetPeriodType() const;
    int GetPeriodLength() const;

    // Time questions (GetTimeStep in seconds; a month is 30 days, a year 365 days).
    std::int64_t GetTimeStep() const;
    int GetTimeInterval(int& count) const;
    // Adds the time of every point from `from` on to the scale, then sets its format.
    void UpdateTimes(TimeScale* scale, int from = 0) const;
    // The position of a time, also beyond the last point (calendar-exact for months, years).
    int GetTimeVirtualIndex(long time) const;
    // The time of a position, also before the first and after the last point.
    long GetIndexVirtualTime(int index) const;
    // Steps `t` by `k` units of interval `kind` (months and years on the calendar).
    static long StepTime(long t, int kind, long k);

    // Line studies.
    void AddLineStudy(const boost::shared_ptr<LineStudy>& study);
    void DeleteLineStudy(LineStudy* study);
    std::vector<boost::shared_ptr<LineStudy> > FindLS(int stateMask) const;
    std::vector<boost::shared_ptr<LineStudy> > FindLSSelected() const;
    bool IsGroupSelectLS(const QMouseEvent& event, const std::vector<boost::shared_ptr<LineStudy> >& studies) const;
    // Counts the selected studies under the press (`hits`) and all selected studies
    // (`candidates`). A press on some but not all of several selected studies keeps the
    // selection (the group-selection flag is 0); any other press lets each study take its
    // selection from the press.
    void SelectingLS(const QMouseEvent& event, int& hits, int& candidates) const;
    const std::vector<boost::shared_ptr<LineStudy> >& GetLineStudies() const { return studies_; }
    std::vector<boost::shared_ptr<LineStudy> >& GetLineStudies() { return studies_; }

    // Saving: "Index", "FirstVisibleFigure", then the data point array's description.
    void ToXML(CXMLWorkData* node) const;
    // The saved values of a line: its index picks the indicator's line they belong to.
    static void FromXML(const boost::shared_ptr<Indicator>& indicator, CXMLWorkData* lineNode);
    void FillContextMenu();

    void mousePressEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent& event);
    void mouseMoveEvent(const QMouseEvent& event);

private:
    fxDataPointArray* array_ = nullptr;
    // What the renderer drew last, blitted while nothing it reads has changed; the
    // generation counts replacements and in-place changes of the array.
    boost::scoped_ptr<FigurePicture> picture_;
    unsigned generation_ = 0;
    boost::shared_ptr<pf::PointData> renderer_;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    QString name_;
    Indicator* indicator_;
    std::vector<boost::shared_ptr<LineStudy> > studies_;
    int groupSelect_ = 0;
    int firstVisibleFigure_ = 0;
    int sourceIndex_ = -1;
};

}  // namespace gx
