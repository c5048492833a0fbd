#include "data/PointDataFactory.h"

#include <stdexcept>

#include "data/KagiData.h"
#include "data/PFData.h"
#include "data/RenkoData.h"

namespace pf {

namespace {

// True when the NUL-terminated UTF-16 `name` is exactly the ASCII `text`. Stops at the
// first difference, so it never reads past the end of a shorter name.
bool SameName(const unsigned short* name, const char* text) {
    for (; *text; ++name, ++text)
        if (*name != static_cast<unsigned char>(*text)) return false;
    return *name == 0;
}

}  // namespace

PointDataFactory& PointDataFactory::Instance() {
    static PointDataFactory factory;
    return factory;
}

boost::shared_ptr<PointData> PointDataFactory::Create(const unsigned short* name,
                                                      const boost::shared_ptr<ScaleEngine>& engine,
                                                      gx::Line* line) const {
    if (name) {
        if (SameName(name, "Renko")) return boost::shared_ptr<PointData>(new RenkoData(line, engine));
        if (SameName(name, "Point and Figure"))
            return boost::shared_ptr<PointData>(new PFData(line, engine));
        if (SameName(name, "Kagi")) return boost::shared_ptr<PointData>(new KagiData(line, engine));
    }
    throw std::runtime_error("Unexpected name of data point");
}

}  // namespace pf
