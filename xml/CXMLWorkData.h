// A handle on one node of the host's work-data tree (the XML documents the host stores).
//
// The object caches the node's attributes (an ordered set, unique by name) and the list of
// its child nodes; everything else happens through host messages 3165 to 3170 (see
// abi/records/workdata_records.h for what each carries). Attributes written here reach the
// host only with writeParameters().
//
// Without a host callback every message is a no-op: createNode and the node searches give
// null, reads give their defaults, writes stay local. Nothing here throws.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <cstdint>
#include <set>
#include <vector>

#include "abi/PFChartModuleAbi.h"
#include "abi/records.h"
#include "xml/CoreSzItem.h"

class CXMLWorkData {
public:
    // A child node of this node: its name and host handle, in the host's order.
    struct ChildEntry {
        QString name;
        void* node;
    };

    // The largest entry count whose 781-byte records fit in 32 bits; a larger count (or one
    // below 1) reads nothing.
    static const int kMaxEntries = 5499317;
    // Value lengths the host reports beyond this many 16-bit units are refused.
    static const int kMaxValueUnits = 1048576;
    // What the 3170 slot holds until the host writes it.
    static constexpr std::int32_t kCountUnwritten = -1;

    // Binds to `node` of `document` and reads its parameters. `context` is the target of
    // every message sent through `callback`.
    CXMLWorkData(void* context, void* document, void* node, HostCallback callback);
    // Binds to the root element `name` of a document the host opened (3163): the document
    // handle addresses the document itself, whose only child is the root element. The root
    // is looked up by name and created (3166) when the document has no element yet. A
    // document whose root has another name leaves the object unbound (isValid() false).
    CXMLWorkData(void* context, void* document, const char* name, HostCallback callback);
    ~CXMLWorkData();
    CXMLWorkData(const CXMLWorkData&) = delete;
    CXMLWorkData& operator=(const CXMLWorkData&) = delete;

    // Bound to a host node.
    bool isValid() const { return node_ != nullptr; }
    void* document() const { return document_; }
    void* node() const { return node_; }
    // Copies the document handles and this node's handle into `node`.
    void fillNodeData(coreSzNode& node) const;

    // Navigation. Every returned object is new and owned by the caller.
    CXMLWorkData* createNode(const char* name, int flag = 0);
    CXMLWorkData* getFirstNode(const char* name);
    CXMLWorkData* getNextNode();
    CXMLWorkData* getNode();
    // Removes the node's attributes and children in the host (3165) and in the cache.
    int clearNode();

    // Host exchange of the node's entries.
    // 3170: the node's entry count, which the host writes into the slot (preset to
    // kCountUnwritten) or, leaving the slot alone, answers as the callback's result.
    int getCountParamsInTag();
    // Replaces the cache with the host's entries; returns how many were read.
    int readParameters();
    // Sends the attribute set (3168); returns the host's answer (1 without a host).
    int writeParameters();

    const std::set<CCoreSzItem>& attributes() const { return attrs_; }
    int attributeCount() const { return static_cast<int>(attrs_.size()); }
    const std::vector<ChildEntry>& children() const { return children_; }
    bool hasAttribute(const char* name) const { return FindAttr(name) != nullptr; }

    // Typed attributes. A read of an absent name gives `defaultValue`; a write replaces the
    // value of an existing name or adds it.
    void writeInteger(const char* name, int value);
    int readInteger(const char* name, int defaultValue = 0) const;
    void writeInt64(const char* name, qint64 value);
    qint64 readInt64(const char* name, qint64 defaultValue = 0) const;
    void writeBool(const char* name, bool value);
    bool readBool(const char* name, bool defaultValue = false) const;
    void writeFloat(const char* name, float value, int precision = 8);
    float readFloat(const char* name, float defaultValue = 0) const;
    void writeDouble(const char* name, double value, int precision = 17);
    double readDouble(const char* name, double defaultValue = 0) const;

    void writeString(const char* name, const QString& value);
    // An 8-bit local string.
    void writeString(const char* name, const char* value);
    // A zero-terminated 16-bit string, at most `maxUnits` units when that is not negative.
    void writeString(const char* name, const coreWChar* value, int maxUnits = -1);
    QString readString(const char* name, const QString& defaultValue = QString()) const;
    // Copies at most size - 1 bytes (8-bit local) or units and always terminates; nothing
    // is written for a size below 1. True when the name was present.
    bool readString(const char* name, char* buffer, int size, const char* defaultValue = "") const;
    bool readString(const char* name, coreWChar* buffer, int size,
                    const coreWChar* defaultValue = nullptr) const;

    // The colour's QColor::rgb() (alpha forced to 255) as a signed decimal.
    void writeColor(const char* name, const QColor& value);
    QColor readColor(const char* name, const QColor& defaultValue) const;
    // "r,g,b" with three decimals from 0 to 255 gives that colour, opaque; anything else
    // gives the default.
    QColor readColorString(const char* name, const QColor& defaultValue) const;

    // A child node `name` with "Family", "Size", "Bold", "Italic", "Strikeout", "Underline".
    // Writing reuses the child when it exists, else creates it, and writes its parameters.
    void writeFont(const char* name, const QFont& value);
    QFont readFont(const char* name, const QFont& defaultValue) const;

    // "FInterface", "FProvider", "FName" from the head-node description of a host data
    // object (3012). Nothing is written when the host does not answer 0.
    void writeHeadNode(void* handle);
    // The three strings, 255 bytes each (empty when absent); null buffers are skipped.
    void readHeadNode(char* interfaceName, char* provider, char* name) const;

    // The origin of a data point array: its instrument, second name, period and creation
    // value, and the head node of the data object that owns it.
    void writeDpaInfo(const fxDataPointArray* dpa);
    // Fills `info` (zeroed first); `found`, when given, receives 1 when the node holds a
    // description and 0 otherwise. Returns the same as a bool.
    bool readDpaInfo(coreDemandsIndicator* info, int* found = nullptr) const;

private:
    void Init(void* context, void* document, HostCallback callback);
    void BindRoot(const char* name);
    int Send(unsigned int message, std::intptr_t p1, std::intptr_t p2) const;
    const CCoreSzItem* FindAttr(const char* name) const;
    const QString* Value(const char* name) const;
    void SetAttr(const char* name, const QString& value);
    void* FindChild(const QString& name, std::size_t from, std::size_t* at) const;
    CXMLWorkData* OpenChild(void* node) const;

    HostCallback callback_ = nullptr;
    void* context_ = nullptr;
    void* document_ = nullptr;
    void* document2_ = nullptr;
    void* node_ = nullptr;
    std::vector<ChildEntry> children_;
    std::set<CCoreSzItem> attrs_;
    QString searchName_;
    std::size_t searchPos_ = 0;
};
