// The module's binary interface with the terminal.
//
// The terminal loads libPFChartModule.so.1 with dlopen and finds four unmangled C
// functions with dlsym. Nothing else is exported.
//
// Lifecycle, in the order the terminal drives it:
//   1. dlopen: the library's single module object is constructed.
//   2. GetModuleInfo(info): the module copies its 2315-byte MODULE_INFO into *info and
//      returns 0. A null pointer copies nothing and also returns 0.
//   3. Initialize(callback, callback2, handle, handle2): the module stores the two host
//      callbacks and the two host handles. No other work happens here.
//   4. ReceiveMessage(target, 3004, 0, 0): languages, fonts, date-time and log set up.
//   5. ReceiveMessage(target, 3007, 0, 0): built-in texts inserted into the host's
//      translation table, the three chart type interfaces registered (message 3000).
//   6. ReceiveMessage(target, 3066, 0, 0): dealing interfaces and accounts fetched.
//   7. Any messages, addressed either to the module or to a chart type interface (the
//      target is then the interface's address); see abi/messages.h.
//   8. dlclose: the module object is destroyed.
//
// ReceiveMessage never lets an exception out: a handler that throws answers 1.
// Every call happens on the terminal's GUI thread.
//
// Parameters are pointer-sized integers because they often carry record addresses; on the
// 32-bit terminal intptr_t is int and the signatures are exactly the terminal's.
#pragma once

#include <cstdint>

#include "abi/records/module_records.h"

// The host callback: (target, message, param1, param2) -> result, 0 usually success.
typedef int (*HostCallback)(void* target, unsigned int message, std::intptr_t param1,
                            std::intptr_t param2);

extern "C" {
typedef int (*GetModuleInfoFn)(MODULE_INFO* info);
typedef void (*InitializeFn)(HostCallback callback, HostCallback callback2, void* handle,
                             void* handle2);
typedef int (*ReceiveMessageFn)(void* target, unsigned int message, std::intptr_t param1,
                                std::intptr_t param2);
typedef void* (*GetModuleFn)();
}

// Names the terminal looks up with dlsym.
#define PF_SYMBOL_GET_MODULE_INFO "GetModuleInfo"
#define PF_SYMBOL_INITIALIZE "Initialize"
#define PF_SYMBOL_RECEIVE_MESSAGE "ReceiveMessage"
#define PF_SYMBOL_GET_MODULE "GetModule"
