// An owning copy of a study's exchange record: the input and output points, the shapes and
// a deep copy of each shape's data block. Saving and the move undo work on such a copy.
#pragma once

#include <vector>

#include "abi/records/linestudy_records.h"

namespace gx {

class lsControlPointsShapesWrap {
public:
    // `sizes` are the data block sizes of the shapes (one per shape; missing ones count 0).
    lsControlPointsShapesWrap(const lsControlPointsShapes& record, const std::vector<std::int32_t>& sizes);
    lsControlPointsShapesWrap(const lsControlPointsShapesWrap&) = delete;
    lsControlPointsShapesWrap& operator=(const lsControlPointsShapesWrap&) = delete;

    const std::vector<lsPointShape>& In() const { return in_; }
    const std::vector<lsPointShape>& Out() const { return out_; }
    const std::vector<lsShape>& Shapes() const { return shapes_; }
    const std::vector<std::vector<char> >& Blocks() const { return blocks_; }

private:
    std::vector<lsPointShape> in_;
    std::vector<lsPointShape> out_;
    std::vector<lsShape> shapes_;
    std::vector<std::vector<char> > blocks_;
};

}  // namespace gx
