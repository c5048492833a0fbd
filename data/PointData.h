// The renderer of a chart type: draws the host's computed columns, bricks or strokes and
// answers whether the mouse is over one of them.
//
// The three renderers (PFData, RenkoData, KagiData) share the column walk: the visible
// columns come from the scale engine (its column count, first visible column and last
// drawable index), x advances by the engine's column width, a selected line's pen style
// alternates between two dash patterns from one Draw to the next, and the tooltip text of a
// column is the same. That common part lives here.
//
// Records are read straight from the array's data block as consecutive 24-byte records
// (fxChartTypeRecord). Nothing is read outside the block: the walk is clamped to the array's
// point count, and an array without a block or with points smaller than a record is drawn
// as nothing and never hit.
#pragma once

#include <QPen>
#include <QPoint>
#include <QRgb>
#include <QString>
#include <boost/shared_ptr.hpp>
#include <climits>
#include <cstring>

#include "abi/records/dpa_records.h"
#include "data/FigureStamps.h"
#include "data/ScaleEngine.h"

class QPainter;

namespace gx {
class Line;
}

namespace pf {

class PointData {
public:
    PointData(gx::Line* line, const boost::shared_ptr<ScaleEngine>& engine);
    virtual ~PointData();
    PointData(const PointData&) = delete;
    PointData& operator=(const PointData&) = delete;

    // Paints the visible records of `array`.
    virtual void Draw(QPainter& painter, fxDataPointArray* array) = 0;
    // Paints only the visible records from index `from` up to `to` (exclusive), each exactly
    // as Draw paints it; the walk, the x reached and the pen carried from record to record
    // are those of Draw.
    void DrawRecords(QPainter& painter, fxDataPointArray* array, int from, int to);
    // What a record's drawing takes over from the records before `index` (the Kagi line's
    // thickness); 0 for renderers that draw every record on its own.
    virtual int EntryState(const fxDataPointArray* array, int index) const;
    // Every pixel of the record drawn at x position x (see Draw) lies at or right of
    // x + 0.5 truncated less kReachLeft, and at or left of that plus the column width
    // rounded up and kReachRight.
    static constexpr int kReachLeft = 3;
    static constexpr int kReachRight = 5;
    // The x position (widget pixels) reached by the last Draw.
    virtual float GetXPos() const { return xPos_; }
    virtual void SetStepX(float step) { stepX_ = step; }
    // True, with the column's tooltip in `text`, when `point` lies on a visible column;
    // false with `text` empty otherwise.
    virtual bool IsUnderMouse(const QPoint& point, fxDataPointArray* array, const QString& name,
                              QString& text) = 0;

    float GetStepX() const { return stepX_; }
    // The current pen style (Qt::PenStyle value): 1 solid, 3 or 4 while the line is selected.
    int GetPenStyle() const { return penStyle_; }
    // What a Draw leaves behind for later readers: the column width, the x reached and the
    // pen style. A line that shows a picture of an earlier Draw puts it back.
    struct DrawState {
        float stepX;
        float xPos;
        int penStyle;
    };
    DrawState GetDrawState() const { return DrawState{stepX_, xPos_, penStyle_}; }
    void SetDrawState(const DrawState& state) {
        stepX_ = state.stepX;
        xPos_ = state.xPos;
        penStyle_ = state.penStyle;
    }
    gx::Line* GetLine() const { return line_; }
    const boost::shared_ptr<ScaleEngine>& GetEngine() const { return engine_; }

    // The number of records that can be read from the array's data block; 0 for a null
    // array, a missing block, a negative count or points smaller than a record.
    static int RecordCount(const fxDataPointArray* array);
    // Record `index` of the block; the caller keeps index below RecordCount.
    static fxChartTypeRecord Record(const fxDataPointArray* array, int index) {
        fxChartTypeRecord r;
        std::memcpy(&r, array->points + static_cast<std::size_t>(index) * sizeof r, sizeof r);
        return r;
    }

    // The tooltip of a record: the line's name, then "PF0017" with VALUE and "PF0018" with
    // END (both translated, numbers with `precision` decimals), then the record's time in
    // local time as "dd.MM.yyyy hh:mm:ss".
    static QString ToolTipText(const QString& name, const fxChartTypeRecord& record, int precision);

protected:
    // What a Draw works with once the common preparation is done.
    struct Frame {
        int first = 0;        // first record to draw
        int end = 0;          // one past the last record to draw (clamped to the block)
        float step = 0.0f;    // column width in pixels
        QRgb colour0 = 0;     // header colour word 0: X boxes, rising bricks, thick Kagi line
        QRgb colour1 = 0;     // header colour word 1: O boxes, falling bricks, thin Kagi line
        int precision = 0;
        int drawFrom = 0;     // records outside drawFrom .. drawTo - 1 are walked, not drawn
        int drawTo = 0;
        bool Drawn(int index) const { return index >= drawFrom && index < drawTo; }
    };

    // The common start of Draw: the column width is handed to SetStepX, x starts at the
    // engine's left edge, the pen style advances and the stamps learn about the painter.
    // Returns false when nothing is to be drawn: no visible column, a first column past the
    // last drawable one (or negative), no readable record.
    bool BeginDraw(const QPainter& painter, const fxDataPointArray* array, Frame& frame);

    // A pen in `colour` with the current style, square caps and bevel joins.
    QPen MakePen(QRgb colour, qreal width = 1.0) const;

    // The common hit test: walks the visible columns (clamped to the block) and asks
    // `hits(k, record, xa, xb)` for each, where xa and xb are the widget x of column k's left
    // edge and of the next column's left edge. The first column hit gives the text.
    template <class Hits>
    bool HitTest(const fxDataPointArray* array, const QString& name, QString& text, Hits hits) const;

    int penStyle_ = 1;
    gx::Line* line_;
    boost::shared_ptr<ScaleEngine> engine_;
    float xPos_ = 0.0f;
    float stepX_ = 0.0f;
    FigureStamps stamps_;
    int drawFrom_ = INT_MIN;
    int drawTo_ = INT_MAX;

private:
    void AdvancePenStyle();
};

template <class Hits>
bool PointData::HitTest(const fxDataPointArray* array, const QString& name, QString& text,
                        Hits hits) const {
    text = QString();
    if (!engine_) return false;
    const ScaleEngine& e = *engine_;
    const int first = e.GetFirstColumn();
    const int n = e.GetColumnCount();
    if (first < 0 || n < 1) return false;
    const int available = RecordCount(array) - first;
    const int count = n < available ? n : available;
    const int left = e.GetLeft();
    for (int k = 0; k < count; ++k) {
        const fxChartTypeRecord r = Record(array, first + k);
        if (hits(k, r, left + e.TranslateX(k), left + e.TranslateX(k + 1))) {
            text = ToolTipText(name, r, array->precision);
            return true;
        }
    }
    return false;
}

}  // namespace pf
