// Records of the dealing interface and the main window.
#pragma once

#include "abi/records/layout.h"

#pragma pack(push, 1)

// The host's trading account record (300 bytes). Only the first two words and the name
// are read; the rest is carried unchanged.
struct fxdDealAccount {
    std::uint32_t dealHandle;  // low 32 bits of the deal interface's handle
    std::int32_t accountId;    // 0: no account
    coreWChar name[146];       // NUL-terminated wide name; the rest is the host's
};
PF_LAYOUT32(sizeof(fxdDealAccount) == 300);
PF_LAYOUT32(offsetof(fxdDealAccount, name) == 8);
PF_LAYOUT64(sizeof(fxdDealAccount) == 300);

// Messages 16000/16001: count and fill the accounts of one deal interface.
struct fxdAccountRequest {
    std::int32_t count;
    fxdDealAccount* accounts;
};
PF_LAYOUT32(sizeof(fxdAccountRequest) == 8);
PF_LAYOUT64(sizeof(fxdAccountRequest) == 12);

// One dealing symbol's day-off state (31 bytes).
struct fxdDayOff {
    char symbol[19];           // NUL-terminated ASCII
    std::int32_t dayOff;       // non-zero: the symbol is in a day off
    std::uint8_t rest[8];      // the host's, carried unchanged
};
PF_LAYOUT32(sizeof(fxdDayOff) == 31);
PF_LAYOUT32(offsetof(fxdDayOff, dayOff) == 19);
PF_LAYOUT64(sizeof(fxdDayOff) == 31);

// Messages 16026/16027: count and fill day-off states of one dealing.
struct fxdDayOffRequest {
    std::int32_t count;
    fxdDayOff* records;
};
PF_LAYOUT32(sizeof(fxdDayOffRequest) == 8);
PF_LAYOUT64(sizeof(fxdDayOffRequest) == 12);

// Payload of the day-off event (code 16048).
struct fxdDayOffEventPayload {
    std::uint32_t dealHandle;
    std::int32_t accountId;
};
PF_LAYOUT32(sizeof(fxdDayOffEventPayload) == 8);

// Messages 16015 (deal) and 16014 (order), sent to the deal interface of the account:
// a deal or an order placed from a chart. The host's dealing dialog takes it from there.
struct fxdTradeRequest {
    char instrument[21];       // the instrument's name, at most 20 characters, NUL-terminated
    std::int32_t accountId;    // the account chosen
    double price;              // orders: the price at the menu point; deals: 0
};
PF_LAYOUT32(sizeof(fxdTradeRequest) == 33);
PF_LAYOUT32(offsetof(fxdTradeRequest, accountId) == 21);
PF_LAYOUT32(offsetof(fxdTradeRequest, price) == 25);
PF_LAYOUT64(sizeof(fxdTradeRequest) == 33);

// Message 5008 to the main window: a change notice ("Scale changed").
struct coreMainChangeNotice {
    std::int32_t zero;
    char text[1];              // NUL-terminated, as long as it needs
};

// Message 3546: the list the module appends its conversion answer to.
struct coreConvertList {
    std::int32_t count;
    std::int32_t entries[1][2]; // `count` entries of two 32-bit words, then room for one more
};

enum { CORE_WORK_FOLDER_BUFFER = 12288 };  // message 3503, bytes

#pragma pack(pop)
