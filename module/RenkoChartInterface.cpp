#include "module/RenkoChartInterface.h"

#include <cstring>

const ChartInterface::Traits& RenkoChartInterface::GetTypeTraits() {
    static const Traits traits = {1, "Renko", "Renko chart", ":/2.png", "PF0002"};
    return traits;
}

RenkoChartInterface::RenkoChartInterface(PFChartModule* module) : ChartInterface(module, GetTypeTraits()) {}

