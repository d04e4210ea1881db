// SPDX-License-Identifier: BSL-1.0
// Declarations that cpprestsdk expects on Windows and MinGW-w64 lacks.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <winsock2.h>

#include <windows.h>

#include <crtdbg.h>
#include <intrin.h>
#include <malloc.h>

#include <cassert>

#undef _ASSERTE
#define _ASSERTE(condition) assert(condition)

#undef C_ASSERT
#define C_ASSERT(condition) static_assert(condition, #condition)

#undef __assume
#define __assume(condition) ((condition) ? static_cast<void>(0) : __builtin_unreachable())

namespace qzl_cpprest {
// The double nearest to the number at the start of a text, whatever the locale: an infinity where it is too large, zero
// where it is too small or where there is no number.
double ToDouble(const char* text);
double ToDouble(const wchar_t* text);
} // namespace qzl_cpprest
