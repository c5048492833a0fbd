// A line study: a drawing tool the user placed on a line (horizontal or vertical line,
// trend line, text, arc, channel, pitchfork, polyline), whose geometry the host computes.
//
// This is the part of the study that the chart tree reads and writes: its selection, its
// state bits, the manual-delete flag, its host handle and the temporary drawing object used
// while it is dragged. Studies get their control points and shapes from the host; one
// without shapes draws nothing and is never hit.
#pragma once

#include <QObject>
#include <QPicture>
#include <boost/shared_ptr.hpp>

#include "gx/Object.h"

namespace pf {
class ScaleEngine;
}

namespace gx {

class Line;

class LineStudy : public QObject, private Object {
    Q_OBJECT
public:
    // State bits.
    enum State {
        StateCreated = 1,   // placed and finished
        StateCreating = 2,  // still being placed
        StateMoving = 4,    // being dragged, or a new study being placed by the mouse
        StateNewPoint = 8,  // waiting for its next control point
    };

    LineStudy(Line* line, void* hostHandle, const boost::shared_ptr<pf::ScaleEngine>& engine,
              const QRect& rect);
    ~LineStudy() override;

    void Draw(QPainter& painter) const override;
    void Select(bool selected) override;
    void SetRect(const QRect& rect) override;
    void Resize(const QSize& size) override;
    using Object::IsSelected;
    using Object::Rect;

    // Hit test of the study's shapes; a study without shapes is never hit.
    bool PtInLS(const QPoint& point) const;
    int GetState() const { return state_; }
    void SetState(int state) { state_ = state; }
    bool IsManualDelete() const { return manualDelete_; }
    void SetManualDelete(bool on) { manualDelete_ = on; }
    void* GetHandle() const { return hostHandle_; }
    Line* GetLine() const { return line_; }
    int GetShapeCount() const { return shapeCount_; }
    int GetCPCount() const { return cpCount_; }
    void UpdateCPCount(int count) { cpCount_ = count < 0 ? 0 : count; }
    void UpdateShapeCount(int count) { shapeCount_ = count < 0 ? 0 : count; }

    // The picture drawn while the study is dragged; null when none.
    QPicture* GetTempDraw() const { return tempDraw_; }
    void SetTempDraw(QPicture* picture);
    void ReleaseTempDraw();

private:
    Line* line_;
    void* hostHandle_;
    boost::shared_ptr<pf::ScaleEngine> engine_;
    int state_ = StateCreating;
    bool manualDelete_ = false;
    int cpCount_ = 0;
    int shapeCount_ = 0;
    QPicture* tempDraw_ = nullptr;
};

}  // namespace gx
