// Records exchanged with a chart type interface (window components).
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

// Message 5001: the short name of a window component.
struct nameComponent {
    char name[500];            // NUL-terminated
    std::uint8_t zero[12];     // zeroed by the module
};
PF_LAYOUT32(sizeof(nameComponent) == 512);
PF_LAYOUT64(sizeof(nameComponent) == 512);

// Message 5022: the display name and icon of a window component.
struct fxwcNameCompUnicode {
    coreWChar name[500];       // at most 500 characters
    std::int32_t zero;         // set to 0
    void* iconBuffer;          // supplied by the host
    std::int32_t iconSize;     // capacity on input, PNG size on output
};
PF_LAYOUT32(sizeof(fxwcNameCompUnicode) == 1012);
PF_LAYOUT32(offsetof(fxwcNameCompUnicode, zero) == 1000);
PF_LAYOUT32(offsetof(fxwcNameCompUnicode, iconBuffer) == 1004);
PF_LAYOUT32(offsetof(fxwcNameCompUnicode, iconSize) == 1008);
PF_LAYOUT64(sizeof(fxwcNameCompUnicode) == 1016);

// Message 5003: create a chart window.
struct CREATEWINDOWCOMPONENT {
    std::intptr_t parentWindowId;
    std::intptr_t secondWindowId;
    void* widget;              // receives the new chart widget's address
};
PF_LAYOUT32(sizeof(CREATEWINDOWCOMPONENT) == 12);
PF_LAYOUT32(offsetof(CREATEWINDOWCOMPONENT, widget) == 8);
PF_LAYOUT64(sizeof(CREATEWINDOWCOMPONENT) == 24);

// Message 5007: one instrument dropped on a chart window (1296 bytes on the terminal).
// The module reads the fields named here and passes them to the chart window; the rest is
// the host's.
struct fxwcDropInstrument {
    void* baseHandle;          // the host data object of the instrument's own quotes; 3012 is
                               // asked about it and the chart's data source keeps it
    coreWChar name[255];       // UTF-16 instrument name, NUL-terminated
    char symbol[255];          // the symbol text, 8-bit, NUL-terminated ("USDCHF")
    char instrumentType[255];  // the instrument's kind, 8-bit ("Currency")
    char providerName[255];    // the name text: the data provider serving the instrument
    std::int32_t periodType;   // the period character ('I', 'D', 'W', 'M', 'Y'; 0: the
                               // instrument's own period)
    std::int32_t periodLength; // minutes for 'I', otherwise a count
    std::int32_t startTime;    // first time wanted, seconds since 1970; 0: the whole history
    std::uint8_t reserved;     // the host's
    std::int32_t style;        // the primitive style the line is drawn with
};
PF_LAYOUT32(sizeof(fxwcDropInstrument) == 1296);
PF_LAYOUT32(offsetof(fxwcDropInstrument, name) == 4);
PF_LAYOUT32(offsetof(fxwcDropInstrument, symbol) == 514);
PF_LAYOUT32(offsetof(fxwcDropInstrument, instrumentType) == 769);
PF_LAYOUT32(offsetof(fxwcDropInstrument, providerName) == 1024);
PF_LAYOUT32(offsetof(fxwcDropInstrument, periodType) == 1279);
PF_LAYOUT32(offsetof(fxwcDropInstrument, periodLength) == 1283);
PF_LAYOUT32(offsetof(fxwcDropInstrument, startTime) == 1287);
PF_LAYOUT32(offsetof(fxwcDropInstrument, style) == 1292);
PF_LAYOUT64(sizeof(fxwcDropInstrument) == 1300);

// Message 5007's second parameter: the dropped instruments.
struct fxwcDropList {
    std::int32_t count;
    fxwcDropInstrument* records;
};
PF_LAYOUT32(sizeof(fxwcDropList) == 8);
PF_LAYOUT64(sizeof(fxwcDropList) == 12);

// Message 3150 (module -> host core): a chart window is about to be destroyed.
struct fxwcWindowDestroyed {
    void* hostHandle;          // the window component's host handle kept by the widget
    void* widget;              // the chart widget's address, the host's handle of the window
};
PF_LAYOUT32(sizeof(fxwcWindowDestroyed) == 8);
PF_LAYOUT64(sizeof(fxwcWindowDestroyed) == 16);

// The module's two status-bar panes (time and price under the mouse). Registered with 3001
// in an interface request of kind "STATUSBAR", provider "TELVIX", name "telvixStatusBar",
// count 1, whose result word points at this record; the host writes the native window id
// of each pane's label when it has one. 7000 and 7001 (p1 this record, p2 the pane index
// 0 or 1) ask the host to write the id of that pane now; they answer 0 when it did.
struct coreStatusBarPanes {
    std::int32_t count;        // always 2
    std::int32_t windowId[2];  // native window ids of the two labels; 0 while unknown
};
PF_LAYOUT32(sizeof(coreStatusBarPanes) == 12);
PF_LAYOUT64(sizeof(coreStatusBarPanes) == 12);
enum { CORE_STATUS_PANE_TIME = 0, CORE_STATUS_PANE_PRICE = 1 };

// Messages 3020 (load) and 3021 (save) to a chart type interface: p1 is the chart widget,
// p2 a coreSzNode (dpa_records.h) naming the work-data node the chart is saved under.

// Message 3518 to a chart type interface: the panel of a chart window changed its status
// (its time frame). p1 names the window, p2 carries the two values handed to the window.
struct fxwcPanelTarget {
    void* reserved;            // the host's
    void* widget;              // the chart widget
};
PF_LAYOUT32(sizeof(fxwcPanelTarget) == 8);
PF_LAYOUT64(sizeof(fxwcPanelTarget) == 16);

struct fxwcPanelStatus {
    std::int32_t status;       // first word: the new status
    std::int32_t value;        // second word: the value that goes with it
};
PF_LAYOUT32(sizeof(fxwcPanelStatus) == 8);
PF_LAYOUT64(sizeof(fxwcPanelStatus) == 8);

// Message 5025: which chart window holds an object (a widget, area, layer, line or line
// study handle).
struct fxwcGetOwnerForObj {
    void* reserved;            // the host's
    void* object;              // the handle looked for
    void* iface;               // out: the owning window's chart type interface
    void* widget;              // out: the owning chart widget
};
PF_LAYOUT32(sizeof(fxwcGetOwnerForObj) == 16);
PF_LAYOUT32(offsetof(fxwcGetOwnerForObj, object) == 4);
PF_LAYOUT32(offsetof(fxwcGetOwnerForObj, iface) == 8);
PF_LAYOUT32(offsetof(fxwcGetOwnerForObj, widget) == 12);
PF_LAYOUT64(sizeof(fxwcGetOwnerForObj) == 32);

// Message 5034: a window's caption. p1 is this record, p2 the host's title buffer of
// FXWC_CAPTION_UNITS 16-bit units, which receives the window's title as UTF-16 with its
// terminator. A title is a host string of at most FXWC_TITLE_MAX_UNITS units; a longer
// one is cut there. Nothing of the record past the widget is read.
struct fxwcGetCaption {
    void* reserved;            // the host's
    void* widget;              // the chart widget
};
PF_LAYOUT32(sizeof(fxwcGetCaption) == 8);
PF_LAYOUT32(offsetof(fxwcGetCaption, widget) == 4);
PF_LAYOUT64(sizeof(fxwcGetCaption) == 16);
enum { FXWC_TITLE_MAX_UNITS = 255, FXWC_CAPTION_UNITS = FXWC_TITLE_MAX_UNITS + 1 };

// Message 10054: a property page of a chart window was applied in the host's dialog.
struct PROPERTY_CHANGE {
    void* page;                // the PROPERTY_PAGE that changed
    void* widget;              // the chart widget it belongs to
    std::int32_t value;        // passed on to the widget with the page
};
PF_LAYOUT32(sizeof(PROPERTY_CHANGE) == 12);
PF_LAYOUT64(sizeof(PROPERTY_CHANGE) == 20);

// Drag data of an instrument ("kovar/symbol-indicator") or a primitive ("kovar/primitive"):
// the bytes of the MIME format as the host put them. 3119 (instrument) and 3048 (primitive)
// ask the host core to describe what they name: p1 this record, p2 an fxwcDropInstrument the
// host fills; the answer is 0 when it did.
struct coreDragData {
    const char* bytes;
    std::int32_t length;
};
PF_LAYOUT32(sizeof(coreDragData) == 8);
PF_LAYOUT64(sizeof(coreDragData) == 12);

#pragma pack(pop)
