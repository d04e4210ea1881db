// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <emmintrin.h>

// Characters that a quoted SDL string can contain only as escapes: quotes, backslashes and control characters.

namespace escapes {

inline constexpr unsigned char kControlsEnd = ' ';
inline constexpr unsigned char kDelete = 0x7f;

constexpr bool IsNeeded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < kControlsEnd || byte == kDelete || byte == '"' || byte == '\\';
}

// Which of 16 characters need an escape: one bit for each, the first character's is the lowest.
inline unsigned AreNeeded(__m128i characters) {
    const auto each = [](unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
    const auto is = [=](unsigned char byte) { return _mm_cmpeq_epi8(characters, each(byte)); };
    const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(characters, each(kControlsEnd - 1)), characters);
    const __m128i other = _mm_or_si128(_mm_or_si128(is('"'), is('\\')), is(kDelete));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(control, other)));
}

} // namespace escapes
