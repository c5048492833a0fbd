// One instrument of the data core: its name, period, precision and quotes. Quotes are
// either live (the series the charts are computed from) or held back, to be appended one
// at a time by a replay.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "abi/records/dpa_records.h"

namespace host {
namespace data {

struct Quote {
    std::int32_t time;  // seconds since 1970, UTC
    double open;
    double high;
    double low;
    double close;
    double volume;
};

// A quote that has only a closing price.
Quote closeQuote(std::int32_t time, double close);

class Instrument {
public:
    Instrument(const std::string& name, namePeriod period, int precision, bool ohlc);

    const std::string& name() const { return name_; }
    namePeriod period() const { return period_; }
    int precision() const { return precision_; }
    // True when the source had open, high, low, close and volume; false for closes only.
    bool hasOhlc() const { return ohlc_; }
    const std::string& source() const { return source_; }
    void setSource(const std::string& path) { source_ = path; }
    // Rows of the source that could not be read and were left out: how many, and the first
    // few as "line 5: bad close", joined with ", ".
    std::size_t skippedRows() const { return skippedRows_; }
    const std::string& skippedSample() const { return skippedSample_; }
    void setSkipped(std::size_t rows, const std::string& sample) {
        skippedRows_ = rows;
        skippedSample_ = sample;
    }

    const std::vector<Quote>& quotes() const { return quotes_; }
    std::size_t pendingCount() const { return pending_.size() - nextPending_; }

    // Largest closing price taken, in magnitude: keeps prices in ticks of up to nine
    // decimals, and their differences, inside 64-bit integers.
    static constexpr double kMaxPrice = 1e9;
    // True for a finite close of at most kMaxPrice in magnitude.
    static bool validClose(double close);

    // Adds a live quote; refused (false) when its time is before the last live quote's or
    // its close is not valid.
    bool append(const Quote& quote);
    // Adds a quote to the held-back queue (same rules, time against the queue's end).
    bool hold(const Quote& quote);
    // Moves every live quote after the first `live` ones to the front of the held-back queue.
    void holdBackAfter(std::size_t live);
    // The next held-back quote without taking it; null when none is left.
    const Quote* nextPending() const { return nextPending_ < pending_.size() ? &pending_[nextPending_] : nullptr; }
    // Takes the next held-back quote; false when none is left.
    bool takePending(Quote* quote);

    // Lowest and highest closing price over live and held-back quotes; both 0 when empty.
    double lowestClose() const { return low_; }
    double highestClose() const { return high_; }
    // Sum of the absolute moves from one close to the next, live and held-back quotes in
    // the order they came in: how far the price travels.
    double travel() const { return travel_; }

    // The instrument's name and period as the host's name record (UTF-16 and 8-bit name).
    coreNameInstrument nameRecord() const;

private:
    void widenRange(double close);  // and the travel

    std::string name_;
    namePeriod period_;
    int precision_;
    bool ohlc_;
    std::string source_;
    std::size_t skippedRows_ = 0;
    std::string skippedSample_;
    std::vector<Quote> quotes_;
    std::vector<Quote> pending_;
    std::size_t nextPending_ = 0;
    double low_ = 0;
    double high_ = 0;
    double travel_ = 0;
    double lastClose_ = 0;
    bool hasRange_ = false;
};

// Copies UTF-8 text into a NUL-terminated UTF-16 field of `units` code units. The field
// is addressed bytewise: inside packed records it need not be aligned.
void putWide(void* field, std::size_t units, const std::string& text);
// Reads a UTF-16 field of at most `units` code units, up to its NUL, as UTF-8.
std::string readWide(const void* field, std::size_t units);

}  // namespace data
}  // namespace host
