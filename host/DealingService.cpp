#include "host/DealingService.h"

#include "host/Emulator.h"

namespace host {

DealingService::DealingService(Host& host) : host_(host) {}

}  // namespace host
