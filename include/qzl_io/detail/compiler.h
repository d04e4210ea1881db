#pragma once

// What each compiler has a word of its own for. No other public header holds such a word.

// For an inline function whose calls are worth the place that they take.
#if defined(_MSC_VER)
#define QZL_IO_ALWAYS_INLINE __forceinline
#elif defined(__GNUC__)
#define QZL_IO_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define QZL_IO_ALWAYS_INLINE inline
#endif
