// The layout of a CSV price file, as its header line shows it, and the reading of its fields:
//   separator   a tab or a semicolon when the header has one, else a comma;
//   decimals    with a tab or semicolon, a decimal comma is read as well as a point;
//   columns     found by name in any case, surrounding quotes, blanks and <...> left off:
//               the time as `time` alone (UNIX seconds or ISO), or a date column (`date`,
//               `datetime`, `timestamp`) in ISO form with an optional time of day, with a
//               separate `time` column holding the time of day; `close` is needed,
//               `open`, `high`, `low` and `volume` are taken when present.
// ISO forms read: YYYY-MM-DD (or with '.' or '/'), then optionally 'T' or blanks and
// HH:MM[:SS[.fraction]], then optionally 'Z' or an offset +HH[:MM]. Times are UTC.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {
namespace data {

class CsvFormat {
public:
    enum Column { kWhen, kTimeOfDay, kOpen, kHigh, kLow, kClose, kVolume, kColumns };

    // The format the header line gives; false with `error` set when it names no time or
    // date column or no close column.
    static bool fromHeader(const std::string& header, CsvFormat* format, std::string* error);

    // The fields of one line, blanks and surrounding quotes left off.
    std::vector<std::string> split(const std::string& line) const;
    // Index of a column in a line's fields; -1 when the file has none.
    int index(Column c) const { return index_[c]; }
    char separator() const { return separator_; }
    // The OHLC prices are all there.
    bool hasOhlc() const { return index_[kOpen] >= 0 && index_[kHigh] >= 0 && index_[kLow] >= 0; }

    // A price or volume; false for anything but a whole number.
    bool number(const std::string& text, double* value) const;
    // Digits after the decimal mark as written ("1.1930" 4, "0,95" 2 with a decimal comma).
    int decimals(const std::string& text) const;
    // The time of a line from its date (or time) field and its time-of-day field (empty when
    // the file has none), in seconds since 1970 UTC; false when either is not readable.
    static bool when(const std::string& date, const std::string& timeOfDay, std::int64_t* seconds);
    // The name a column is called by in messages: "time", "date", "close"...
    const char* columnName(Column c) const;

private:
    char separator_ = ',';
    bool decimalComma_ = false;
    bool whenIsDate_ = false;  // the time comes from a date column, not from `time` alone
    int index_[kColumns] = {-1, -1, -1, -1, -1, -1, -1};
};

}  // namespace data
}  // namespace host
