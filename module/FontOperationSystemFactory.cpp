#include "module/FontOperationSystemFactory.h"

namespace font {

FontOperationSystemFactory& FontOperationSystemFactory::Instance() {
    static FontOperationSystemFactory factory;
    return factory;
}

void FontOperationSystemFactory::Insert(const QFont& from, const QFont& to) {
    replacements_[KeyOf(from)] = std::make_pair(to.family(), to.pointSize());
}

QFont FontOperationSystemFactory::GetFont(const QFont& font) const {
    auto it = replacements_.find(KeyOf(font));
    if (it == replacements_.end()) return font;
    QFont replaced(font);
    replaced.setFamily(it->second.first);
    if (it->second.second > 0) replaced.setPointSize(it->second.second);
    return replaced;
}

QFont GetOperationSystemFont(const QFont& font) { return FontOperationSystemFactory::Instance().GetFont(font); }

}  // namespace font
