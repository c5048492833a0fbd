// The emulated terminal's data core: instruments from CSV price files and the chart-type providers (3008, 3012-3014, 3042, 3043).
#pragma once

#include <string>

#include "host/Host.h"

namespace host {

struct EmulatorOptions;

class DataCore {
public:
    explicit DataCore(Host& host);

private:
    Host& host_;
};

}  // namespace host
