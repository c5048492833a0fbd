#include "gx/ls/LsFactory.h"

#include <stdexcept>

#include "gx/ls/LsArch.h"
#include "gx/ls/LsHLine.h"
#include "gx/ls/LsLine.h"
#include "gx/ls/LsText.h"
#include "gx/ls/LsVLine.h"

namespace gx {

LsFactory& LsFactory::Instance() {
    static LsFactory factory;
    return factory;
}

boost::shared_ptr<LsBase> LsFactory::Create(int type, const boost::shared_ptr<pf::ScaleEngine>& engine,
                                            const QRect& rect, const lsControlPointsShapes& cps, int index,
                                            const LineStudy* study) const {
    switch (type) {
        case LS_SHAPE_LINE: return boost::shared_ptr<LsBase>(new LsLine(engine, rect, cps, index, study));
        case LS_SHAPE_TEXT: return boost::shared_ptr<LsBase>(new LsText(engine, rect, cps, index, study));
        case LS_SHAPE_HLINE: return boost::shared_ptr<LsBase>(new LsHLine(engine, rect, cps, index, study));
        case LS_SHAPE_VLINE: return boost::shared_ptr<LsBase>(new LsVLine(engine, rect, cps, index, study));
        case LS_SHAPE_ARC: return boost::shared_ptr<LsBase>(new LsArch(engine, rect, cps, index, study));
        default: throw std::runtime_error("Unexpected type of line study");
    }
}

}  // namespace gx
