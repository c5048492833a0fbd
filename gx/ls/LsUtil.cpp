#include "gx/ls/LsUtil.h"

#include <cmath>
#include <cstdlib>

#include "data/ScaleEngine.h"
#include "gx/Menu.h"
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

bool PtInShapeLine(const QPoint& a, const QPoint& b, const QPoint& p) {
    const bool straight = a.x() == b.x() || a.y() == b.y();
    return gx::util::PtInLine(a, b, p, straight ? kHitTolerance - 1 : kHitTolerance);
}

}  // namespace LsBase
}  // namespace util
}  // namespace gx
