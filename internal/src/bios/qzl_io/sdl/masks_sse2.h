// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "sdl/masks.h"
#include "sdl/scan.h"

// The masks of a text with the instructions that every processor has: 16 characters at a time.

namespace xSDL::sse2 {

inline std::uint64_t At(int place, __m128i bytes) {
    return std::uint64_t{Mask(bytes)} << place;
}

QZL_IO_ALWAYS_INLINE void AddMasks(const char* at, int place, eMasks* masks, __m128i* lineFeeds) {
    const __m128i bytes = Load16(at);
    const __m128i feed = Is(bytes, '\n');
    const __m128i otherBlank = Or(feed, Is(Or(bytes, Each('\t' ^ '\r')), '\r'));
    const __m128i quote = Is(bytes, '"');
    const __m128i end = Is(bytes, '}');
    const __m128i startOrQuote = Or(Is(bytes, '{'), quote);
    const __m128i pointOrDigit = IsFrom(bytes, '.', '9');
    const __m128i operators = IsFrom(bytes, '*', '/');
    const __m128i gap = Or(Or(Is(bytes, ' '), Is(bytes, '=')), Or(startOrQuote, end));
    const __m128i word = Or(IsLetter(bytes), Or(pointOrDigit, operators));
    const __m128i endsString = Or(otherBlank, Or(Is(bytes, 0), Is(bytes, '\\')));
    *lineFeeds = _mm_sub_epi8(*lineFeeds, feed);
    masks->between |= At(place, Or(gap, otherBlank));
    masks->first |= At(place, Or(Or(pointOrDigit, startOrQuote), endsString));
    masks->second |= At(place, Or(operators, Or(quote, end)));
    masks->harmless |= At(place, _mm_andnot_si128(Is(bytes, ','), Or(gap, word)));
}

// The masks of the 64 characters from `at` on.
QZL_IO_ALWAYS_INLINE eMasks FindMasks(const char* at) {
    eMasks masks;
    __m128i lineFeeds = _mm_setzero_si128();
    for (int place = 0; place < 64; place += 16)
        AddMasks(at + place, place, &masks, &lineFeeds);
    masks.lineFeeds = SumOfBytes(lineFeeds);
    return masks;
}

// From each opening quote to before the closing one; the first quote is an opening one.
inline std::uint64_t InsideQuotes(std::uint64_t quotes) {
    quotes ^= quotes << 1;
    quotes ^= quotes << 2;
    quotes ^= quotes << 4;
    quotes ^= quotes << 8;
    quotes ^= quotes << 16;
    return quotes ^ (quotes << 32);
}

} // namespace xSDL::sse2
