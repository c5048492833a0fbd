// Replacement fonts of the operating system: a font named by a family the system does not
// have (a skin or a saved layout written on another system names "Tahoma" at 8 points, say)
// can be mapped to one it has. A font matches a stored one when family and point size are
// equal; it then takes the replacement's family and, when that is above 0, its point size.
// Bold, italic and the other attributes of the font asked for are kept.
#pragma once

#include <QFont>
#include <QString>
#include <map>
#include <utility>

namespace font {

class FontOperationSystemFactory {
public:
    // The module's one factory.
    static FontOperationSystemFactory& Instance();

    // Stores `to` as the replacement of `from` (family and point size), replacing an
    // earlier one.
    void Insert(const QFont& from, const QFont& to);
    // `font`, or its replacement.
    QFont GetFont(const QFont& font) const;
    void Clear() { replacements_.clear(); }
    int Count() const { return static_cast<int>(replacements_.size()); }

private:
    using Key = std::pair<QString, int>;
    static Key KeyOf(const QFont& font) { return Key(font.family(), font.pointSize()); }

    std::map<Key, std::pair<QString, int> > replacements_;
};

// `font` as the module's factory replaces it.
QFont GetOperationSystemFont(const QFont& font);

}  // namespace font
