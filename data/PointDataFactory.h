// Makes the renderer of a chart type from the type's name.
#pragma once

#include <boost/shared_ptr.hpp>

#include "data/PointData.h"

namespace pf {

class PointDataFactory {
public:
    // The one factory of the process, created on first use.
    static PointDataFactory& Instance();

    // RenkoData for "Renko", PFData for "Point and Figure", KagiData for "Kagi" (UTF-16,
    // NUL-terminated, compared exactly). Any other name, or none, throws
    // std::runtime_error("Unexpected name of data point").
    boost::shared_ptr<PointData> Create(const unsigned short* name,
                                        const boost::shared_ptr<ScaleEngine>& engine,
                                        gx::Line* line) const;

private:
    PointDataFactory() = default;
};

}  // namespace pf
