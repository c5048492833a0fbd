#include "host/data/ChartType.h"

namespace host {
namespace data {

const char* chartTypeName(ChartType type) {
    switch (type) {
    case ChartType::PointAndFigure: return "Point and Figure";
    case ChartType::Renko: return "Renko";
    case ChartType::Kagi: return "Kagi";
    }
    return "";
}

bool parseChartType(const std::string& text, ChartType* type) {
    static const struct {
        const char* shortName;
        ChartType type;
    } kTypes[] = {{"pf", ChartType::PointAndFigure}, {"renko", ChartType::Renko}, {"kagi", ChartType::Kagi}};
    for (const auto& t : kTypes) {
        if (text == t.shortName || text == chartTypeName(t.type)) {
            if (type) *type = t.type;
            return true;
        }
    }
    return false;
}

}  // namespace data
}  // namespace host
