#include "module/FontManager.h"

#include "module/ChinaManager.h"
#include "module/DefaultManager.h"

namespace font {

// Font families are built on the heap, never as QStringLiteral: the fonts made from them end
// up as keys of Qt's process-wide font cache, which outlives this library when the terminal
// unloads it, and a literal's text lives in the library's own read-only data.

QString Manager::GetFont(elementCode code) const {
    const Element* element = GetElement(code);
    return element ? element->family : QString::fromLatin1("Arial");
}

const Element* Manager::GetElement(elementCode code) const {
    auto it = elements_.find(code);
    return it == elements_.end() ? nullptr : &it->second;
}

Manager* CreateManager(const QString& language) {
    if (language == QLatin1String("Chinese (Simplified)")) return new ChinaManager;
    return new DefaultManager;
}

}  // namespace font
