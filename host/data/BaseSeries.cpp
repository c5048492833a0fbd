#include "host/data/BaseSeries.h"

#include <cstring>

namespace host {
namespace data {

namespace {
const std::uint32_t kBarColour = 0xFF2060C0u;
const std::uint32_t kBarColour2 = 0xFF808080u;
}  // namespace

BaseSeries::BaseSeries(void* handle, Instrument& instrument) : DataObject(handle, instrument) {
    array_.setName(instrument.name(), instrument.name(), instrument.period());
    array_.setPrecision(instrument.precision());
    array_.setColours(kBarColour, kBarColour2);
    array_.setOwner(handle);
    array_.addField(DPT_INT32, "TIME");
    if (instrument.hasOhlc()) {
        array_.addField(DPT_FLOAT, "OPEN");
        array_.addField(DPT_FLOAT, "HIGH");
        array_.addField(DPT_FLOAT, "LOW");
    }
    array_.addField(DPT_FLOAT, "CLOSE");
    if (instrument.hasOhlc()) array_.addField(DPT_FLOAT, "VOLUME");
    points_.reserve(instrument.quotes().size() * std::size_t(array_.pointSize()));
    for (const Quote& q : instrument.quotes()) put(q);
    array_.setPoints(points_.data(), instrument.quotes().size());
}

HeadNode BaseSeries::headNode() const { return HeadNode{"CANDLE", "TELVIX", "CANDLE_TELVIX"}; }

void BaseSeries::put(const Quote& q) {
    const float ohlc[] = {float(q.open), float(q.high), float(q.low)};
    const float close = float(q.close);
    const float volume = float(q.volume);
    const std::size_t at = points_.size();
    points_.resize(at + std::size_t(array_.pointSize()));
    unsigned char* p = points_.data() + at;
    std::memcpy(p, &q.time, 4);
    p += 4;
    if (instrument().hasOhlc()) {
        std::memcpy(p, ohlc, sizeof ohlc);
        p += sizeof ohlc;
    }
    std::memcpy(p, &close, 4);
    p += 4;
    if (instrument().hasOhlc()) std::memcpy(p, &volume, 4);
}

bool BaseSeries::takeQuote(const Quote& quote) {
    put(quote);
    array_.setPoints(points_.data(), points_.size() / std::size_t(array_.pointSize()));
    return true;
}

}  // namespace data
}  // namespace host
