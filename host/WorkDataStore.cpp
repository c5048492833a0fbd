#include "host/WorkDataStore.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "host/workdata/WorkTree.h"

namespace host {

using workdata::Node;

namespace {

// Records of 781 bytes: more than this many would not fit a 32-bit address space.
const std::int32_t kMaxEntries = 5499317;
// Longest value read from a module buffer, in 16-bit units.
const std::int32_t kMaxValueUnits = 1048576;
const std::size_t kNameBytes = 255;

template <class T>
T* record(std::intptr_t p) {
    return reinterpret_cast<T*>(p);
}

std::string str(const QString& s) { return s.toStdString(); }

std::string hex(const void* p) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%#llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(p)));
    return buffer;
}

QString localName(const char* field, std::size_t max) {
    return QString::fromLocal8Bit(field, static_cast<int>(strnlen(field, max)));
}

// A module buffer of 16-bit units up to its terminator or `max` units. The buffer need not
// be aligned: units are copied out one by one.
QString readUnits(const coreWChar* buffer, std::int32_t max) {
    QString out;
    for (std::int32_t i = 0; i < max; ++i) {
        coreWChar unit;
        std::memcpy(&unit, buffer + i, sizeof unit);
        if (unit == 0) break;
        out += QChar(unit);
    }
    return out;
}

// Writes `value` into a module buffer of `capacity` units, cut to fit and terminated.
void writeUnits(coreWChar* buffer, std::int32_t capacity, const QString& value) {
    if (!buffer || capacity < 1) return;
    const std::int32_t n = std::min<std::int32_t>(value.size(), capacity - 1);
    std::memcpy(buffer, value.utf16(), n * sizeof(coreWChar));
    const coreWChar zero = 0;
    std::memcpy(buffer + n, &zero, sizeof zero);
}

// The parameter list of 3167 to 3169, or null when the pointer or its count is unusable.
coreSzParamList* paramList(std::intptr_t p2) {
    coreSzParamList* list = record<coreSzParamList>(p2);
    if (!list) return nullptr;
    const std::int32_t count = list->count;
    if (count < 0 || count > kMaxEntries) return nullptr;
    if (count > 0 && !list->params) return nullptr;
    return list;
}

// Entry `i` of a node: attributes first, then child elements.
struct Entry {
    bool child;
    const QString* name;
    const QString* value;
    void* handle;
};

Entry entryAt(const Node& node, std::size_t i) {
    static const QString empty;
    if (i < node.attributes.size())
        return Entry{false, &node.attributes[i].first, &node.attributes[i].second, node.handle};
    const Node& c = *node.children[i - node.attributes.size()];
    return Entry{true, &c.name, &empty, c.handle};
}

std::size_t entryCount(const Node& node) { return node.attributes.size() + node.children.size(); }

}  // namespace

struct WorkDataStore::Document {
    QString path;
    Node top;  // the document node; its child is the root element
    bool changed = false;  // since it was read or last saved
};

WorkDataStore::WorkDataStore(Host& host) : host_(host) {
    countAsResult_ = qEnvironmentVariableIntValue("PFHOST_WD_COUNT_AS_RESULT") != 0;
    host_.on(MSG_WD_OPEN, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return onOpen(p1, d);
    });
    host_.on(MSG_WD_SAVE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return onSave(p1, d);
    });
    host_.on(MSG_WD_CLEAR_NODE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return onClear(p1, d);
    });
    host_.on(MSG_WD_CREATE_NODE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return onCreate(p1, d);
    });
    host_.on(MSG_WD_PARAM_COUNT, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return onCount(p1, p2, d);
    });
    host_.on(MSG_WD_PARAM_LENGTHS, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return onLengths(p1, p2, d);
    });
    host_.on(MSG_WD_READ_PARAMS, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return onRead(p1, p2, d);
    });
    host_.on(MSG_WD_WRITE_PARAMS, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return onWrite(p1, p2, d);
    });
}

WorkDataStore::~WorkDataStore() = default;

// ---------------------------------------------------------------------------------------
// Handles

Node* WorkDataStore::find(void* handle) const {
    auto it = nodes_.find(handle);
    return it == nodes_.end() ? nullptr : it->second;
}

Node* WorkDataStore::find(std::uint32_t handle) const {
    return handle ? find(reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle))) : nullptr;
}

Node* WorkDataStore::findNode(const coreSzNode* record) const {
    return record ? find(record->node) : nullptr;
}

WorkDataStore::Document* WorkDataStore::documentOf(const Node* node) const {
    while (node && node->parent) node = node->parent;
    for (const auto& d : documents_)
        if (&d->top == node) return d.get();
    return nullptr;
}

void WorkDataStore::touch(const Node* node) {
    if (Document* doc = documentOf(node)) doc->changed = true;
}

void WorkDataStore::adopt(Node& node) {
    node.walk([this](Node& n) {
        n.handle = host_.newHandle();
        nodes_[n.handle] = &n;
    });
}

void WorkDataStore::forget(Node& node) {
    node.walk([this](Node& n) { nodes_.erase(n.handle); });
}

// ---------------------------------------------------------------------------------------
// The emulator's own operations

void* WorkDataStore::open(const QString& path, QString* error) {
    if (path.isEmpty()) {
        if (error) *error = QStringLiteral("empty path");
        return nullptr;
    }
    const QFileInfo info(path);
    const QString key = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    for (const auto& d : documents_)
        if (d->path == key) return d->top.handle;

    std::unique_ptr<Document> doc(new Document);
    doc->path = key;
    if (info.exists()) {
        QFile file(key);
        if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
            if (error) *error = QStringLiteral("cannot read %1").arg(key);
            return nullptr;
        }
        QString why;
        if (!workdata::parse(file.readAll(), doc->top, &why)) {
            if (error) *error = QStringLiteral("%1: %2").arg(key, why);
            return nullptr;
        }
    }
    adopt(doc->top);
    documents_.push_back(std::move(doc));
    return documents_.back()->top.handle;
}

bool WorkDataStore::save(void* handle, QString* error) {
    Node* node = find(handle);
    Document* doc = documentOf(node);
    if (!doc) {
        if (error) *error = QStringLiteral("unknown node");
        return false;
    }
    if (doc->path.isEmpty()) {
        if (error) *error = QStringLiteral("a document held in memory has no file");
        return false;
    }
    if (doc->top.children.empty()) {
        if (error) *error = QStringLiteral("%1: no root element to save").arg(doc->path);
        return false;
    }
    if (!doc->changed) return true;  // a document only read (a skin) is left as it is
    QSaveFile file(doc->path);
    if (!file.open(QIODevice::WriteOnly) || file.write(workdata::serialize(doc->top)) < 0 ||
        !file.commit()) {
        if (error) *error = QStringLiteral("%1: %2").arg(doc->path, file.errorString());
        return false;
    }
    doc->changed = false;
    return true;
}

void* WorkDataStore::createDocument(const QString& rootName) {
    if (!workdata::isXmlName(rootName)) return nullptr;
    std::unique_ptr<Document> doc(new Document);
    doc->top.addChild(rootName);
    adopt(doc->top);
    documents_.push_back(std::move(doc));
    return documents_.back()->top.handle;
}

bool WorkDataStore::closeDocument(void* document) {
    const Node* top = find(document);
    if (!top || top->parent) return false;
    for (auto it = documents_.begin(); it != documents_.end(); ++it) {
        if (&(*it)->top != top) continue;
        forget((*it)->top);
        documents_.erase(it);
        return true;
    }
    return false;
}

void* WorkDataStore::root(void* document) const {
    const Node* top = find(document);
    return top && !top->parent && !top->children.empty() ? top->children.front()->handle : nullptr;
}

void* WorkDataStore::child(void* handle, const QString& name) const {
    if (const Node* n = find(handle))
        for (const auto& c : n->children)
            if (c->name == name) return c->handle;
    return nullptr;
}

void* WorkDataStore::createChild(void* parent, const QString& name) {
    Node* n = find(parent);
    if (!n || !workdata::isXmlName(name) || n->depth >= workdata::kMaxDepth) return nullptr;
    if (!n->parent && !n->children.empty()) return nullptr;  // one root element per document
    Node* c = n->addChild(name);
    adopt(*c);
    touch(n);
    return c->handle;
}

bool WorkDataStore::clear(void* handle) {
    Node* n = find(handle);
    if (!n) return false;
    for (auto& c : n->children) forget(*c);
    n->children.clear();
    n->attributes.clear();
    touch(n);
    return true;
}

bool WorkDataStore::setAttribute(void* handle, const QString& name, const QString& value) {
    Node* n = find(handle);
    if (!n || !n->parent || !workdata::isXmlName(name) || name == QLatin1String("xmlns")) return false;
    n->setAttribute(name, value);
    touch(n);
    return true;
}

bool WorkDataStore::removeAttribute(void* handle, const QString& name) {
    Node* n = find(handle);
    if (!n) return false;
    auto& attrs = n->attributes;
    const auto it = std::find_if(attrs.begin(), attrs.end(),
                                 [&name](const std::pair<QString, QString>& a) { return a.first == name; });
    if (it == attrs.end()) return false;
    attrs.erase(it);
    touch(n);
    return true;
}

int WorkDataStore::childIndex(void* handle) const {
    const Node* n = find(handle);
    if (!n || !n->parent) return -1;
    const auto& siblings = n->parent->children;
    for (std::size_t i = 0; i < siblings.size(); ++i)
        if (siblings[i].get() == n) return static_cast<int>(i);
    return -1;
}

bool WorkDataStore::describe(void* handle, coreSzNode* out) const {
    const Node* n = find(handle);
    const Document* doc = documentOf(n);
    if (!doc || !out) return false;
    const auto word = [](void* h) {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(h));
    };
    out->document = word(doc->top.handle);
    out->document2 = word(doc->top.handle);
    out->node = word(n->handle);
    return true;
}

const Node* WorkDataStore::node(void* handle) const { return find(handle); }

QByteArray WorkDataStore::text(void* handle) const {
    const Document* doc = documentOf(find(handle));
    return doc ? workdata::serialize(doc->top) : QByteArray();
}

QString WorkDataStore::path(void* handle) const {
    const Document* doc = documentOf(find(handle));
    return doc ? doc->path : QString();
}

// ---------------------------------------------------------------------------------------
// Messages

int WorkDataStore::onOpen(std::intptr_t p1, std::string& detail) {
    coreOpenWorkData* request = record<coreOpenWorkData>(p1);
    if (!request) return 1;
    const QString path = readUnits(request->path, sizeof request->path / sizeof(coreWChar));
    QString error;
    void* handle = open(path, &error);
    request->handle = handle;
    detail = "open " + str(path) + " -> " + (handle ? hex(handle) : str(error));
    return handle ? 0 : 1;
}

int WorkDataStore::onSave(std::intptr_t p1, std::string& detail) {
    const coreSzNode* r = record<coreSzNode>(p1);
    Node* n = findNode(r);
    QString error;
    const bool ok = n && save(n->handle, &error);
    detail = "save " + (ok ? str(path(n->handle)) : n ? str(error) : std::string("unknown node"));
    return ok ? 0 : 1;
}

int WorkDataStore::onClear(std::intptr_t p1, std::string& detail) {
    Node* n = findNode(record<coreSzNode>(p1));
    if (!n || !clear(n->handle)) return 1;
    detail = "clear " + hex(n->handle);
    return 0;
}

int WorkDataStore::onCreate(std::intptr_t p1, std::string& detail) {
    coreCreateNode* r = record<coreCreateNode>(p1);
    if (!r) return 1;
    const QString name = localName(r->name, kNameBytes);
    void* parent = r->parent;
    void* handle = createChild(parent, name);
    r->result = handle;
    detail = "create " + str(name) + " under " + hex(parent) + " -> " + hex(handle);
    return handle ? 0 : 1;
}

int WorkDataStore::onCount(std::intptr_t p1, std::intptr_t p2, std::string& detail) {
    const Node* n = findNode(record<coreSzNode>(p1));
    std::int32_t* count = record<std::int32_t>(p2);
    if (countAsResult_) {
        // The count is the answer; the slot is not touched. An unknown node has none.
        const int value = n ? static_cast<int>(entryCount(*n)) : 0;
        detail = "count " + (n ? hex(n->handle) : std::string("?")) + " = " + std::to_string(value) + " (answered)";
        return value;
    }
    if (!n || !count) return 1;
    const std::int32_t value = static_cast<std::int32_t>(entryCount(*n));
    std::memcpy(count, &value, sizeof value);
    detail = "count " + hex(n->handle) + " = " + std::to_string(value);
    return 0;
}

int WorkDataStore::onLengths(std::intptr_t p1, std::intptr_t p2, std::string& detail) {
    const Node* n = findNode(record<coreSzNode>(p1));
    coreSzParamList* list = paramList(p2);
    if (!n || !list) return 1;
    const std::size_t count = std::min<std::size_t>(list->count, entryCount(*n));
    for (std::size_t i = 0; i < count; ++i) {
        const Entry e = entryAt(*n, i);
        coreSzParam& p = list->params[i];
        p.valueLength = e.value->size() + 1;
        p.kind = e.child ? CORE_SZ_PARAM_CHILD : 0;
        p.node = e.handle;
    }
    detail = "lengths " + hex(n->handle) + " x" + std::to_string(count);
    return 0;
}

int WorkDataStore::onRead(std::intptr_t p1, std::intptr_t p2, std::string& detail) {
    const Node* n = findNode(record<coreSzNode>(p1));
    coreSzParamList* list = paramList(p2);
    if (!n || !list) return 1;
    const std::size_t available = entryCount(*n);
    for (std::int32_t i = 0; i < list->count; ++i) {
        coreSzParam& p = list->params[i];
        std::memset(p.name, 0, sizeof p.name);
        if (static_cast<std::size_t>(i) >= available) {
            // Asked for more than the node holds: an empty record the module skips.
            p.kind = 0;
            p.node = nullptr;
            writeUnits(p.value, p.valueLength, QString());
            continue;
        }
        const Entry e = entryAt(*n, i);
        const QByteArray name = e.name->toLocal8Bit();
        std::memcpy(p.name, name.constData(), std::min<std::size_t>(name.size(), sizeof p.name));
        writeUnits(p.value, p.valueLength, *e.value);
        p.kind = e.child ? CORE_SZ_PARAM_CHILD : 0;
        p.node = e.handle;
    }
    detail = "read " + hex(n->handle) + " x" + std::to_string(list->count);
    return 0;
}

int WorkDataStore::onWrite(std::intptr_t p1, std::intptr_t p2, std::string& detail) {
    Node* n = findNode(record<coreSzNode>(p1));
    coreSzParamList* list = paramList(p2);
    if (!n || !list) return 1;
    if (!n->parent) return 1;  // the document node has no attributes
    int refused = 0;
    int written = 0;
    for (std::int32_t i = 0; i < list->count; ++i) {
        const coreSzParam& p = list->params[i];
        if (p.kind == CORE_SZ_PARAM_CHILD) continue;
        const QString name = localName(p.name, sizeof p.name);
        if (!workdata::isXmlName(name) || name == QLatin1String("xmlns")) {
            ++refused;
            continue;
        }
        const std::int32_t length = p.valueLength;
        const coreWChar* value = p.value;
        n->setAttribute(name, value && length > 0 ? readUnits(value, std::min(length, kMaxValueUnits))
                                                  : QString());
        ++written;
    }
    if (written) touch(n);
    detail = "write " + hex(n->handle) + " " + std::to_string(written) + " attributes";
    if (refused) detail += ", refused " + std::to_string(refused);
    return refused ? 1 : 0;
}

}  // namespace host
