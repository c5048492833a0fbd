// Property pages: the records through which an object of the module shows its settings in
// the terminal's property dialog and takes the edited values back.
//
// A page (PROPERTY_PAGE) holds groups (PROPERTY_GROUP); each group lists its entries
// (PROPERTY). Every entry points at a value buffer whose layout depends on the entry's type
// (the PROPERTY_VALUE_* records below). The module owns the page, its groups, entries and
// value buffers; the dialog reads them, writes edited values into the value buffers in
// place and announces the change with 10054 (PROPERTY_CHANGE, interface_records.h).
//
// Messages (abi/messages.h):
//   10052  module -> main window interface: show a page in the property dialog
//          (p1 PROPERTY_PAGE*, p2 the chart widget the page belongs to)
//   10053  module -> host core: values of a page changed in the module; an open dialog of
//          that page shows them again (p1 PROPERTY_PAGE*, p2 the result of the update)
//   10054  host -> chart type interface: a page was applied (p1 PROPERTY_CHANGE)
//
// Strings are UTF-16, at most 255 units plus the terminator in 256-unit fields. A reader
// never trusts the terminator: it stops at the field's end.
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

enum { PROPERTY_NAME_UNITS = 256 };  // name and description fields: 255 units and a NUL

// PROPERTY::type: which value buffer the entry points at and which editor shows it.
enum PROPERTY_TYPE {
    PROPERTY_TYPE_INT = 1,        // PROPERTY_VALUE_INT
    PROPERTY_TYPE_DOUBLE = 2,     // PROPERTY_VALUE_DOUBLE
    PROPERTY_TYPE_BOOL = 3,       // one byte, 0 or 1
    PROPERTY_TYPE_TEXT = 4,       // PROPERTY_VALUE_TEXT
    PROPERTY_TYPE_COLOR = 5,      // std::uint32_t 0x00RRGGBB
    PROPERTY_TYPE_FONT = 6,       // PROPERTY_VALUE_FONT
    PROPERTY_TYPE_LIST = 7,       // PROPERTY_VALUE_LIST
    PROPERTY_TYPE_DATETIME = 8,   // std::int32_t seconds since 1970 (UTC)
    PROPERTY_TYPE_WIDGET = 9      // PROPERTY_VALUE_WIDGET
};

// PROPERTY::flag bits.
enum { PROPERTY_FLAG_READONLY = 1 };  // shown but not editable

// An integer and the range the dialog allows. 12 bytes.
struct PROPERTY_VALUE_INT {
    std::int32_t value;
    std::int32_t minimum;
    std::int32_t maximum;
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_INT) == 12);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_INT) == 12);

// A floating-point value: the value first, then how the dialog edits it. 36 bytes.
struct PROPERTY_VALUE_DOUBLE {
    double value;
    double minimum;                // 0 for an unsigned entry, -1e308 for a signed one
    double maximum;                // 1e308
    std::int32_t decimals;         // digits after the point the editor shows
    std::int32_t allowNegative;    // 1: the value may be negative (minimum -1e308)
    std::int32_t readOnly;         // 1: shown but not editable
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_DOUBLE) == 36);
PF_LAYOUT32(offsetof(PROPERTY_VALUE_DOUBLE, decimals) == 24);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_DOUBLE) == 36);

enum { PROPERTY_TEXT_UNITS = 1024 };
// A text of at most 1024 units, NUL-terminated when shorter: a text of 1024 units fills the
// field and has no terminator, so a reader stops at the field's end. 2048 bytes.
struct PROPERTY_VALUE_TEXT {
    coreWChar text[PROPERTY_TEXT_UNITS];
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_TEXT) == 2048);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_TEXT) == 2048);

// A font: family, point size and four style flags (0 or 1). 2056 bytes.
struct PROPERTY_VALUE_FONT {
    coreWChar family[PROPERTY_TEXT_UNITS];  // at most 1023 units and a NUL
    std::int32_t pointSize;
    std::uint8_t bold;
    std::uint8_t italic;
    std::uint8_t underline;
    std::uint8_t strikeOut;
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_FONT) == 2056);
PF_LAYOUT32(offsetof(PROPERTY_VALUE_FONT, pointSize) == 2048);
PF_LAYOUT32(offsetof(PROPERTY_VALUE_FONT, bold) == 2052);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_FONT) == 2056);

// One text of a list entry. 512 bytes.
struct PROPERTY_LIST_ITEM {
    coreWChar text[PROPERTY_NAME_UNITS];
};
PF_LAYOUT32(sizeof(PROPERTY_LIST_ITEM) == 512);
PF_LAYOUT64(sizeof(PROPERTY_LIST_ITEM) == 512);

// A choice among `count` texts. 12 bytes on the terminal.
struct PROPERTY_VALUE_LIST {
    std::int32_t count;            // texts at `items`
    std::int32_t selected;         // index of the chosen text, 0 to count - 1
    PROPERTY_LIST_ITEM* items;     // owned by the page
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_LIST) == 12);
PF_LAYOUT32(offsetof(PROPERTY_VALUE_LIST, items) == 8);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_LIST) == 16);

// A place for a widget of the dialog's own: the two values the module gave, and a word the
// dialog may use. 12 bytes.
struct PROPERTY_VALUE_WIDGET {
    std::int32_t first;
    std::int32_t second;
    std::int32_t reserved;
};
PF_LAYOUT32(sizeof(PROPERTY_VALUE_WIDGET) == 12);
PF_LAYOUT64(sizeof(PROPERTY_VALUE_WIDGET) == 12);

// The look of an element the terminal draws (a line of a series, a study's pen, a trade
// mark): its colour and its width or size in points. A colour entry of a page may be bound
// to the colour of such a record; the points stay the record owner's. 8 bytes.
struct coreColorPoints {
    std::uint32_t color;           // RGB in the low three bytes; an edit stores QColor::rgb() (alpha 0xFF)
    std::int32_t points;           // the pen's width or the mark's size, in points
};
PF_LAYOUT32(sizeof(coreColorPoints) == 8);
PF_LAYOUT32(offsetof(coreColorPoints, points) == 4);
PF_LAYOUT64(sizeof(coreColorPoints) == 8);

// One entry of a group.
struct PROPERTY {
    std::int32_t type;                         // PROPERTY_TYPE
    coreWChar name[PROPERTY_NAME_UNITS];       // what the dialog shows beside the editor
    coreWChar description[PROPERTY_NAME_UNITS];// a longer explanation (tool tip)
    std::int32_t group;                        // id of the group that holds the entry
    std::int32_t index;                        // the entry's position in its group
    void* value;                               // the value buffer; null: the entry has none
    std::int32_t flag;                         // PROPERTY_FLAG_* bits
};
PF_LAYOUT32(sizeof(PROPERTY) == 1044);
PF_LAYOUT32(offsetof(PROPERTY, description) == 516);
PF_LAYOUT32(offsetof(PROPERTY, group) == 1028);
PF_LAYOUT32(offsetof(PROPERTY, index) == 1032);
PF_LAYOUT32(offsetof(PROPERTY, value) == 1036);
PF_LAYOUT32(offsetof(PROPERTY, flag) == 1040);
PF_LAYOUT64(sizeof(PROPERTY) == 1048);

// The entries of a group.
struct LIST_PROPERTY {
    std::int32_t count;
    PROPERTY** items;              // `count` entries
};
PF_LAYOUT32(sizeof(LIST_PROPERTY) == 8);
PF_LAYOUT64(sizeof(LIST_PROPERTY) == 12);

struct PROPERTY_GROUP {
    coreWChar name[PROPERTY_NAME_UNITS];
    std::int32_t id;               // the group's position in its page
    LIST_PROPERTY list;
};
PF_LAYOUT32(sizeof(PROPERTY_GROUP) == 524);
PF_LAYOUT32(offsetof(PROPERTY_GROUP, list) == 516);
PF_LAYOUT64(sizeof(PROPERTY_GROUP) == 528);

// The object a page describes, as the terminal knows it.
struct CORE_OBJECT_SYSTEM {
    void* object;                  // the object's handle (a chart widget)
    void* system;                  // the interface that serves it (its chart type interface)
};
PF_LAYOUT32(sizeof(CORE_OBJECT_SYSTEM) == 8);
PF_LAYOUT64(sizeof(CORE_OBJECT_SYSTEM) == 16);

struct PROPERTY_PAGE {
    coreWChar title[PROPERTY_NAME_UNITS];      // the dialog's title
    coreWChar caption[PROPERTY_NAME_UNITS];    // the page's name (its tab)
    coreWChar description[PROPERTY_NAME_UNITS];// a line shown above the groups
    CORE_OBJECT_SYSTEM system;
    std::int32_t groupCount;
    PROPERTY_GROUP** groups;       // `groupCount` groups
};
PF_LAYOUT32(sizeof(PROPERTY_PAGE) == 1552);
PF_LAYOUT32(offsetof(PROPERTY_PAGE, system) == 1536);
PF_LAYOUT32(offsetof(PROPERTY_PAGE, groupCount) == 1544);
PF_LAYOUT64(sizeof(PROPERTY_PAGE) == 1564);

#pragma pack(pop)
