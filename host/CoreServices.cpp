#include "host/CoreServices.h"

#include "host/Emulator.h"

namespace host {

CoreServices::CoreServices(Host& host, const EmulatorOptions& options) : host_(host) {}

}  // namespace host
