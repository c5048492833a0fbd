// The Kagi chart type as a window component.
#pragma once

#include "module/ChartInterface.h"

class KagiChartInterface : public ChartInterface {
    Q_OBJECT
public:
    explicit KagiChartInterface(PFChartModule* module);
    static const Traits& GetTypeTraits();
};
