#include "module/FontManager.h"

namespace font {

// Font families are built on the heap, never as QStringLiteral: the fonts made from them end
// up as keys of Qt's process-wide font cache, which outlives this library when the terminal
// unloads it, and a literal's text lives in the library's own read-only data.

QString Manager::GetFont(elementCode code) const {
    auto it = elements_.find(code);
    return it == elements_.end() ? QString::fromLatin1("Arial") : it->second.family;
}

DefaultManager::DefaultManager() {
    // Captions, menus and scales in Tahoma; tool tips and status texts in Arial; the
    // two fixed-width elements (price tables) in Courier New.
    for (int code = ELEMENT_FIRST; code <= ELEMENT_LAST; ++code) {
        QString family = QString::fromLatin1("Tahoma");
        if (code >= 14 && code <= 19) family = QString::fromLatin1("Arial");
        if (code >= 20) family = QString::fromLatin1("Courier New");
        elements_[elementCode(code)] = Element{family, 8, 50};
    }
}

ChinaManager::ChinaManager() {
    for (int code = ELEMENT_FIRST; code <= ELEMENT_LAST; ++code)
        elements_[elementCode(code)] = Element{QString::fromLatin1("SimSun"), 9, 50};
}

Manager* CreateManager(const QString& language) {
    if (language == QLatin1String("Chinese (Simplified)")) return new ChinaManager;
    return new DefaultManager;
}

}  // namespace font
