#include "host/DataCore.h"

#include "host/Emulator.h"

namespace host {

DataCore::DataCore(Host& host) : host_(host) {}

}  // namespace host
