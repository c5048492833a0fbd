#include "data/KVTime.h"

#include <cstring>

CKVTime::CKVTime() : CKVTime(std::time(nullptr)) {}

CKVTime::CKVTime(time_t value) : time_(value) { std::memset(&tm_, 0, sizeof tm_); }

CKVTime::~CKVTime() = default;

const char* CKVTime::Format(const std::string& format) {
    static char buffer[100];
    std::memset(buffer, 0, sizeof buffer);
    if (time_ < 0) return buffer;
    if (!gmtime_r(&time_, &tm_)) return buffer;
    if (std::strftime(buffer, sizeof buffer, format.c_str(), &tm_) == 0) buffer[0] = '\0';
    return buffer;
}
