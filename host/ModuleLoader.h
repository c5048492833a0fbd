// Loads the module the way the terminal does: dlopen, then dlsym of the four entry points
// and of the skin's (a module without it still loads; the terminal then has no skins).
#pragma once

#include <string>

#include "abi/PFChartModuleAbi.h"

namespace host {

class ModuleLoader {
public:
    ~ModuleLoader() { unload(); }

    bool load(const std::string& path, std::string* error);
    void unload();
    bool loaded() const { return handle_ != nullptr; }

    GetModuleInfoFn getModuleInfo = nullptr;
    InitializeFn initialize = nullptr;
    ReceiveMessageFn receiveMessage = nullptr;
    GetModuleFn getModule = nullptr;
    LoadSkinFn loadSkin = nullptr;

private:
    void* handle_ = nullptr;
};

}  // namespace host
