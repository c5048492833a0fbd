#include "host/data/CsvFormat.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace host {
namespace data {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string trimmed(const std::string& s) {
    std::size_t b = 0, e = s.size();
    while (b < e && std::isspace(static_cast<unsigned char>(s[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(s[e - 1]))) --e;
    if (e - b >= 2 && s[b] == '"' && s[e - 1] == '"') ++b, --e;
    return s.substr(b, e - b);
}

// A header name as compared: lower case, without a UTF-8 byte order mark or <...>.
std::string columnKey(std::string h) {
    if (h.compare(0, 3, "\xEF\xBB\xBF") == 0) h.erase(0, 3);
    h = trimmed(h);
    if (h.size() >= 2 && h.front() == '<' && h.back() == '>') h = h.substr(1, h.size() - 2);
    std::transform(h.begin(), h.end(), h.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return h;
}

// Reads `width` digits at most (at least one) from text[*at]; false when there are none.
bool digits(const std::string& text, std::size_t* at, std::size_t most, int* value) {
    std::size_t n = 0;
    *value = 0;
    while (*at < text.size() && n < most && isDigit(text[*at])) *value = *value * 10 + (text[(*at)++] - '0'), ++n;
    return n > 0;
}

// HH:MM[:SS[.fraction]] from text[*at]; seconds of the day.
bool timeOfDay(const std::string& text, std::size_t* at, std::int64_t* seconds) {
    int h = 0, m = 0, s = 0;
    if (!digits(text, at, 2, &h) || *at >= text.size() || text[*at] != ':') return false;
    ++*at;
    if (!digits(text, at, 2, &m)) return false;
    if (*at < text.size() && text[*at] == ':') {
        ++*at;
        if (!digits(text, at, 2, &s)) return false;
        if (*at < text.size() && (text[*at] == '.' || text[*at] == ',')) {
            ++*at;
            int ignored = 0;
            if (!digits(text, at, 9, &ignored)) return false;
        }
    }
    if (h > 23 || m > 59 || s > 60) return false;
    *seconds = h * 3600 + m * 60 + s;
    return true;
}

// Days from 1970-01-01 to the civil date (proleptic Gregorian).
std::int64_t daysFromCivil(int y, int m, int d) {
    y -= m <= 2;
    const int era = (y >= 0 ? y : y - 399) / 400;
    const int yoe = y - era * 400;
    const int doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const int doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return std::int64_t(era) * 146097 + doe - 719468;
}

bool leap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

// UNIX seconds written as a number (a fraction is dropped).
bool unixSeconds(const std::string& text, std::int64_t* seconds) {
    if (text.empty()) return false;
    std::size_t i = text[0] == '-' || text[0] == '+' ? 1 : 0;
    const std::size_t first = i;
    while (i < text.size() && isDigit(text[i])) ++i;
    if (i == first) return false;
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && isDigit(text[i])) ++i;
    }
    if (i != text.size()) return false;
    errno = 0;
    const double v = std::strtod(text.c_str(), nullptr);
    if (errno != 0 || v < -1e15 || v > 1e15) return false;
    *seconds = std::int64_t(v);
    return true;
}

}  // namespace

bool CsvFormat::fromHeader(const std::string& header, CsvFormat* format, std::string* error) {
    CsvFormat f;
    if (header.find('\t') != std::string::npos)
        f.separator_ = '\t';
    else if (header.find(';') != std::string::npos)
        f.separator_ = ';';
    f.decimalComma_ = f.separator_ != ',';
    const std::vector<std::string> names = f.split(header);
    int time = -1, date = -1;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string h = columnKey(names[i]);
        const int at = int(i);
        if (h == "time" && time < 0) time = at;
        else if ((h == "date" || h == "datetime" || h == "timestamp") && date < 0) date = at;
        else if (h == "open" && f.index_[kOpen] < 0) f.index_[kOpen] = at;
        else if (h == "high" && f.index_[kHigh] < 0) f.index_[kHigh] = at;
        else if (h == "low" && f.index_[kLow] < 0) f.index_[kLow] = at;
        else if (h == "close" && f.index_[kClose] < 0) f.index_[kClose] = at;
        else if (h == "volume" && f.index_[kVolume] < 0) f.index_[kVolume] = at;
    }
    if (date >= 0) {
        f.whenIsDate_ = true;
        f.index_[kWhen] = date;
        f.index_[kTimeOfDay] = time;
    } else {
        f.index_[kWhen] = time;
    }
    if (f.index_[kWhen] < 0 || f.index_[kClose] < 0) {
        if (error)
            *error = "the header needs a time column (time, or date, datetime or timestamp) and a close column";
        return false;
    }
    *format = f;
    return true;
}

std::vector<std::string> CsvFormat::split(const std::string& line) const {
    std::vector<std::string> out;
    std::size_t from = 0;
    for (;;) {
        const std::size_t at = line.find(separator_, from);
        out.push_back(trimmed(line.substr(from, at == std::string::npos ? std::string::npos : at - from)));
        if (at == std::string::npos) break;
        from = at + 1;
    }
    return out;
}

bool CsvFormat::number(const std::string& text, double* value) const {
    if (text.empty()) return false;
    std::string t = text;
    if (decimalComma_ && t.find('.') == std::string::npos) std::replace(t.begin(), t.end(), ',', '.');
    char* end = nullptr;
    errno = 0;
    *value = std::strtod(t.c_str(), &end);
    return errno == 0 && end && *end == 0;
}

int CsvFormat::decimals(const std::string& text) const {
    std::size_t mark = text.find('.');
    if (mark == std::string::npos && decimalComma_) mark = text.find(',');
    if (mark == std::string::npos) return 0;
    std::size_t n = 0;
    while (mark + 1 + n < text.size() && isDigit(text[mark + 1 + n])) ++n;
    return int(n);
}

bool CsvFormat::when(const std::string& date, const std::string& tod, std::int64_t* seconds) {
    if (unixSeconds(date, seconds)) return tod.empty();
    std::size_t at = 0;
    int y = 0, m = 0, d = 0;
    if (!digits(date, &at, 4, &y) || at != 4 || at >= date.size()) return false;
    const char sep = date[at];
    if (sep != '-' && sep != '.' && sep != '/') return false;
    ++at;
    if (!digits(date, &at, 2, &m) || at >= date.size() || date[at] != sep) return false;
    ++at;
    if (!digits(date, &at, 2, &d)) return false;
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (m < 1 || m > 12 || d < 1 || d > kDays[m - 1] + (m == 2 && leap(y) ? 1 : 0)) return false;
    std::int64_t day = 0, offset = 0;
    if (at < date.size()) {
        if (!tod.empty()) return false;  // a time in both columns
        if (date[at] == 'T' || date[at] == 't')
            ++at;
        else
            while (at < date.size() && date[at] == ' ') ++at;
        if (!timeOfDay(date, &at, &day)) return false;
        if (at < date.size() && (date[at] == 'Z' || date[at] == 'z')) {
            ++at;
        } else if (at < date.size() && (date[at] == '+' || date[at] == '-')) {
            const int sign = date[at++] == '-' ? -1 : 1;
            int oh = 0, om = 0;
            if (!digits(date, &at, 2, &oh)) return false;
            if (at < date.size() && date[at] == ':') ++at;
            if (at < date.size() && !digits(date, &at, 2, &om)) return false;
            if (oh > 23 || om > 59) return false;
            offset = sign * (oh * 3600 + om * 60);
        }
        if (at != date.size()) return false;
    } else if (!tod.empty()) {
        std::size_t t = 0;
        if (!timeOfDay(tod, &t, &day) || t != tod.size()) return false;
    }
    *seconds = daysFromCivil(y, m, d) * 86400 + day - offset;
    return true;
}

const char* CsvFormat::columnName(Column c) const {
    switch (c) {
    case kWhen: return whenIsDate_ ? "date" : "time";
    case kTimeOfDay: return "time";
    case kOpen: return "open";
    case kHigh: return "high";
    case kLow: return "low";
    case kClose: return "close";
    case kVolume: return "volume";
    default: return "";
    }
}

}  // namespace data
}  // namespace host
