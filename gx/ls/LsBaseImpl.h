// What every line-study shape shares: the area's scale engine and rectangle, the shape's
// record and the owning study; the title drawing and the column x.
//
// The title font (the module's font 12 at 7 points) is made when a title is drawn.
// A shape reads its data block only when the host reported it at least as large as the
// block's record; a smaller or missing block, like a shape that is not visible, draws
// nothing and is never hit.
#pragma once

#include <QFont>
#include <QRect>
#include <QString>
#include <boost/shared_ptr.hpp>

#include "abi/records/linestudy_records.h"
#include "gx/ls/LsBase.h"

namespace pf {
class ScaleEngine;
}

namespace gx {

class LineStudy;

class LsBaseImpl : public LsBase {
public:
    LsBaseImpl(const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect, const lsControlPointsShapes& cps,
               int index, const LineStudy* study);

    // The title at (x, y) by the shape's alignment bits, cut at the area's right edge.
    void DrawTitle(QPainter& painter, int x, int y) const;
    // The x of the column of candle `index`.
    int CalcX(int index) const;
    // An index beyond the last candle `last` counted from it (see gx::LineStudy).
    int CorrectCPIndex(int index, long last) const;

    const lsShape* Shape() const { return shape_; }
    QString Title() const;
    bool IsVisible() const;
    QColor Color() const;

protected:
    // The shape's data block as a `T`, or null when it is missing or smaller than a `T`.
    template <class T>
    const T* Block() const {
        if (!shape_ || !data_ || dataSize_ < static_cast<long long>(sizeof(T))) return nullptr;
        return static_cast<const T*>(data_);
    }
    long long DataSize() const { return dataSize_; }

    boost::shared_ptr<pf::ScaleEngine> engine_;
    QRect rect_;
    const lsShape* shape_ = nullptr;
    const LineStudy* study_;

private:
    const void* data_ = nullptr;
    long long dataSize_ = 0;
};

}  // namespace gx
