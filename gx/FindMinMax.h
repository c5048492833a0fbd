// The price range of the visible part of the lines (of one area, or of the whole chart),
// for the price scales, the grid and the cross cursor.
//
// The range is padded by one box at both ends. The maximum starts at the smallest positive
// normal float (not the most negative one), the minimum at the largest float.
#pragma once

#include <cfloat>

#include "gx/Visitor.h"

namespace gx {

struct FindMinMax : Visitor {
    using Visitor::Visit;

    // `area` null: every line of the chart.
    explicit FindMinMax(const Area* area = nullptr, float minimum = FLT_MAX, float maximum = FLT_MIN,
                        float columns = -1.0f, float precisionValue = -1.0f)
        : minPrice(minimum), maxPrice(maximum), columnCount(columns), precision(precisionValue),
          area_(area) {}

    void Visit(boost::shared_ptr<Line> line);

    float firstPos = 0.0f;
    float pointCount = 0.0f;
    float minPrice;
    float maxPrice;
    float boxSize = 0.0f;
    float columnCount;   // -1 while no line had data
    float precision;     // decimals of the instrument; -1 while no line had data

    // True once a line with data was seen.
    bool HasData() const { return columnCount >= 0.0f; }

private:
    const Area* area_;
};

}  // namespace gx
