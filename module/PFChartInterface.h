// The Point and Figure chart type as a window component.
#pragma once

#include "module/ChartInterface.h"

class PFChartInterface : public ChartInterface {
    Q_OBJECT
public:
    explicit PFChartInterface(PFChartModule* module);
    static const Traits& GetTypeTraits();
    // Registers like the others, then subscribes to the host's "DealingEvent".
    int AddInterface() override;
};
