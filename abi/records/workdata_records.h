// Records of the host's work-data store (XML documents held by the host).
#pragma once

#include "abi/records/dpa_records.h"
#include "abi/records/layout.h"

#pragma pack(push, 1)

// Messages 3165 to 3170 address a node with p1 = coreSzNode* (dpa_records.h); only its node
// word identifies the node. 3170 gives the node's entry count (attributes and child nodes
// together): terminals either write it to p2 = int32_t* (preset to -1) and answer 0, or
// leave p2 alone and answer the count itself. 3169, 3167 and 3168 take p2 = coreSzParamList*:
//   3169  the host writes each entry's valueLength (buffer length in 16-bit units, terminator
//         included), kind and node, for the first `count` entries in its order;
//   3167  the host fills name, value (at most valueLength units, always terminated), kind and
//         node of the same entries;
//   3168  the host stores every record whose kind is not 1 as an attribute (name, value) of
//         the node; `params` is null when count is 0.
// 3165 removes the node's attributes and children. Every other answer is 0, or 1 on failure.

// One attribute or child of a node (messages 3167 to 3170).
struct coreSzParam {
    char name[255];            // 8-bit local string, truncated to 255 bytes
    coreWChar* value;          // zero-terminated UTF-16 value buffer
    std::uint8_t unknown259[506];
    std::int32_t valueLength;  // buffer length in 16-bit units
    std::uint8_t unknown769[4];
    std::int32_t kind;         // 1: a child node; anything else: an attribute
    void* node;                // the node's handle (the child's, for a child entry)
};
PF_LAYOUT32(sizeof(coreSzParam) == 781);
PF_LAYOUT32(offsetof(coreSzParam, value) == 255);
PF_LAYOUT32(offsetof(coreSzParam, valueLength) == 765);
PF_LAYOUT32(offsetof(coreSzParam, kind) == 773);
PF_LAYOUT32(offsetof(coreSzParam, node) == 777);
PF_LAYOUT64(sizeof(coreSzParam) == 789);

enum { CORE_SZ_PARAM_CHILD = 1 };

// The parameter array of messages 3167 to 3169.
struct coreSzParamList {
    std::int32_t count;
    coreSzParam* params;
};
PF_LAYOUT32(sizeof(coreSzParamList) == 8);
PF_LAYOUT64(sizeof(coreSzParamList) == 12);

// Message 3166: create a child node; the host writes the new node's handle (0 = failure).
// The parent word alone identifies where the node goes; `flag` is carried for the host.
struct coreCreateNode {
    void* document;
    void* document2;
    void* parent;
    char name[256];
    std::int32_t flag;
    void* result;
};
PF_LAYOUT32(sizeof(coreCreateNode) == 276);
PF_LAYOUT64(sizeof(coreCreateNode) == 292);

// Message 3163: open a document by path; the host writes its handle.
struct coreOpenWorkData {
    coreWChar path[255];       // UTF-16, NUL-terminated, at most 254 units
    void* handle;
};
PF_LAYOUT32(sizeof(coreOpenWorkData) == 514);
PF_LAYOUT32(offsetof(coreOpenWorkData, handle) == 510);
PF_LAYOUT64(sizeof(coreOpenWorkData) == 518);

// Message 3012: the description of a data object's head node, three 255-byte strings.
struct coreHeadNodeInfo {
    char interfaceName[255];
    char provider[255];
    char name[255];
};
PF_LAYOUT32(sizeof(coreHeadNodeInfo) == 765);

// Where a data point array comes from: the head node of the host data object that made it
// (3012) and the instrument, period and creation value of the array. A chart layout keeps
// it so that a line can ask for the same data again after loading.
struct coreDemandsIndicator {
    coreHeadNodeInfo head;
    coreNameInstrument instrument;
};
PF_LAYOUT32(sizeof(coreDemandsIndicator) == 1539);
PF_LAYOUT64(sizeof(coreDemandsIndicator) == 1539);

#pragma pack(pop)
