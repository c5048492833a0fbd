#include "host/data/RecordText.h"

#include <cstdio>

namespace host {
namespace data {

std::string recordLine(const fxChartTypeRecord& r, int decimals) {
    char line[256];
    std::snprintf(line, sizeof line, "%d %.*f %.*f %d %.*f %.*f", r.time, decimals, double(r.step), decimals,
                  double(r.value), r.type, decimals, double(r.end), decimals, double(r.solid));
    return line;
}

}  // namespace data
}  // namespace host
