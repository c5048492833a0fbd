#include "module/PFChartInterface.h"

#include <cstring>

const ChartInterface::Traits& PFChartInterface::GetTypeTraits() {
    static const Traits traits = {0, "Points and Figures", "PF chart", ":/1.png", "PF0001"};
    return traits;
}

PFChartInterface::PFChartInterface(PFChartModule* module) : ChartInterface(module, GetTypeTraits()) {}

int PFChartInterface::AddInterface() {
    const int result = ChartInterface::AddInterface();
    if (!sendToHost) return result;
    coreEventSubscribe record;
    std::memset(&record, 0, sizeof record);
    std::strncpy(record.name, "DealingEvent", sizeof record.name - 1);
    record.subscriberId = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(GetHostHandle()));
    record.object = this;
    record.last = -1;
    sendToHost(hostHandle, MSG_EVENT_SUBSCRIBE, reinterpret_cast<std::intptr_t>(&record), 0);
    return result;
}

