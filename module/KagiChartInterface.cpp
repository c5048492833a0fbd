#include "module/KagiChartInterface.h"

#include <cstring>

const ChartInterface::Traits& KagiChartInterface::GetTypeTraits() {
    static const Traits traits = {2, "Kagi", "Kagi chart", ":/3.png", "PF0003"};
    return traits;
}

KagiChartInterface::KagiChartInterface(PFChartModule* module) : ChartInterface(module, GetTypeTraits()) {}

