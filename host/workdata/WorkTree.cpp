#include "host/workdata/WorkTree.h"

#include <QDomDocument>
#include <QDomNamedNodeMap>
#include <algorithm>

namespace host {
namespace workdata {

const QString* Node::attribute(const QString& key) const {
    for (const auto& a : attributes)
        if (a.first == key) return &a.second;
    return nullptr;
}

void Node::setAttribute(const QString& key, const QString& value) {
    for (auto& a : attributes) {
        if (a.first == key) {
            a.second = value;
            return;
        }
    }
    attributes.emplace_back(key, value);
}

Node* Node::addChild(const QString& childName) {
    std::unique_ptr<Node> child(new Node);
    child->name = childName;
    child->parent = this;
    child->depth = depth + 1;
    children.push_back(std::move(child));
    return children.back().get();
}

// ---------------------------------------------------------------------------------------
// Names

namespace {

// The name characters of XML 1.0 (fifth edition) that lie in the Basic Multilingual Plane.
bool inNameStartRanges(ushort c) {
    return (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF) ||
           (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) ||
           (c >= 0x200C && c <= 0x200D) || (c >= 0x2070 && c <= 0x218F) ||
           (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF) ||
           (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD);
}

bool inNameRanges(ushort c) {
    return inNameStartRanges(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) ||
           (c >= 0x203F && c <= 0x2040);
}

bool isAsciiLetter(ushort c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Beyond ASCII a character must also be a letter (or, after the first place, a digit, a
// mark or a modifier letter), so that Qt's own reader takes the name back.
bool isNameStart(QChar ch) {
    const ushort c = ch.unicode();
    if (c < 0x80) return isAsciiLetter(c) || c == '_';
    if (!inNameStartRanges(c)) return false;
    switch (ch.category()) {
    case QChar::Letter_Lowercase:
    case QChar::Letter_Uppercase:
    case QChar::Letter_Other:
    case QChar::Letter_Titlecase:
    case QChar::Number_Letter:
        return true;
    default:
        return false;
    }
}

bool isNameChar(QChar ch) {
    const ushort c = ch.unicode();
    if (c < 0x80) return isAsciiLetter(c) || c == '_' || c == '-' || c == '.' || (c >= '0' && c <= '9');
    if (isNameStart(ch)) return true;
    if (!inNameRanges(c)) return false;
    switch (ch.category()) {
    case QChar::Number_DecimalDigit:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Mark_NonSpacing:
    case QChar::Letter_Modifier:
        return true;
    default:
        return false;
    }
}

}  // namespace

bool isXmlName(const QString& name) {
    if (name.isEmpty() || !isNameStart(name[0])) return false;
    return std::all_of(name.begin() + 1, name.end(), isNameChar);
}

// ---------------------------------------------------------------------------------------
// Characters

namespace {

bool isXmlChar(ushort c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c != 0xFFFE && c != 0xFFFF);
}

}  // namespace

QString xmlText(const QString& text) {
    QString out = text;
    for (int i = 0; i < text.size(); ++i) {
        const QChar ch = text.at(i);
        if (ch.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (ch.isSurrogate() || !isXmlChar(ch.unicode()))
            out[i] = QChar(QChar::ReplacementCharacter);
    }
    return out;
}

// ---------------------------------------------------------------------------------------
// Reading

namespace {

bool convert(const QDomElement& from, Node& to, QString* error) {
    if (to.depth > kMaxDepth) {
        if (error) *error = QStringLiteral("document nested deeper than %1 levels").arg(kMaxDepth);
        return false;
    }
    const QDomNamedNodeMap attrs = from.attributes();
    for (int i = 0; i < attrs.count(); ++i) {
        const QDomNode a = attrs.item(i);
        // Qt's reader lets through characters XML forbids (a NUL, for one): keep only
        // what the file could legally have said.
        to.attributes.emplace_back(a.nodeName(), xmlText(a.nodeValue()));
    }
    std::sort(to.attributes.begin(), to.attributes.end());
    for (QDomElement c = from.firstChildElement(); !c.isNull(); c = c.nextSiblingElement())
        if (!convert(c, *to.addChild(c.tagName()), error)) return false;
    return true;
}

}  // namespace

bool parse(const QByteArray& bytes, Node& top, QString* error) {
    top.children.clear();
    top.attributes.clear();
    QDomDocument dom;
    QString message;
    int line = 0;
    int column = 0;
    if (!dom.setContent(bytes, false, &message, &line, &column)) {
        if (error) *error = QStringLiteral("line %1, column %2: %3").arg(line).arg(column).arg(message);
        return false;
    }
    const QDomElement root = dom.documentElement();
    if (root.isNull()) {
        if (error) *error = QStringLiteral("no root element");
        return false;
    }
    if (!convert(root, *top.addChild(root.tagName()), error)) {
        top.children.clear();
        return false;
    }
    return true;
}

// ---------------------------------------------------------------------------------------
// Writing

namespace {

// Markup and the whitespace a parser would normalise are written as references.
QString escape(const QString& text) {
    const QString clean = xmlText(text);
    QString out;
    out.reserve(clean.size() + 8);
    for (const QChar ch : clean) {
        const ushort c = ch.unicode();
        if (c == '&') {
            out += QLatin1String("&amp;");
        } else if (c == '<') {
            out += QLatin1String("&lt;");
        } else if (c == '>') {
            out += QLatin1String("&gt;");
        } else if (c == '"') {
            out += QLatin1String("&quot;");
        } else if (c == 0x9) {
            out += QLatin1String("&#9;");
        } else if (c == 0xA) {
            out += QLatin1String("&#10;");
        } else if (c == 0xD) {
            out += QLatin1String("&#13;");
        } else {
            out += ch;
        }
    }
    return out;
}

void write(const Node& node, QString& out) {
    const QString indent(2 * (node.depth - 1), QLatin1Char(' '));
    out += indent + QLatin1Char('<') + node.name;
    for (const auto& a : node.attributes)
        out += QLatin1Char(' ') + a.first + QLatin1String("=\"") + escape(a.second) + QLatin1Char('"');
    if (node.children.empty()) {
        out += QLatin1String("/>\n");
        return;
    }
    out += QLatin1String(">\n");
    for (const auto& c : node.children) write(*c, out);
    out += indent + QLatin1String("</") + node.name + QLatin1String(">\n");
}

}  // namespace

QByteArray serialize(const Node& top) {
    QString out = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    for (const auto& c : top.children) write(*c, out);
    return out.toUtf8();
}

}  // namespace workdata
}  // namespace host
