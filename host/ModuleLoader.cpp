#include "host/ModuleLoader.h"

#include <dlfcn.h>

namespace host {

bool ModuleLoader::load(const std::string& path, std::string* error) {
    unload();
    handle_ = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        if (error) *error = dlerror();
        return false;
    }
    getModuleInfo = reinterpret_cast<GetModuleInfoFn>(dlsym(handle_, PF_SYMBOL_GET_MODULE_INFO));
    initialize = reinterpret_cast<InitializeFn>(dlsym(handle_, PF_SYMBOL_INITIALIZE));
    receiveMessage = reinterpret_cast<ReceiveMessageFn>(dlsym(handle_, PF_SYMBOL_RECEIVE_MESSAGE));
    getModule = reinterpret_cast<GetModuleFn>(dlsym(handle_, PF_SYMBOL_GET_MODULE));
    loadSkin = reinterpret_cast<LoadSkinFn>(dlsym(handle_, PF_SYMBOL_LOAD_SKIN));
    if (!getModuleInfo || !initialize || !receiveMessage) {
        if (error) *error = "module lacks an entry point: " + path;
        unload();
        return false;
    }
    return true;
}

void ModuleLoader::unload() {
    if (handle_) dlclose(handle_);
    handle_ = nullptr;
    getModuleInfo = nullptr;
    initialize = nullptr;
    receiveMessage = nullptr;
    getModule = nullptr;
    loadSkin = nullptr;
}

}  // namespace host
