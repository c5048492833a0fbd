#include "host/data/ChartObject.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace data {

namespace {
// Renko lays a brick per box of travel: this bounds the figures a series can make.
const double kMaxBoxesTravelled = 2e7;
const int kMaxReversal = 1000;

// The grid fine enough for both the instrument's prices and the box size.
PriceGrid gridFor(const Instrument& instrument, double box) {
    return PriceGrid(std::max(instrument.precision(), PriceGrid::decimalsOf(box)));
}
}  // namespace

bool ChartObject::resolveSettings(const Instrument& instrument, const ChartSettings& requested,
                                  ChartSettings* resolved, std::string* error) {
    ChartSettings s = requested;
    if (s.box == 0) s.box = defaultBoxSize(instrument.lowestClose(), instrument.highestClose(), instrument.precision());
    if (s.reversal == 0) s.reversal = kDefaultReversal;
    // Quotes of closes only have no other price.
    if (!instrument.hasOhlc()) s.price = PriceField::Close;
    std::string problem;
    if (!(s.box > 0) || !std::isfinite(s.box))
        problem = "the box size must be above 0";
    else if (s.box > Instrument::kMaxPrice)
        problem = "the box size is too large";
    else if (gridFor(instrument, s.box).ticks(s.box) < 1)
        problem = "the box size is below the finest price step";
    else if (instrument.travel() / s.box > kMaxBoxesTravelled)
        problem = "the box size is too small: the prices would travel more than 20 million boxes";
    else if (s.reversal < 1 || s.reversal > kMaxReversal)
        problem = "the reversal must be 1 to 1000 boxes";
    else if (double(gridFor(instrument, s.box).ticks(s.box)) * s.reversal > 4e18)
        problem = "the reversal amount is too large";
    else if (!(s.percent >= 0 && s.percent <= 100))
        problem = "the reversal percentage must be 0 to 100";
    else if (int(s.price) < 0 || int(s.price) > int(PriceField::Typical))
        problem = "the price must be the close, the median or the typical price";
    if (!problem.empty()) {
        if (error) *error = problem;
        return false;
    }
    if (resolved) *resolved = s;
    return true;
}

ChartObject::ChartObject(void* handle, Instrument& instrument, ChartType type, const ChartSettings& settings)
    : DataObject(handle, instrument), type_(type) {
    array_.setName(chartTypeName(type), instrument.name(), instrument.period());
    array_.setPrecision(instrument.precision());
    array_.setOwner(handle);
    array_.addField(DPT_INT32, "TIME");
    array_.addField(DPT_FLOAT, "STEP");
    array_.addField(DPT_FLOAT, "VALUE");
    array_.addField(DPT_INT32, "TYPE");
    array_.addField(DPT_FLOAT, "END");
    array_.addField(DPT_FLOAT, "SOLID");
    reset(settings);
}

double ChartObject::price(const Quote& q) const {
    if (!instrument().hasOhlc()) return q.close;
    switch (settings_.price) {
    case PriceField::Median:
        return (q.high + q.low) / 2;
    case PriceField::Typical:
        return (q.high + q.low + q.close) / 3;
    case PriceField::Close:
    default:
        return q.close;
    }
}

HeadNode ChartObject::headNode() const { return HeadNode{"CHARTTYPE", "TELVIX", chartTypeName(type_)}; }

void ChartObject::reset(const ChartSettings& settings) {
    settings_ = settings;
    array_.setColours(settings.rising, settings.falling);
    grid_ = gridFor(instrument(), settings.box);
    ProviderSettings p;
    p.box = grid_.ticks(settings.box);
    p.reversal = settings.reversal;
    p.percentHundredths = std::llround(settings.percent * 100);
    provider_ = makeProvider(type_, p);
    for (const Quote& q : instrument().quotes()) provider_->add(q.time, grid_.ticks(price(q)));
    records_.clear();
    sync();
}

bool ChartObject::takeQuote(const Quote& quote) {
    provider_->add(quote.time, grid_.ticks(price(quote)));
    if (provider_->dirtyFrom() >= provider_->figures().size()) return false;
    sync();
    return true;
}

fxChartTypeRecord ChartObject::record(const Figure& f) const {
    fxChartTypeRecord r;
    r.time = f.time;
    r.step = float(grid_.price(provider_->settings().box));
    r.value = float(grid_.price(f.low));
    r.type = f.rising ? 1 : 0;
    r.end = float(grid_.price(f.high));
    r.solid = type_ == ChartType::Kagi ? float(grid_.price(f.solid)) : 0.0f;
    return r;
}

void ChartObject::sync() {
    const std::vector<Figure>& figures = provider_->figures();
    const std::size_t from = std::min(provider_->dirtyFrom(), records_.size());
    records_.resize(figures.size());
    for (std::size_t i = from; i < figures.size(); ++i) records_[i] = record(figures[i]);
    provider_->markClean();
    array_.setPoints(records_.data(), records_.size());
}

}  // namespace data
}  // namespace host
