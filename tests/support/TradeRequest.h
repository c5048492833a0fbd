// A deal or order request as the module sends it to a dealing interface (16014/16015).
#pragma once

#include <cstdint>
#include <cstring>

#include "abi/records.h"

inline fxdTradeRequest TradeRequest(const char* instrument, std::int32_t account, double price) {
    fxdTradeRequest r;
    std::memset(&r, 0, sizeof r);
    std::strncpy(r.instrument, instrument, sizeof r.instrument);
    r.accountId = account;
    r.price = price;
    return r;
}
