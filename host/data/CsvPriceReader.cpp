#include "host/data/CsvPriceReader.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include "host/data/PriceGrid.h"

namespace host {
namespace data {

namespace {

enum Column { kTime, kOpen, kHigh, kLow, kClose, kVolume, kColumns };
const char* const kColumnNames[kColumns] = {"time", "open", "high", "low", "close", "volume"};

std::string trimmed(const std::string& s) {
    std::size_t b = 0, e = s.size();
    while (b < e && std::isspace(static_cast<unsigned char>(s[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(s[e - 1]))) --e;
    return s.substr(b, e - b);
}

std::vector<std::string> splitFields(const std::string& line) {
    std::vector<std::string> out;
    std::string item;
    std::istringstream in(line);
    while (std::getline(in, item, ',')) out.push_back(trimmed(item));
    if (!line.empty() && line.back() == ',') out.push_back(std::string());
    return out;
}

// Digits after the decimal point as written, e.g. "1.1930" -> 4, "3.1" -> 1, "3" -> 0.
int writtenDecimals(const std::string& text) {
    const std::size_t dot = text.find('.');
    if (dot == std::string::npos) return 0;
    std::size_t n = 0;
    while (dot + 1 + n < text.size() && std::isdigit(static_cast<unsigned char>(text[dot + 1 + n]))) ++n;
    return int(n);
}

bool parseNumber(const std::string& text, double* value) {
    if (text.empty()) return false;
    char* end = nullptr;
    errno = 0;
    *value = std::strtod(text.c_str(), &end);
    return errno == 0 && end && *end == 0;
}

std::unique_ptr<Instrument> fail(std::string* error, const std::string& text) {
    if (error) *error = text;
    return nullptr;
}

}  // namespace

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
    int index[kColumns];
    std::fill(index, index + kColumns, -1);
    const std::vector<std::string> header = splitFields(line);
    for (std::size_t i = 0; i < header.size(); ++i) {
        std::string h = header[i];
        std::transform(h.begin(), h.end(), h.begin(), [](unsigned char c) { return char(std::tolower(c)); });
        for (int c = 0; c < kColumns; ++c)
            if (h == kColumnNames[c]) index[c] = int(i);
    }
    if (index[kTime] < 0 || index[kClose] < 0)
        return fail(error, "the header needs the columns time and close");
    const bool ohlc = index[kOpen] >= 0 && index[kHigh] >= 0 && index[kLow] >= 0;

    std::vector<Quote> quotes;
    int decimals = 0;
    int lineNumber = 1;
    while (std::getline(in, line)) {
        ++lineNumber;
        if (progress && lineNumber % kProgressLines == 0) {
            const std::streamoff at = in.tellg();
            if (!progress(at > 0 ? std::uint64_t(at) : 0)) return fail(error, "stopped");
        }
        if (trimmed(line).empty()) continue;
        const std::vector<std::string> fields = splitFields(line);
        double values[kColumns] = {0, 0, 0, 0, 0, 0};
        for (int c = 0; c < kColumns; ++c) {
            if (index[c] < 0 || (!ohlc && c != kTime && c != kClose && c != kVolume)) continue;
            if (std::size_t(index[c]) >= fields.size() || !parseNumber(fields[index[c]], &values[c]))
                return fail(error, "line " + std::to_string(lineNumber) + ": bad " + kColumnNames[c]);
            if (c != kTime && c != kVolume) decimals = std::max(decimals, writtenDecimals(fields[index[c]]));
        }
        if (values[kTime] < 0 || values[kTime] > 2147483647.0)
            return fail(error, "line " + std::to_string(lineNumber) + ": time out of range");
        Quote q{std::int32_t(values[kTime]), values[kOpen], values[kHigh], values[kLow], values[kClose],
                values[kVolume]};
        if (!ohlc) q.open = q.high = q.low = q.close;
        if (!Instrument::validClose(q.close))
            return fail(error, "line " + std::to_string(lineNumber) + ": close out of range");
        if (!quotes.empty() && q.time < quotes.back().time)
            return fail(error, "line " + std::to_string(lineNumber) + ": time goes backwards");
        quotes.push_back(q);
    }
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
    return instrument;
}

}  // namespace data
}  // namespace host
