// The emulated terminal's work-data store: XML documents on disk, opened by path, and
// their nodes addressed by handle (messages 3163 to 3170; the records and what each
// message carries are in abi/records/workdata_records.h).
//
// - 3163 opens a document: an existing file is parsed (a file that is not XML answers 1
//   and handle 0); a missing file gives an empty document, saved to that path by 3164. A
//   path already open gives the document already in memory.
// - A document's handle is also the handle of the document node, whose only child is the
//   root element. That is how the module binds to a root by name: it reads the document
//   node's entries, takes the child of that name, and creates it (3166 on the document
//   handle) when the document has no root yet. A second root is refused.
// - Entries of a node (3167, 3169, 3170) are its attributes, in the order first written,
//   then its child elements in document order. 3170 writes the count into its slot and
//   answers 0 (1 for an unknown node), or, like other terminals, answers the count itself
//   and leaves the slot alone (setCountAsResult, or PFHOST_WD_COUNT_AS_RESULT=1 in the
//   environment). 3168 sets the attributes it carries and
//   keeps the others; 3165 removes all attributes and children.
// - Handles come from Host::newHandle and are never reused: a handle the store did not
//   give out, or one of a node that was removed, answers 1 (and handle 0 where a handle is
//   written back). Every record pointer and count is checked before use.
// - 3164 writes the whole document holding the node, atomically, when it has changed since
//   it was read or last saved (so a document only read, such as a skin, is never rewritten);
//   a document without a root element answers 1. A path stays open for the store's life.
// - Documents can also live in memory only (createDocument): the undo stack keeps each
//   record's tree in one. 3164 answers 1 for them; closeDocument drops one with its handles.
//
// Node and attribute names must be XML names without ':'; a write or creation with another
// name is refused for that entry. 3012 (head node of a data object) belongs to the data core.
#pragma once

#include <QString>
#include <map>
#include <memory>
#include <vector>

#include "host/Host.h"

namespace host {

namespace workdata {
struct Node;
}

class WorkDataStore {
public:
    explicit WorkDataStore(Host& host);
    ~WorkDataStore();
    WorkDataStore(const WorkDataStore&) = delete;
    WorkDataStore& operator=(const WorkDataStore&) = delete;

    // The same operations for the emulator itself (and tests): each returns 0 or false on
    // failure and fills `error` when given.
    void* open(const QString& path, QString* error = nullptr);
    bool save(void* node, QString* error = nullptr);
    // A document held in memory only, with one root element named `rootName`: its handle,
    // or 0 for a name that is not an XML name. It has no path and is never written.
    void* createDocument(const QString& rootName);
    // Drops the document `document` (a document handle) with every node and handle in it;
    // false for anything else.
    bool closeDocument(void* document);
    // The root element of a document, or 0.
    void* root(void* document) const;
    // The first child of `node` named `name`, or 0.
    void* child(void* node, const QString& name) const;
    void* createChild(void* parent, const QString& name);
    // Removes the node's attributes and children (what 3165 does); false for no node.
    bool clear(void* node);
    // Sets one attribute of an element; false for no element or a name 3168 would refuse.
    bool setAttribute(void* node, const QString& name, const QString& value);
    // Removes one attribute of an element; false when it has none of that name.
    bool removeAttribute(void* node, const QString& name);
    // The node's position among its parent's children, 0 for the first; -1 for an unknown
    // node and for a document node, which has no parent.
    int childIndex(void* node) const;
    // The record the host hands the module for `node` (3020 and 3021).
    bool describe(void* node, coreSzNode* record) const;
    // The node of a handle, or null.
    const workdata::Node* node(void* handle) const;
    // The document holding `node` as the XML that 3164 would write.
    QByteArray text(void* node) const;
    QString path(void* node) const;
    // How 3170 answers: the count as the callback's result (true) or in the slot (false).
    void setCountAsResult(bool asResult) { countAsResult_ = asResult; }
    bool countAsResult() const { return countAsResult_; }

private:
    struct Document;

    workdata::Node* find(void* handle) const;
    workdata::Node* find(std::uint32_t handle) const;
    workdata::Node* findNode(const coreSzNode* record) const;
    Document* documentOf(const workdata::Node* node) const;
    void touch(const workdata::Node* node);
    void adopt(workdata::Node& node);
    void forget(workdata::Node& node);

    int onOpen(std::intptr_t p1, std::string& detail);
    int onSave(std::intptr_t p1, std::string& detail);
    int onClear(std::intptr_t p1, std::string& detail);
    int onCreate(std::intptr_t p1, std::string& detail);
    int onCount(std::intptr_t p1, std::intptr_t p2, std::string& detail);
    int onLengths(std::intptr_t p1, std::intptr_t p2, std::string& detail);
    int onRead(std::intptr_t p1, std::intptr_t p2, std::string& detail);
    int onWrite(std::intptr_t p1, std::intptr_t p2, std::string& detail);

    Host& host_;
    std::vector<std::unique_ptr<Document> > documents_;
    std::map<void*, workdata::Node*> nodes_;
    bool countAsResult_ = false;
};

}  // namespace host
