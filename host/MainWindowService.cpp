#include "host/MainWindowService.h"

#include "host/Emulator.h"

namespace host {

MainWindowService::MainWindowService(Host& host, const std::string& workFolder) : host_(host), workFolder_(workFolder) {}

}  // namespace host
