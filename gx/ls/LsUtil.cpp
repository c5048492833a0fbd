#include "gx/ls/LsUtil.h"

#include <cmath>
#include <cstdlib>

#include "data/ScaleEngine.h"
#include "gx/ls/LineStudy.h"

namespace gx {
namespace util {
namespace LsBase {

int CalcX(const boost::shared_ptr<pf::ScaleEngine>& engine, int index) {
    if (!engine) return 0;
    const pf::ScaleEngine& e = *engine;
    const long long offset = static_cast<long long>(index) - e.GetFirstColumn();
    const int column = offset > pf::kPixelLimit ? pf::kPixelLimit : offset < -pf::kPixelLimit ? -pf::kPixelLimit : int(offset);
    const long double x = static_cast<long double>(e.GetLeft()) + e.TranslateX(column) +
                          e.GetXStep(static_cast<float>(e.GetColumnCount())) / 2.0L;
    return pf::TruncToPixel(x);
}

int CalcX(const gx::LineStudy* study, const boost::shared_ptr<pf::ScaleEngine>& engine, const lsPointShape& point) {
    return CalcX(engine, study ? study->GetNormalizeIndex(point) : point.index);
}

int CalcX(const gx::LineStudy* study, const boost::shared_ptr<pf::ScaleEngine>& engine, const lsShapeVLine& line) {
    return CalcX(engine, study ? study->GetNormalizeIndex(line) : line.index);
}

bool PtInSegment(const QPoint& a, const QPoint& b, const QPoint& p, int tolerance) {
    const long long t = tolerance;
    if (t <= 0) return false;
    const long long ax = a.x(), ay = a.y(), bx = b.x(), by = b.y(), px = p.x(), py = p.y();
    if (px <= std::min(ax, bx) - t || px >= std::max(ax, bx) + t) return false;
    if (py <= std::min(ay, by) - t || py >= std::max(ay, by) + t) return false;
    const long double dx = static_cast<long double>(bx - ax);
    const long double dy = static_cast<long double>(by - ay);
    if (dx == 0 && dy == 0) return std::llabs(px - ax) < t && std::llabs(py - ay) < t;
    // Distance to the line through a and b, compared squared and strictly.
    const long double cross = (px - ax) * dy - (py - ay) * dx;
    return cross * cross < static_cast<long double>(t) * t * (dx * dx + dy * dy);
}

}  // namespace LsBase
}  // namespace util
}  // namespace gx
