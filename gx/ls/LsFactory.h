// Makes the shape object of a shape type: 0 straight line, 2 text, 3 horizontal line,
// 4 vertical line, 5 arc. Type 1 and every other type throw "Unexpected type of line study".
#pragma once

#include <QRect>
#include <boost/shared_ptr.hpp>

#include "abi/records/linestudy_records.h"
#include "gx/ls/LsBase.h"

namespace pf {
class ScaleEngine;
}

namespace gx {

class LineStudy;

class LsFactory {
public:
    static LsFactory& Instance();
    // `index` picks the shape's record among those of `cps`.
    boost::shared_ptr<LsBase> Create(int type, const boost::shared_ptr<pf::ScaleEngine>& engine, const QRect& rect,
                                     const lsControlPointsShapes& cps, int index, const LineStudy* study) const;

private:
    LsFactory() {}
};

}  // namespace gx
