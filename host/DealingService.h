// The emulated terminal's dealing interfaces: accounts (16000/16001), day-off tables (16026/16027) and their events.
#pragma once

#include <string>

#include "host/Host.h"

namespace host {

struct EmulatorOptions;

class DealingService {
public:
    explicit DealingService(Host& host);

private:
    Host& host_;
};

}  // namespace host
