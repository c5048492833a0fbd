// The Renko chart type as a window component.
#pragma once

#include "module/ChartInterface.h"

class RenkoChartInterface : public ChartInterface {
    Q_OBJECT
public:
    explicit RenkoChartInterface(PFChartModule* module);
    static const Traits& GetTypeTraits();
};
