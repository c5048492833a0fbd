// A host callback for unit tests of module classes: records every message and answers
// through per-message handlers (default answer 1, "not handled").
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "abi/PFChartModuleAbi.h"

class FakeHost {
public:
    struct Call {
        void* target;
        unsigned int message;
        std::intptr_t p1;
        std::intptr_t p2;
    };
    using Handler = std::function<int(void* target, std::intptr_t p1, std::intptr_t p2)>;

    FakeHost();
    ~FakeHost();

    static int Callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2);
    HostCallback callback() const { return &FakeHost::Callback; }
    void* handle() const { return reinterpret_cast<void*>(std::intptr_t(0x100)); }

    void on(unsigned int message, Handler handler) { handlers_[message] = std::move(handler); }
    const std::vector<Call>& calls() const { return calls_; }
    std::vector<unsigned int> messages() const;
    std::vector<Call> find(unsigned int message) const;
    void clear() { calls_.clear(); }

private:
    std::map<unsigned int, Handler> handlers_;
    std::vector<Call> calls_;
    FakeHost* previous_;
};
