// Geometry shared by the line-study shapes: the x of a candle index and the segment hit test.
#pragma once

#include <QPoint>
#include <boost/shared_ptr.hpp>

#include "abi/records/linestudy_records.h"

namespace pf {
class ScaleEngine;
}

namespace gx {

class LineStudy;

namespace util {
namespace LsBase {

// The x of the centre of the column of candle `index`: the engine's left edge, the column's
// offset from the first visible one and half a column step, truncated.
int CalcX(const boost::shared_ptr<pf::ScaleEngine>& engine, int index);
// The same for a point or a vertical line whose index may be relative to the last candle.
int CalcX(const gx::LineStudy* study, const boost::shared_ptr<pf::ScaleEngine>& engine, const lsPointShape& point);
int CalcX(const gx::LineStudy* study, const boost::shared_ptr<pf::ScaleEngine>& engine, const lsShapeVLine& line);

// Every shape is hit within 5 pixels of its segments, strictly: 4 pixels off a line hits,
// 5 does not.
constexpr int kHitTolerance = 5;
// The shapes' segment hit test, through the chart's gx::util::PtInLine: a slanted segment
// is compared strictly already; a horizontal or vertical one includes its tolerance there,
// so it is given one pixel less.
bool PtInShapeLine(const QPoint& a, const QPoint& b, const QPoint& p);

}  // namespace LsBase
}  // namespace util
}  // namespace gx
