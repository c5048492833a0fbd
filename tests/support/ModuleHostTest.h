// A test fixture that plays the terminal: the emulator with the real libPFChartModule.so.1
// loaded through dlopen, and helpers to read the journal of the exchange. For the test
// programs that link the emulator (integration tests, the Xvfb test).
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/Emulator.h"

class ModuleHostTest : public ::testing::Test {
protected:
    // Loads the module as the terminal does (GetModuleInfo, Initialize).
    void Load(host::EmulatorOptions options = host::EmulatorOptions()) {
        options.modulePath = PF_MODULE_PATH;
        emulator.reset(new host::Emulator(options));
        std::string error;
        ASSERT_TRUE(emulator->loadModule(&error)) << error;
    }
    // Load, then the start-up messages 3004, 3007 and 3066.
    void Start(host::EmulatorOptions options = host::EmulatorOptions()) {
        Load(options);
        if (emulator) emulator->startUp();
    }
    host::Host& H() { return emulator->host(); }

    // Messages the module sent to the host while it handled the host's message at `index`.
    std::vector<host::Journal::Entry> SentDuring(std::size_t index) {
        std::vector<host::Journal::Entry> out;
        const auto& all = H().journal().entries();
        for (std::size_t i = index + 1; i < all.size() && all[i].direction == host::Journal::ToHost; ++i)
            out.push_back(all[i]);
        return out;
    }
    // Where the host last sent `message` to the module; the journal's size when it never did.
    std::size_t LastIndexOf(unsigned int message) {
        const auto& all = H().journal().entries();
        for (std::size_t i = all.size(); i-- > 0;)
            if (all[i].direction == host::Journal::ToModule && all[i].message == message) return i;
        return all.size();
    }
    static std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

    std::unique_ptr<host::Emulator> emulator;
};
