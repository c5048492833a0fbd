#include "gx/ls/lsControlPointsShapesWrap.h"

#include <cstring>

namespace gx {

lsControlPointsShapesWrap::lsControlPointsShapesWrap(const lsControlPointsShapes& record,
                                                     const std::vector<std::int32_t>& sizes) {
    if (record.in && record.inCount > 0) in_.assign(record.in, record.in + record.inCount);
    if (record.out && record.outCount > 0) out_.assign(record.out, record.out + record.outCount);
    if (!record.shapes || record.shapeCount <= 0) return;
    shapes_.assign(record.shapes, record.shapes + record.shapeCount);
    blocks_.resize(shapes_.size());
    for (std::size_t i = 0; i < shapes_.size(); ++i) {
        void* data = nullptr;
        std::memcpy(&data, reinterpret_cast<const char*>(&shapes_[i]) + offsetof(lsShape, data), sizeof data);
        const std::int32_t size = i < sizes.size() ? sizes[i] : 0;
        if (data && size > 0) blocks_[i].assign(static_cast<const char*>(data), static_cast<const char*>(data) + size);
        void* copy = blocks_[i].empty() ? nullptr : blocks_[i].data();
        std::memcpy(reinterpret_cast<char*>(&shapes_[i]) + offsetof(lsShape, data), &copy, sizeof copy);
    }
}

}  // namespace gx
