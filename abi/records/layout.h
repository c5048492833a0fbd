// Helpers for pinning the layout of host records.
//
// Host records are packed little-endian wire formats exchanged by pointer with the
// terminal. The terminal is a 32-bit x86 process, so the sizes and offsets that matter
// are the 32-bit ones: PF_LAYOUT32 checks them only when pointers are 4 bytes wide.
// On 64-bit builds pointer and handle fields widen to 8 bytes in place and every later
// field shifts; PF_LAYOUT64 pins those widened figures so that padding never creeps in.
//
// This header and every record header must stay free of Qt and of anything that needs
// a 32-bit library: CI compiles abi/layout_check.cpp with `g++ -m32 -fsyntax-only`.
#pragma once

#include <cstddef>
#include <cstdint>

#if INTPTR_MAX == INT32_MAX
#define PF_ABI_32 1
#define PF_LAYOUT32(expr) static_assert(expr, #expr)
#define PF_LAYOUT64(expr)
#else
#define PF_ABI_32 0
#define PF_LAYOUT32(expr)
#define PF_LAYOUT64(expr) static_assert(expr, #expr)
#endif

// 16-bit character as the host stores wide strings (UTF-16 code units, little-endian).
typedef std::uint16_t coreWChar;
