// Reads an instrument from a CSV price file: one header line naming the columns, then one
// quote per line. The header gives the layout (CsvFormat): comma, semicolon or tab
// separated; the time as UNIX seconds or an ISO date with an optional time of day (or a
// separate time column); close required, open, high, low and volume taken when present;
// columns in any order and any case. A row that cannot be read (a field that is not a
// number or a date, a short row, a time before the one above) is left out and counted on the
// instrument (Instrument::skippedRows), with the first few line numbers and reasons; a file
// is refused only when its header is unusable or no row can be read. The precision is the
// largest number of decimals of any price taken; the period is the most common distance
// between consecutive quotes.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <memory>
#include <string>

#include "host/data/Instrument.h"

namespace host {
namespace data {

class CsvPriceReader {
public:
    // Told now and then, while a file is read, how many bytes are behind; returning false
    // stops the reading (the result is null, the error "stopped").
    using Progress = std::function<bool(std::uint64_t bytesRead)>;

    // `name` empty: the file's base name up to its first '-' or '.', upper-cased
    // ("usdchf-30min.csv" is "USDCHF"). Null with `error` set when the file is unusable.
    static std::unique_ptr<Instrument> readFile(const std::string& path, const std::string& name,
                                                std::string* error, const Progress& progress = Progress());
    static std::unique_ptr<Instrument> read(std::istream& in, const std::string& name, std::string* error,
                                            const Progress& progress = Progress());

    // What a person is told of the rows left out of a file (an instrument's skippedRows and
    // skippedSample): "3 rows skipped (line 5: bad close, line 9: bad date, line 12: time
    // goes backwards)"; empty for none.
    static std::string skippedNote(std::size_t rows, const std::string& sample);
    // Rows named in an instrument's skipped sample; the rest are counted only.
    static const int kSkippedShown = 5;

    // The instrument name a file gets by default.
    static std::string nameFromPath(const std::string& path);
    // The period of quotes that are mostly `seconds` apart.
    static namePeriod periodFromSpacing(std::int64_t seconds);
};

}  // namespace data
}  // namespace host
