// SPDX-License-Identifier: BSL-1.0
#pragma once

// Attributes that each compiler spells in its own way. No other public header contains such a word.

// For an inline function that is worth its size at every call.
#if defined(_MSC_VER)
#define QZL_IO_ALWAYS_INLINE __forceinline
#elif defined(__GNUC__)
#define QZL_IO_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define QZL_IO_ALWAYS_INLINE inline
#endif

// For a function that would only make its callers larger.
#if defined(_MSC_VER)
#define QZL_IO_NOINLINE __declspec(noinline)
#elif defined(__GNUC__)
#define QZL_IO_NOINLINE __attribute__((noinline))
#else
#define QZL_IO_NOINLINE
#endif

// For a function that may use the instructions of AVX2, BMI1, PCLMUL and POPCNT. Only processors that have these can
// call it. Functions that are always inlined, and so not called, become part of it.
#if defined(__GNUC__)
#define QZL_IO_AVX2 __attribute__((target("avx2,bmi,pclmul,popcnt")))
#else
#define QZL_IO_AVX2
#endif
