#include "host/data/Instrument.h"

#include <QString>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace host {
namespace data {

Quote closeQuote(std::int32_t time, double close) { return Quote{time, close, close, close, close, 0}; }

Instrument::Instrument(const std::string& name, namePeriod period, int precision, bool ohlc)
    : name_(name), period_(period), precision_(precision), ohlc_(ohlc) {}

void Instrument::widenRange(double close) {
    if (hasRange_) travel_ += std::fabs(close - lastClose_);
    lastClose_ = close;
    if (!hasRange_ || close < low_) low_ = close;
    if (!hasRange_ || close > high_) high_ = close;
    hasRange_ = true;
}

bool Instrument::validClose(double close) { return std::isfinite(close) && std::fabs(close) <= kMaxPrice; }

bool Instrument::append(const Quote& quote) {
    if (!validClose(quote.close)) return false;
    if (!quotes_.empty() && quote.time < quotes_.back().time) return false;
    quotes_.push_back(quote);
    widenRange(quote.close);
    return true;
}

bool Instrument::hold(const Quote& quote) {
    if (!validClose(quote.close)) return false;
    if (pendingCount() > 0 && quote.time < pending_.back().time) return false;
    pending_.push_back(quote);
    widenRange(quote.close);
    return true;
}

void Instrument::holdBackAfter(std::size_t live) {
    if (live >= quotes_.size()) return;
    std::vector<Quote> queue(quotes_.begin() + std::ptrdiff_t(live), quotes_.end());
    queue.insert(queue.end(), pending_.begin() + std::ptrdiff_t(nextPending_), pending_.end());
    pending_.swap(queue);
    nextPending_ = 0;
    quotes_.resize(live);
}

bool Instrument::takePending(Quote* quote) {
    if (pendingCount() == 0) return false;
    const Quote q = pending_[nextPending_];
    if (!quotes_.empty() && q.time < quotes_.back().time) return false;
    ++nextPending_;
    quotes_.push_back(q);
    if (quote) *quote = q;
    if (nextPending_ == pending_.size()) {
        pending_.clear();
        nextPending_ = 0;
    }
    return true;
}

coreNameInstrument Instrument::nameRecord() const {
    coreNameInstrument record;
    std::memset(&record, 0, sizeof record);
    putWide(record.name, 255, name_);
    std::strncpy(record.secondName, name_.c_str(), sizeof record.secondName - 1);
    record.period.type = period_.type;
    record.period.length = period_.length;
    return record;
}

void putWide(void* field, std::size_t units, const std::string& text) {
    if (!field || units == 0) return;
    const QString wide = QString::fromUtf8(text.c_str());
    const std::size_t n = std::min<std::size_t>(std::size_t(wide.size()), units - 1);
    unsigned char* out = static_cast<unsigned char*>(field);
    std::memcpy(out, wide.utf16(), n * sizeof(coreWChar));
    std::memset(out + n * sizeof(coreWChar), 0, sizeof(coreWChar));
}

std::string readWide(const void* field, std::size_t units) {
    if (!field) return std::string();
    std::vector<coreWChar> text(units);
    std::memcpy(text.data(), field, units * sizeof(coreWChar));
    std::size_t n = 0;
    while (n < units && text[n]) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.data()), int(n)).toUtf8().toStdString();
}

}  // namespace data
}  // namespace host
