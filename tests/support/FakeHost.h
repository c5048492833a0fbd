// A host callback for unit tests of module classes: records every message and answers
// through per-message handlers (default answer 1, "not handled"). The newest FakeHost alive
// receives the callbacks.
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

    FakeHost() : previous_(current()) { current() = this; }
    ~FakeHost() { current() = previous_; }

    static int Callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
        FakeHost* h = current();
        if (!h) return 1;
        h->calls_.push_back({target, message, p1, p2});
        auto it = h->handlers_.find(message);
        return it == h->handlers_.end() ? 1 : it->second(target, p1, p2);
    }
    HostCallback callback() const { return &FakeHost::Callback; }
    void* handle() const { return reinterpret_cast<void*>(std::intptr_t(0x100)); }

    // Gives a module this host's callback and handle, as the terminal's Initialize does.
    template <typename Module>
    void attach(Module& module) { module.InitializeWrap(callback(), callback(), handle(), nullptr); }
    void on(unsigned int message, Handler handler) { handlers_[message] = std::move(handler); }
    // Answers 0 to `message` after `fill` has been given the record its first parameter (or,
    // with `second`, its second parameter) points to.
    template <typename Record, typename Fill>
    void fill(unsigned int message, Fill fill, bool second = false) {
        on(message, [fill, second](void*, std::intptr_t p1, std::intptr_t p2) {
            fill(reinterpret_cast<Record*>(second ? p2 : p1));
            return 0;
        });
    }
    const std::vector<Call>& calls() const { return calls_; }
    std::vector<unsigned int> messages() const {
        std::vector<unsigned int> out;
        for (const Call& c : calls_) out.push_back(c.message);
        return out;
    }
    std::vector<Call> find(unsigned int message) const {
        std::vector<Call> out;
        for (const Call& c : calls_)
            if (c.message == message) out.push_back(c);
        return out;
    }
    void clear() { calls_.clear(); }

private:
    static FakeHost*& current() {
        static FakeHost* host = nullptr;
        return host;
    }

    std::map<unsigned int, Handler> handlers_;
    std::vector<Call> calls_;
    FakeHost* previous_;
};
