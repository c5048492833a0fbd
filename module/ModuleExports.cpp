// The library's exported entry points and its single module object.
#include "abi/PFChartModuleAbi.h"
#include "module/PFChartModule.h"

#define PF_EXPORT extern "C" __attribute__((visibility("default")))

// Constructed when the library is loaded, destroyed when it is unloaded.
static PFChartModule module;

PF_EXPORT int GetModuleInfo(MODULE_INFO* info) {
    if (!info) return 0;
    try {
        return module.GetModuleInfoWrap(info);
    } catch (...) {
        return 0;
    }
}

PF_EXPORT void Initialize(HostCallback callback, HostCallback callback2, void* handle,
                          void* handle2) {
    module.InitializeWrap(callback, callback2, handle, handle2);
}

PF_EXPORT int ReceiveMessage(void* target, unsigned int message, std::intptr_t param1,
                             std::intptr_t param2) {
    return module.ReceiveMessageWrap(target, message, param1, param2);
}

PF_EXPORT void* GetModule() { return &module; }

PF_EXPORT int LoadSkin(const std::uint16_t* path) {
    try {
        return module.LoadSkinFromHost(path);
    } catch (...) {
        return 1;
    }
}
