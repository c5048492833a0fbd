// Records of the host's undo stack.
//
// The module adds undoable steps: 3138 begins a record (the host gives it a work-data tree
// whose root the module writes its nodes under), 3139 commits it. When the user undoes, the
// host sends 3140 to the module with the record; the module rebuilds what the step took
// away and answers with 3141.
#pragma once

#include "abi/records/dpa_records.h"
#include "abi/records/layout.h"

#pragma pack(push, 1)

// Message 3138 (module -> host core): begin an undo record.
struct coreUndoBegin {
    coreWChar title[256];      // what the step was, UTF-16, at most 255 units, NUL-terminated
    void* hostHandle;          // the chart window's host handle
    void* widget;              // the chart widget the step belongs to
    coreSzNode root;           // out: the record's root node
    std::int32_t recordId;     // out: the record, for 3139; 0 when the host made none
};
PF_LAYOUT32(sizeof(coreUndoBegin) == 536);
PF_LAYOUT32(offsetof(coreUndoBegin, hostHandle) == 512);
PF_LAYOUT32(offsetof(coreUndoBegin, widget) == 516);
PF_LAYOUT32(offsetof(coreUndoBegin, root) == 520);
PF_LAYOUT32(offsetof(coreUndoBegin, recordId) == 532);
PF_LAYOUT64(sizeof(coreUndoBegin) == 544);

// Message 3140 (host -> module): undo a record. p1 is this record.
struct coreUndoStart {
    std::uint32_t document;    // the record's work-data document
    std::uint32_t document2;
    std::uint32_t node;        // the record's root node
    void* widget;              // the chart widget the record belongs to
    std::int32_t kind;         // the host's kind of record; 5 and 7 are the host's own
    std::int32_t recordId;
};
PF_LAYOUT32(sizeof(coreUndoStart) == 24);
PF_LAYOUT32(offsetof(coreUndoStart, widget) == 12);
PF_LAYOUT32(offsetof(coreUndoStart, kind) == 16);
PF_LAYOUT64(sizeof(coreUndoStart) == 28);
enum { CORE_UNDO_KIND_HOST5 = 5, CORE_UNDO_KIND_HOST7 = 7 };

// Message 3141 (module -> host core): the answer to 3140. p1 is this record, p2 the result
// of the undo (0 done).
struct coreUndoRefresh {
    std::uint32_t first;       // the record's first word (its document)
    std::uint32_t third;       // its third word (its root node)
    void* fourth;              // its fourth word (the widget)
};
PF_LAYOUT32(sizeof(coreUndoRefresh) == 12);
PF_LAYOUT64(sizeof(coreUndoRefresh) == 16);

#pragma pack(pop)

// Message 3139 (module -> host core): commit the record: p1 its recordId.
// Message 3142 (module -> host core): the undo rebuilt objects that need a refresh:
//   p1 the chart widget, p2 the number of objects rebuilt.
// Message 3147 (module -> host core): the index of a node among its parent's children:
//   p1 a coreSzNode of the node; the answer is the index, or -1 for an unknown node.
