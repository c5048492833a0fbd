#include "module/FontManager.h"

namespace font {

QString Manager::GetFont(elementCode code) const {
    auto it = elements_.find(code);
    return it == elements_.end() ? QStringLiteral("Arial") : it->second.family;
}

DefaultManager::DefaultManager() {
    // Captions, menus and scales in Tahoma; tool tips and status texts in Arial; the
    // two fixed-width elements (price tables) in Courier New.
    for (int code = ELEMENT_FIRST; code <= ELEMENT_LAST; ++code) {
        QString family = QStringLiteral("Tahoma");
        if (code >= 14 && code <= 19) family = QStringLiteral("Arial");
        if (code >= 20) family = QStringLiteral("Courier New");
        elements_[elementCode(code)] = Element{family, 8, 50};
    }
}

ChinaManager::ChinaManager() {
    for (int code = ELEMENT_FIRST; code <= ELEMENT_LAST; ++code)
        elements_[elementCode(code)] = Element{QStringLiteral("SimSun"), 9, 50};
}

Manager* CreateManager(const QString& language) {
    if (language == QLatin1String("Chinese (Simplified)")) return new ChinaManager;
    return new DefaultManager;
}

}  // namespace font
