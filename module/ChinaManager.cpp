#include "module/ChinaManager.h"

namespace font {

ChinaManager::ChinaManager() {
    // One family carries Latin and Chinese glyphs alike; headers and titles stay bold.
    const QString simsun = QString::fromLatin1("SimSun");
    for (int code = ELEMENT_FIRST; code <= ELEMENT_LAST; ++code) {
        const bool bold = code == efTableHeader || code == efChartTitle;
        elements_[elementCode(code)] = Element{simsun, 9, bold ? 75 : 50};
    }
}

}  // namespace font
