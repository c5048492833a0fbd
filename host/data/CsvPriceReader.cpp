#include "host/data/CsvPriceReader.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "host/data/CsvFormat.h"
#include "host/data/PriceGrid.h"

namespace host {
namespace data {

namespace {

bool blank(const std::string& line) {
    return std::all_of(line.begin(), line.end(), [](unsigned char c) { return std::isspace(c) != 0; });
}

std::unique_ptr<Instrument> fail(std::string* error, const std::string& text) {
    if (error) *error = text;
    return nullptr;
}

}  // namespace

std::string CsvPriceReader::skippedNote(std::size_t rows, const std::string& sample) {
    if (rows == 0) return std::string();
    std::string note = std::to_string(rows) + (rows == 1 ? " row skipped (" : " rows skipped (") + sample;
    if (rows > std::size_t(kSkippedShown)) note += ", " + std::to_string(rows - kSkippedShown) + " more";
    return note + ")";
}

std::string CsvPriceReader::nameFromPath(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::size_t cut = base.find_first_of("-.");
    if (cut != std::string::npos && cut > 0) base = base.substr(0, cut);
    std::transform(base.begin(), base.end(), base.begin(),
                   [](unsigned char c) { return char(std::toupper(c)); });
    return base;
}

namePeriod CsvPriceReader::periodFromSpacing(std::int64_t seconds) {
    namePeriod p;
    p.length = 1;
    if (seconds <= 0 || seconds % 60 != 0) {
        p.type = 'I';
        p.length = 0;  // irregular or below a minute: ticks
    } else if (seconds < 86400) {
        p.type = 'I';
        p.length = std::int32_t(seconds / 60);
    } else if (seconds < 7 * 86400) {
        p.type = 'D';
    } else if (seconds < 28 * 86400) {
        p.type = 'W';
    } else if (seconds < 365 * 86400) {
        p.type = 'M';
    } else {
        p.type = 'Y';
    }
    return p;
}

std::unique_ptr<Instrument> CsvPriceReader::readFile(const std::string& path, const std::string& name,
                                                     std::string* error, const Progress& progress) {
    std::ifstream in(path);
    if (!in) {
        if (error) *error = "cannot open " + path;
        return nullptr;
    }
    std::unique_ptr<Instrument> instrument = read(in, name.empty() ? nameFromPath(path) : name, error, progress);
    if (!instrument && error) *error = path + ": " + *error;
    if (instrument) instrument->setSource(path);
    return instrument;
}

std::unique_ptr<Instrument> CsvPriceReader::read(std::istream& in, const std::string& name, std::string* error,
                                                 const Progress& progress) {
    // Lines between two progress reports.
    const int kProgressLines = 16384;
    std::string line;
    if (!std::getline(in, line)) return fail(error, "empty file");
    CsvFormat format;
    std::string why;
    if (!CsvFormat::fromHeader(line, &format, &why)) return fail(error, why);
    const bool ohlc = format.hasOhlc();
    using C = CsvFormat;
    // The price columns read: all of OHLC or only the close; the volume when there is one.
    std::vector<C::Column> prices = {C::kClose};
    if (ohlc) prices = {C::kOpen, C::kHigh, C::kLow, C::kClose};
    if (format.index(C::kVolume) >= 0) prices.push_back(C::kVolume);

    std::vector<Quote> quotes;
    int decimals = 0;
    long lineNumber = 1;
    std::size_t skipped = 0;
    std::string sample;
    const auto field = [&format](const std::vector<std::string>& fields, C::Column c) -> const std::string* {
        const int i = format.index(c);
        return i >= 0 && std::size_t(i) < fields.size() ? &fields[std::size_t(i)] : nullptr;
    };
    // A row's quote and the decimals of its prices; the reason when it cannot be read.
    const auto readRow = [&](const std::string& row, Quote* q, int* places) -> std::string {
        const std::vector<std::string> fields = format.split(row);
        const std::string* date = field(fields, C::kWhen);
        const std::string* tod = field(fields, C::kTimeOfDay);
        if (format.index(C::kTimeOfDay) >= 0 && !tod) return "bad time";
        std::int64_t seconds = 0;
        if (!date || !CsvFormat::when(*date, std::string(), &seconds)) return std::string("bad ") + format.columnName(C::kWhen);
        if (tod && !CsvFormat::when(*date, *tod, &seconds)) return "bad time";
        if (seconds < 0 || seconds > 2147483647LL) return "time out of range";
        *q = Quote{std::int32_t(seconds), 0, 0, 0, 0, 0};
        double* const slot[C::kColumns] = {nullptr, nullptr, &q->open, &q->high, &q->low, &q->close, &q->volume};
        *places = 0;
        for (C::Column c : prices) {
            const std::string* text = field(fields, c);
            if (!text || !format.number(*text, slot[c])) return std::string("bad ") + format.columnName(c);
            if (c != C::kVolume) *places = std::max(*places, format.decimals(*text));
        }
        if (!ohlc) q->open = q->high = q->low = q->close;
        if (!Instrument::validClose(q->close)) return "close out of range";
        if (!quotes.empty() && q->time < quotes.back().time) return "time goes backwards";
        return std::string();
    };
    while (std::getline(in, line)) {
        ++lineNumber;
        if (progress && lineNumber % kProgressLines == 0) {
            const std::streamoff at = in.tellg();
            if (!progress(at > 0 ? std::uint64_t(at) : 0)) return fail(error, "stopped");
        }
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (blank(line)) continue;
        Quote q;
        int places = 0;
        const std::string why = readRow(line, &q, &places);
        if (!why.empty()) {
            if (skipped++ < std::size_t(kSkippedShown))
                sample += (sample.empty() ? "" : ", ") + ("line " + std::to_string(lineNumber) + ": " + why);
            continue;
        }
        decimals = std::max(decimals, places);
        quotes.push_back(q);
    }
    if (quotes.empty() && skipped > 0) return fail(error, "no readable row: " + skippedNote(skipped, sample));
    if (quotes.empty()) return fail(error, "no quotes");

    std::map<std::int64_t, std::size_t> spacing;
    for (std::size_t i = 1; i < quotes.size(); ++i) ++spacing[std::int64_t(quotes[i].time) - quotes[i - 1].time];
    std::int64_t usual = 0;
    std::size_t best = 0;
    for (const auto& s : spacing)
        if (s.second > best) best = s.second, usual = s.first;

    std::unique_ptr<Instrument> instrument(new Instrument(
        name, periodFromSpacing(usual), std::min<int>(decimals, PriceGrid::kMaxDigits), ohlc));
    for (const Quote& q : quotes) instrument->append(q);
    instrument->setSkipped(skipped, sample);
    return instrument;
}

}  // namespace data
}  // namespace host
