// The emulator's in-memory form of a work-data document: a tree of named nodes, each with
// attributes (name, text value) in the order they were first written and child nodes in
// document order. Documents are read with QtXml and written back as plain XML that any
// XML 1.0 parser accepts, so that attribute values come back exactly as they were stored.
#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <utility>
#include <vector>

namespace host {
namespace workdata {

// Nodes deeper than this (the document node is level 0) are neither read nor created.
const int kMaxDepth = 256;

struct Node {
    QString name;
    std::vector<std::pair<QString, QString> > attributes;
    std::vector<std::unique_ptr<Node> > children;
    Node* parent = nullptr;
    void* handle = nullptr;
    int depth = 0;

    const QString* attribute(const QString& key) const;
    // Replaces the value of an existing name, else appends the attribute.
    void setAttribute(const QString& key, const QString& value);
    Node* addChild(const QString& childName);
    // Calls `visit` for this node and every node below it, parents first.
    template <class F>
    void walk(F visit) {
        visit(*this);
        for (auto& c : children) c->walk(visit);
    }
};

// True for a name this store accepts for an element or attribute: an XML name without
// ':' (no namespaces), made of characters from the Basic Multilingual Plane.
bool isXmlName(const QString& name);

// `text` with every character XML 1.0 cannot carry (controls other than tab, line feed and
// carriage return, U+FFFE, U+FFFF, unpaired surrogates) replaced by U+FFFD.
QString xmlText(const QString& text);

// Parses `bytes` into the children of `top` (the document node, left empty on failure).
// Attributes of a node come sorted by name. Text, comments and processing instructions
// are not kept.
bool parse(const QByteArray& bytes, Node& top, QString* error = nullptr);

// The document below `top` as UTF-8 XML with an XML declaration, two spaces of indent per
// level. Values pass through xmlText first.
QByteArray serialize(const Node& top);

}  // namespace workdata
}  // namespace host
