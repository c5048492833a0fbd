// A line study: a drawing tool the user places on a line (horizontal or vertical line,
// trend line, text, arc, channel, pitchfork, polyline), whose geometry the host computes.
//
// The study lives in the host's line-study provider. The module creates it there (4500),
// sends the control points as the user places and drags them (4510), and draws and
// hit-tests the output points and shapes the host hands back. It keeps its state bits
// (1 created, 2 being placed, 4 being moved, 8 more points wanted), its selection, its
// context menu, and saves itself into the chart's layout.
//
// Every array the host fills is the study's own; counts and sizes the host reports are
// capped (kMaxPoints, kMaxShapes, kMaxShapeBytes, kMaxStudyBytes in all) and the exchange record's counts and
// pointers are put back after every call, so the host cannot make the study read past
// what it allocated.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QPicture>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <memory>
#include <vector>

#include "abi/records/linestudy_records.h"
#include "gx/Object.h"
#include "gx/ls/lsControlPointsShapesWrap.h"

class QMenu;
class QMouseEvent;
class QKeyEvent;
class CXMLWorkData;
class PFChartWidget;
class CModule;

namespace pf {
class ScaleEngine;
}

namespace gx {

class Line;
class Chart;

// The extremes of a study's output points.
struct CRITICAL_POINT {
    float minX;
    std::int32_t minIndex;
    float minY;
    float maxValue;
};

class LineStudy : public QObject, private Object {
    Q_OBJECT
public:
    enum State {
        StateCreated = 1,   // placed and finished
        StateCreating = 2,  // still being placed
        StateMoving = 4,    // a press hit the study or one of its markers
        StateNewPoint = 8,  // a press placed a point; more are wanted
    };
    static constexpr int kMaxPoints = 1000;
    static constexpr int kMaxShapes = 1000;
    static constexpr int kMaxShapeBytes = 1 << 20;
    // All shape records and data blocks of one study together: a host reporting more gets
    // no blocks for the shapes beyond it (they draw nothing).
    static constexpr long long kMaxStudyBytes = 8ll << 20;

    // A new study of type `name`, placed by the user point by point. Throws when the host
    // gives no id (4500) or fails the first exchange (4510).
    LineStudy(Line* line, void* provider, const QString& name, const boost::shared_ptr<pf::ScaleEngine>& engine,
              const QRect& rect, std::uint32_t color = 0);
    // A new study with every point at `at` (a drop on the chart).
    LineStudy(Line* line, void* provider, const QString& name, const QPoint& at,
              const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect, std::uint32_t color = 0);
    // Wraps a study that `provider` already has under `hostId`; it has no points until given
    // some.
    LineStudy(Line* line, void* provider, void* hostId, const boost::shared_ptr<pf::ScaleEngine>& engine,
              const QRect& rect);
    // A copy of `other` (the same host study, moved to another line or area): its own copies
    // of the points and shapes; selected, idle and with the focus.
    explicit LineStudy(LineStudy* other);
    ~LineStudy() override;

    void Draw(QPainter& painter) const override;
    void Select(bool selected) override;
    void SetRect(const QRect& rect) override;
    void Resize(const QSize& size) override;
    using Object::IsSelected;
    using Object::Rect;

    // Hit tests: the shapes, and the 5 x 5 markers of the output points.
    bool PtInLS(const QPoint& point) const;
    bool PtInCP(const QPoint& point, int& index) const;
    void GetCriticalPoints(CRITICAL_POINT* points) const;

    int GetState() const { return state_; }
    void SetState(int state) { state_ = state; }
    bool IsManualDelete() const { return manualDelete_; }
    void SetManualDelete(bool on) { manualDelete_ = on; }
    // The host id as a handle (what 5025 and the undo records name the study by).
    void* GetHandle() const;
    std::int32_t GetId() const { return id_; }
    void* GetProvider() const { return provider_; }
    Line* GetLine() const { return line_; }
    const QString& GetName() const { return name_; }
    const QString& GetTitle() const { return title_; }
    bool IsFinished() const { return finished_; }
    // Delete() has run: the host no longer has the study, only its line may still hold it.
    bool IsDetached() const { return detached_; }
    int GetPlacedCount() const { return placed_; }

    // Control points and shapes.
    // The shapes and output points the host returned in its last exchange (4510): at most
    // what was allocated for them.
    int GetShapeCount() const { return cps_.shapeCount; }
    int GetCPCount() const { return cps_.inCount; }
    const lsControlPointsShapes& GetRecord() const { return cps_; }
    lsPointShape* InPoints() { return in_.empty() ? nullptr : in_.data(); }
    const std::vector<lsPointShape>& GetInPoints() const { return in_; }
    const std::vector<lsPointShape>& GetOutPoints() const { return out_; }
    // The size the host reported for shape `i`'s data block (0 when out of range).
    long long GetShapeDataSize(int i) const;
    void UpdateCPCount(int count);
    // Frees the shapes, asks the host for `count` shapes' sizes (4505), allocates them and
    // exchanges the points (4510). Throws after deleting the study when the host fails.
    void UpdateShapeCount(int count);
    // The exchange of 4510; -1 without a host, else the host's answer. The study's own
    // record is used when `record` is null.
    int GetListControlPointer(void* provider = nullptr, void* id = nullptr, lsControlPointsShapes* record = nullptr);
    // Re-reads the shapes after the host changed them (3073).
    void Refresh(bool shapesChanged);

    // Index handling: a point beyond the last candle is kept relative to it.
    int GetLastCandleIndex() const;
    int GetLastScreenCandleIndex() const;
    int GetCPIndexType(int index) const { return index > GetLastCandleIndex() ? 1 : 0; }
    int CorrectCPIndex(int index) const;
    int GetNormalizeIndex(const lsPointShape& point) const;
    int GetNormalizeIndex(const lsShapeVLine& line) const;
    void RecomputePositionByIndex(lsPointShape& point, int index) const;
    // The time scale's virtual position of a time, searched as the line's interval wants.
    int VirtualTimePosition(long time) const;
    void RecomputePositionByTime(lsPointShape& point, long time) const;
    bool IsInFreeSpaceByTime(long time) const;
    bool IsInCandleSpaceByTime(long time) const { return !IsInFreeSpaceByTime(time); }
    // Point x and y in pixels.
    int PointX(const lsPointShape& point) const;
    int PointY(const lsPointShape& point) const;

    // Moves. CheckMoveOut is true when moving every point from column `from` to `to` would
    // put one left of candle 0.
    bool CheckMoveOut(int from, int to) const;
    void MoveLineStudyHorizontal(int from, int to);
    void MoveLineStudyVertical(double priceNow, double priceBefore);
    void MoveLineStudyCPHorizontal(int index, int from, int to);
    void MoveLineStudyCPVertical(int index, double price);
    void MoveLineStudyWrap(int to, int from, double priceNow, double priceBefore);

    void SetFocus();
    void FinishCreating(bool exchange);
    void CancelCreatingLS(bool update);
    void Delete();
    void FreeMem();

    void mousePressEvent(const QMouseEvent& event);
    void mouseMoveEvent(const QMouseEvent& event);
    void mouseReleaseEvent(const QMouseEvent& event);
    void mouseDoubleClickEvent(const QMouseEvent& event);
    void keyPressEvent(const QKeyEvent&) {}

    void FillContextMenu();
    void AddToMenu(const boost::shared_ptr<QMenu>& menu, const QString& text, void (LineStudy::*slot)());
    void ShowProperties() const;

    // Saving: a "LineStudy" node under `lineNode` with one "ControlPoint" per input point;
    // with `snapshot` its points are written instead of the current ones.
    // Returns the "LineStudy" node (null when it could not be made).
    std::unique_ptr<CXMLWorkData> ToXML(CXMLWorkData* lineNode, const lsControlPointsShapesWrap* snapshot = nullptr) const;
    // Recreates the study of a "LineStudy" node in the host and puts it on `line`; null
    // when the host cannot make it.
    static boost::shared_ptr<LineStudy> FromXML(const boost::shared_ptr<Line>& line, CXMLWorkData* node);
    // The points of a move's start, kept until the release (null when none).
    const lsControlPointsShapesWrap* GetMoveSnapshot() const { return snapshot_.get(); }
    // Puts saved points back (undo of a move): times and prices, positions from the times.
    void RestorePoints(const std::vector<lsPointShape>& points);

    // The picture drawn while the study is dragged; null when none.
    // Appends to `key` everything Draw reads of this study, for a line that keeps a picture of
    // its figures and studies. False while the study is being placed or moved: it then
    // changes with every mouse move and is drawn directly.
    bool AppendDrawKey(QByteArray& key) const;

    QPicture* GetTempDraw() const { return tempDraw_; }
    void SetTempDraw(QPicture* picture);
    void ReleaseTempDraw();

    // Providers that created studies in this process: a saved layout's provider is used
    // again only when it is one of them.
    static bool IsKnownProvider(void* provider);

public slots:
    void OnSelectedLS();
    void OnShowPropLS();
    void OnDeleteLS();

private:
    void Init(Line* line, const boost::shared_ptr<pf::ScaleEngine>& engine);
    // Creates the host's study; returns the shape count it reported (capped).
    int Create(void* provider, const QString& name, std::uint32_t color);
    void Attach();
    void SyncRecord();
    int Send(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) const;
    const CModule* Module() const;
    Chart* GetChart() const;
    PFChartWidget* GetWidget() const;
    bool IsPolyLine() const { return name_ == QLatin1String("PolyLine"); }
    // Marker position of output point `i` (the channel's points 1 and 3 in the middle).
    QPoint MarkerPos(int i) const;
    // Number of output points up to and including the first of type 2, among those the host
    // returned in its last exchange.
    int OutPointsUsed() const;
    // Number of shapes the host returned in its last exchange.
    int ShapesUsed() const;
    int InPointsUsed() const;
    // Mouse column, its time and the price under it.
    int MouseColumn(const QPoint& p) const;
    double MousePrice(const QPoint& p) const;
    void SetPointAt(lsPointShape& point, const QPoint& p) const;
    bool PointsEqual(const std::vector<lsPointShape>& a, const std::vector<lsPointShape>& b) const;
    void PolyLineDoubleClick(const QMouseEvent& event);
    // After the host failed an exchange of a mouse step: deleted in the host, off its line.
    void LeaveAfterHostError();

    Line* line_ = nullptr;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    std::int32_t id_ = 0;
    void* provider_ = nullptr;
    void* lineDataId_ = nullptr;
    QString name_;
    QString title_;
    std::uint32_t color_ = 0;
    bool finished_ = false;
    bool ownsMemory_ = true;
    bool hostDeleted_ = false;
    bool manualDelete_ = false;
    bool detached_ = false;  // Delete() has run
    int state_ = StateCreating;
    int dragIndex_ = -1;
    int dragX_ = 0;
    int dragY_ = 0;
    int placed_ = 0;
    bool rubberBand_ = false;  // a move has put the point being placed
    lsControlPointsShapes cps_;
    std::vector<lsPointShape> in_;
    std::vector<lsPointShape> out_;
    std::vector<lsShape> shapes_;
    std::vector<std::int32_t> sizes_;
    std::vector<std::vector<char> > blocks_;
    std::unique_ptr<lsControlPointsShapesWrap> snapshot_;
    QPicture* tempDraw_ = nullptr;
    // Which study this is, for picture keys (an address may be taken again by a later one).
    const std::uint64_t serial_ = NextSerial();
    // Counts exchanges with the host and rebuilds of the shape table: the host writes the
    // shapes and their data only during an exchange, so an unchanged count means unchanged
    // shapes.
    mutable std::uint64_t exchanges_ = 0;
    static std::uint64_t NextSerial();
};

}  // namespace gx
