// The emulated terminal's core services: interface registry and look-up (3000-3002), translation table (3019), events (3110-3114), languages (3116/3117), log sink (3205), date functions (3207).
#pragma once

#include <string>

#include "host/Host.h"

namespace host {

struct EmulatorOptions;

class CoreServices {
public:
    explicit CoreServices(Host& host, const EmulatorOptions& options);

private:
    Host& host_;
};

}  // namespace host
