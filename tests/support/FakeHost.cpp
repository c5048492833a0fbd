#include "FakeHost.h"

namespace {
FakeHost* g_fake = nullptr;
}

FakeHost::FakeHost() : previous_(g_fake) { g_fake = this; }

FakeHost::~FakeHost() { g_fake = previous_; }

int FakeHost::Callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    if (!g_fake) return 1;
    g_fake->calls_.push_back({target, message, p1, p2});
    auto it = g_fake->handlers_.find(message);
    return it == g_fake->handlers_.end() ? 1 : it->second(target, p1, p2);
}

std::vector<unsigned int> FakeHost::messages() const {
    std::vector<unsigned int> out;
    for (const Call& c : calls_) out.push_back(c.message);
    return out;
}

std::vector<FakeHost::Call> FakeHost::find(unsigned int message) const {
    std::vector<Call> out;
    for (const Call& c : calls_)
        if (c.message == message) out.push_back(c);
    return out;
}
