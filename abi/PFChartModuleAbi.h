// The module's binary interface with the terminal.
//
// The terminal loads libPFChartModule.so.1 with dlopen and finds four unmangled C
// functions with dlsym, and a fifth for its skin (LoadSkin, below). Nothing else is
// exported.
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
// ReceiveMessage never lets an exception out: a handler that throws answers 1. A number
// the module does not handle does nothing and answers 0, whatever its parameters are.
// Every call happens on the terminal's GUI thread.
//
// LoadSkin(path): the terminal's skin changed. Skins have an entry point of their own, so
// that no message number of the terminal's can ever be taken for one. Callable any time
// after Initialize (the document is opened through the host callback, 3163 and 3164):
//   - path: a UTF-16 text ending in 0 within its first 255 units. Null or empty: the
//     module's built-in look.
//   - A text without a terminator within 255 units is not read past them: refused, the
//     skin left as it is, logged.
//   - Any other path first resets the built-in look, then reads the document; a path over
//     254 units, a document the host does not open or one without a "MainWindow" root
//     keeps the built-in look and is logged ("Skin not read ...").
//   - Every open chart window is restyled, and windows made later start in the new look.
//   - Answer: 0 when a document was read or the built-in look asked for, 1 otherwise.
//     Nothing thrown gets out (the answer is 1 then).
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
typedef int (*LoadSkinFn)(const std::uint16_t* path);
}

// Names the terminal looks up with dlsym.
#define PF_SYMBOL_GET_MODULE_INFO "GetModuleInfo"
#define PF_SYMBOL_INITIALIZE "Initialize"
#define PF_SYMBOL_RECEIVE_MESSAGE "ReceiveMessage"
#define PF_SYMBOL_GET_MODULE "GetModule"
#define PF_SYMBOL_LOAD_SKIN "LoadSkin"
