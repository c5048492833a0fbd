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

#pragma pack(pop)
