// Records of the module frame: module information, interface look-up, events,
// languages, translation, log and date-time functions.
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

// Returned by GetModuleInfo. The three numbers are stored in the reverse of the order
// in which the module's constructor receives them.
struct MODULE_INFO {
    char name[255];            // byte 254 forced to 0
    char description[1024];
    std::int32_t number3;      // third constructor number
    std::int32_t number2;      // second constructor number
    std::int32_t number1;      // first constructor number
    std::int32_t fixed8;       // always 8
    char translateContext[20]; // cut at 20 bytes, no forced terminator
    std::int32_t kind;         // 20 for a plain module, 82 for the chart module
    char reserved[996];        // never written by the module
};
PF_LAYOUT32(sizeof(MODULE_INFO) == 2315);
PF_LAYOUT64(sizeof(MODULE_INFO) == 2315);
PF_LAYOUT32(offsetof(MODULE_INFO, description) == 255);
PF_LAYOUT32(offsetof(MODULE_INFO, number3) == 1279);
PF_LAYOUT32(offsetof(MODULE_INFO, number2) == 1283);
PF_LAYOUT32(offsetof(MODULE_INFO, number1) == 1287);
PF_LAYOUT32(offsetof(MODULE_INFO, fixed8) == 1291);
PF_LAYOUT32(offsetof(MODULE_INFO, translateContext) == 1295);
PF_LAYOUT32(offsetof(MODULE_INFO, kind) == 1315);
PF_LAYOUT32(offsetof(MODULE_INFO, reserved) == 1319);

// Interface request (messages 3001 and 3002) and registration of a window component
// (message 3000; there `count` carries the low 32 bits of the module's second host handle
// and `result` the interface's own address, which the host may replace).
struct coreInterfaceRequest {
    char kind[255];
    char provider[255];
    char name[255];
    std::int32_t count;        // number of result slots
    void** result;             // array of `count` pointer-sized slots
};
PF_LAYOUT32(sizeof(coreInterfaceRequest) == 773);
PF_LAYOUT32(offsetof(coreInterfaceRequest, provider) == 255);
PF_LAYOUT32(offsetof(coreInterfaceRequest, name) == 510);
PF_LAYOUT32(offsetof(coreInterfaceRequest, count) == 765);
PF_LAYOUT32(offsetof(coreInterfaceRequest, result) == 769);
PF_LAYOUT64(sizeof(coreInterfaceRequest) == 777);

// Event subscription (message 3110).
struct coreEventSubscribe {
    char name[255];
    std::int32_t zero;
    std::int32_t subscriberId;
    void* object;              // the subscribing object's address
    std::int32_t last;         // always -1
};
PF_LAYOUT32(sizeof(coreEventSubscribe) == 271);
PF_LAYOUT32(offsetof(coreEventSubscribe, zero) == 255);
PF_LAYOUT32(offsetof(coreEventSubscribe, subscriberId) == 259);
PF_LAYOUT32(offsetof(coreEventSubscribe, object) == 263);
PF_LAYOUT32(offsetof(coreEventSubscribe, last) == 267);
PF_LAYOUT64(sizeof(coreEventSubscribe) == 275);

// Event unsubscription (message 3111).
struct coreEventUnsubscribe {
    std::int32_t subscriberId;
    void* object;
};
PF_LAYOUT32(sizeof(coreEventUnsubscribe) == 8);
PF_LAYOUT64(sizeof(coreEventUnsubscribe) == 12);

// Event creation (message 3112): the host writes the new event's id into `id`.
struct coreEventCreate {
    char name[255];
    std::intptr_t id;
};
PF_LAYOUT32(sizeof(coreEventCreate) == 259);
PF_LAYOUT32(offsetof(coreEventCreate, id) == 255);
PF_LAYOUT64(sizeof(coreEventCreate) == 263);

// The host's event record; only the fields the module touches are named.
struct FXEvent {
    void* sender;              // compared with a chart type interface's host handle
    std::uint8_t unknown4[4];
    std::int32_t id;
    std::uint8_t unknown12[4];
    char name[255];
    std::uint8_t unknown271[259];
    std::int32_t code;         // 16002, 16003, 16048 are handled by the chart module
    std::int32_t payloadCount;
    void* payload;
};
PF_LAYOUT32(offsetof(FXEvent, id) == 8);
PF_LAYOUT32(offsetof(FXEvent, name) == 16);
PF_LAYOUT32(offsetof(FXEvent, code) == 530);
PF_LAYOUT32(offsetof(FXEvent, payloadCount) == 534);
PF_LAYOUT32(offsetof(FXEvent, payload) == 538);
PF_LAYOUT32(sizeof(FXEvent) == 542);
PF_LAYOUT64(sizeof(FXEvent) == 550);

// One installed language (messages 3116 and 3117).
struct coreLanguage {
    char name[765];            // NUL-terminated ASCII
    std::int32_t selected;     // 1 for the language the user has selected
};
PF_LAYOUT32(sizeof(coreLanguage) == 769);
PF_LAYOUT32(offsetof(coreLanguage, selected) == 765);
PF_LAYOUT64(sizeof(coreLanguage) == 769);

struct coreLanguageRequest {
    std::int32_t count;
    coreLanguage* languages;   // null when only the count is asked (3116)
};
PF_LAYOUT32(sizeof(coreLanguageRequest) == 8);
PF_LAYOUT64(sizeof(coreLanguageRequest) == 12);

// Default text inserted into the host's translation table (message 3019).
struct coreTranslateRecord {
    char context[1024];
    char key[1024];
    char text[1024];
};
PF_LAYOUT32(sizeof(coreTranslateRecord) == 3072);
PF_LAYOUT32(offsetof(coreTranslateRecord, key) == 1024);
PF_LAYOUT32(offsetof(coreTranslateRecord, text) == 2048);
PF_LAYOUT64(sizeof(coreTranslateRecord) == 3072);

// One log line handed to the host's log sink; every field is pointer-sized.
struct coreLogMessage {
    const coreWChar* logName;  // zero-terminated UTF-16
    std::intptr_t type;        // coreLogMsgType
    std::intptr_t level;       // coreLogMsgLevel, 0 to 5
    const coreWChar* text;     // zero-terminated UTF-16
};
PF_LAYOUT32(sizeof(coreLogMessage) == 16);
PF_LAYOUT64(sizeof(coreLogMessage) == 32);

// The log sink the host writes into the 4-byte slot of message 3205.
typedef int (*coreLogSink)(const coreLogMessage* message);

// Message 3207: the host fills both pointers with its date formatting functions.
// Their signatures involve Qt types and are declared in module/DateTime.h.
struct coreDateTimeFunctions {
    void* formatDateTime;      // formats a QDateTime with a format text
    void* formatTime;          // formats a time value (seconds) with a format text and a flag
};
PF_LAYOUT32(sizeof(coreDateTimeFunctions) == 8);
PF_LAYOUT64(sizeof(coreDateTimeFunctions) == 16);

#pragma pack(pop)
