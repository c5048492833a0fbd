// Time formatting for the text form of data point arrays.
#pragma once

#include <ctime>
#include <string>

class CKVTime {
public:
    // The value starts at the current time.
    CKVTime();
    explicit CKVTime(time_t value);
    virtual ~CKVTime();

    void SetTime(time_t value) { time_ = value; }
    time_t GetTime() const { return time_; }

    // Formats the value as UTC with strftime into one 100-byte buffer shared by every
    // instance, and returns that buffer. A negative value, a format whose result does not fit
    // in 99 characters or a time gmtime cannot convert give an empty text. The buffer is
    // overwritten by the next call on any instance.
    const char* Format(const std::string& format);

private:
    time_t time_;
    struct tm tm_;
};
