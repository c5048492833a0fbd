// The emulated terminal's main window interface: window id (3502), work folder (3503), change notices (5008).
#pragma once

#include <string>

#include "host/Host.h"

namespace host {

struct EmulatorOptions;

class MainWindowService {
public:
    explicit MainWindowService(Host& host, const std::string& workFolder);

private:
    Host& host_;
    std::string workFolder_;
};

}  // namespace host
