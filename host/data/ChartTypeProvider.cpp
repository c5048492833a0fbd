#include "host/data/ChartTypeProvider.h"

#include "host/data/KagiProvider.h"
#include "host/data/PointFigureProvider.h"
#include "host/data/RenkoProvider.h"

namespace host {
namespace data {

ChartTypeProvider::ChartTypeProvider(const ProviderSettings& settings) : settings_(settings) {}

ChartTypeProvider::~ChartTypeProvider() = default;

Figure& ChartTypeProvider::changeBack() {
    if (dirtyFrom_ > figures_.size() - 1) dirtyFrom_ = figures_.size() - 1;
    return figures_.back();
}

std::unique_ptr<ChartTypeProvider> makeProvider(ChartType type, ProviderSettings settings) {
    if (settings.box < 1) settings.box = 1;
    if (settings.reversal < 1) settings.reversal = 1;
    if (settings.percentHundredths < 0) settings.percentHundredths = 0;
    switch (type) {
    case ChartType::PointAndFigure: return std::unique_ptr<ChartTypeProvider>(new PointFigureProvider(settings));
    case ChartType::Renko: return std::unique_ptr<ChartTypeProvider>(new RenkoProvider(settings));
    case ChartType::Kagi: return std::unique_ptr<ChartTypeProvider>(new KagiProvider(settings));
    }
    return nullptr;
}

}  // namespace data
}  // namespace host
