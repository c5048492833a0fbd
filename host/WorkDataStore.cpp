#include "host/WorkDataStore.h"

#include "host/Emulator.h"

namespace host {

WorkDataStore::WorkDataStore(Host& host) : host_(host) {}

}  // namespace host
