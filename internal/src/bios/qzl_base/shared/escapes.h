#pragma once

#include <emmintrin.h>

// What cannot stand in a quoted string of SDL as it is: quotes, back slashes and control characters.
namespace escapes {

inline constexpr unsigned char kControlsEnd = ' ';
inline constexpr unsigned char kDelete = 0x7f;

constexpr bool IsNeeded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < kControlsEnd || byte == kDelete || byte == '"' || byte == '\\';
}

// The same of 16 characters: a bit for each of them, the first one's lowest.
inline unsigned AreNeeded(__m128i characters) {
    const auto each = [](unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); };
    const auto is = [=](unsigned char byte) { return _mm_cmpeq_epi8(characters, each(byte)); };
    const __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(characters, each(kControlsEnd - 1)), characters);
    const __m128i other = _mm_or_si128(_mm_or_si128(is('"'), is('\\')), is(kDelete));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(control, other)));
}

} // namespace escapes
