// The emulated terminal: loads libPFChartModule.so.1 with dlopen exactly as the terminal
// does, hands it the host callback, drives its start-up and answers its messages.
//
// Services (core, data core, work-data store, main window, dealing ...) register one
// handler per message number with `on`. The host callback looks the handler up, records
// the exchange in the journal and returns the handler's answer; a message nobody handles
// answers 1 ("not handled").
//
// Handles given to the module are small integers made by `newHandle`, never addresses,
// so they survive the 32-bit words of the host records and can be checked.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "abi/PFChartModuleAbi.h"
#include "abi/records.h"
#include "host/Journal.h"

namespace host {

class ModuleLoader;

class Host {
public:
    // target, param1, param2, detail (text for the journal) -> result
    using Handler = std::function<int(void* target, std::intptr_t p1, std::intptr_t p2,
                                      std::string& detail)>;

    Host();
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    // The host the callback reaches: the most recently constructed one still alive.
    static Host* current();
    // The callback handed to the module at Initialize.
    static int callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2);

    void on(unsigned int message, Handler handler);
    bool handles(unsigned int message) const;
    // The handler registered for `message` (empty when none is), and every number that has
    // one: a test can wrap a service's answers without knowing the service.
    Handler handler(unsigned int message) const;
    std::vector<unsigned int> handledMessages() const;

    // A new handle, unique in this host, that fits in 32 bits.
    void* newHandle();
    void* coreHandle() const { return coreHandle_; }
    void* coreHandle2() const { return coreHandle2_; }

    // Interfaces the module can find with 3001/3002 (kind, provider, name).
    struct Interface {
        std::string kind;
        std::string provider;
        std::string name;
        void* handle;
    };
    void addInterface(const Interface& iface);
    std::vector<Interface> findInterfaces(const std::string& kind, const std::string& provider,
                                          const std::string& name) const;
    const std::vector<Interface>& interfaces() const { return interfaces_; }

    // Module lifecycle.
    bool load(const std::string& path, std::string* error = nullptr);
    void unload();
    bool loaded() const;
    int getModuleInfo(MODULE_INFO* info);
    void initialize();
    // 3004, 3007 and 3066 in that order, as the terminal starts a module.
    void startUp();
    // Sends a message to the module through ReceiveMessage and journals it.
    int send(void* target, unsigned int message, std::intptr_t p1 = 0, std::intptr_t p2 = 0,
             const std::string& detail = std::string());

    // Calls the module's LoadSkin entry point with `path` (UTF-16, NUL-terminated) and
    // journals it as an entry-point call ("LoadSkin" and `detail`); 1 when the module has
    // no such entry point.
    int loadSkin(const std::uint16_t* path, const std::string& detail = std::string());

    Journal& journal() { return journal_; }
    const Journal& journal() const { return journal_; }

private:
    int dispatch(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2);

    std::unique_ptr<ModuleLoader> loader_;
    std::map<unsigned int, Handler> handlers_;
    std::vector<Interface> interfaces_;
    Journal journal_;
    std::uintptr_t nextHandle_ = 0x1000;
    void* coreHandle_ = nullptr;
    void* coreHandle2_ = nullptr;
    Host* previous_ = nullptr;
};

}  // namespace host
