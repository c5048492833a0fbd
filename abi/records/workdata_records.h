// Records of the host's work-data store (XML documents held by the host).
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

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

// Message 3166: create a child node; the host writes the new node's handle (0 = failure).
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

#pragma pack(pop)
