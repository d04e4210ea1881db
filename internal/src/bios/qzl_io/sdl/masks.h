// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "sdl/scan.h"

// 64 characters of an SDL text as the bits of 64-bit words; the first character is the lowest bit.

namespace xSDL {

// Where the characters of each kind are. Four bits tell the kinds apart:
//
//                           between  first  second  harmless
//     space, =                 x                       x
//     other blanks             x       x
//     {                        x       x               x
//     }                        x              x        x
//     "                        x       x      x        x
//     digit                            x               x
//     * + -                                   x        x
//     . /                              x      x        x
//     letter, _                                        x
//     zero, backslash                  x
//     comma                                   x
//     any other
class eMasks {
public:
    // The masks of the 64 characters from `at` on.
    explicit eMasks(const char* at) {
        Add(at, 0);
        Add(at + 16, 16);
        Add(at + 32, 32);
        Add(at + 48, 48);
    }

    std::uint64_t Quotes() const { return between & first & second; }
    std::uint64_t Starts() const { return between & harmless & first & ~second; }
    std::uint64_t Ends() const { return between & second & ~first; }
    // Blanks, braces and quotes, which end whatever comes before them.
    std::uint64_t Between() const { return between; }
    // Digits, and operators of one character.
    std::uint64_t Numbers() const { return (first ^ second) & harmless & ~between; }
    std::uint64_t Digits() const { return Numbers() & first; }
    // Points, and slashes.
    std::uint64_t Points() const { return first & second & ~between; }
    // Characters that end a plain string, where `inside` marks one, and elsewhere characters with a meaning other than
    // the kinds above.
    std::uint64_t Stops(std::uint64_t inside) const { return ~harmless & ((inside & first) | ~(inside | between)); }
    // The number of line feeds, in two parts.
    __m128i LineFeeds() const { return _mm_sad_epu8(lineFeeds, _mm_setzero_si128()); }

private:
    QZL_IO_ALWAYS_INLINE void Add(const char* at, int place) {
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
        lineFeeds = _mm_sub_epi8(lineFeeds, feed);
        between |= At(place, Or(gap, otherBlank));
        first |= At(place, Or(Or(pointOrDigit, startOrQuote), endsString));
        second |= At(place, Or(operators, Or(quote, end)));
        harmless |= At(place, _mm_andnot_si128(Is(bytes, ','), Or(gap, word)));
    }

    static std::uint64_t At(int place, __m128i bytes) { return std::uint64_t{Mask(bytes)} << place; }

    std::uint64_t between = 0;
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::uint64_t harmless = 0;
    __m128i lineFeeds = _mm_setzero_si128();
};

// From each opening quote to before the closing one; the first quote is an opening one.
inline std::uint64_t InsideQuotes(std::uint64_t quotes) {
    quotes ^= quotes << 1;
    quotes ^= quotes << 2;
    quotes ^= quotes << 4;
    quotes ^= quotes << 8;
    quotes ^= quotes << 16;
    return quotes ^ (quotes << 32);
}

// The number of bits set in each of two words.
struct eBitCounts {
    int ofFirst;
    int ofSecond;
};

inline eBitCounts CountBits(std::uint64_t first, std::uint64_t second) {
    __m128i bits = _mm_unpacklo_epi64(_mm_cvtsi64_si128(static_cast<std::int64_t>(first)),
                                      _mm_cvtsi64_si128(static_cast<std::int64_t>(second)));
    bits = _mm_sub_epi8(bits, _mm_and_si128(_mm_srli_epi16(bits, 1), Each(0x55)));
    bits = _mm_add_epi8(_mm_and_si128(bits, Each(0x33)), _mm_and_si128(_mm_srli_epi16(bits, 2), Each(0x33)));
    bits = _mm_and_si128(_mm_add_epi8(bits, _mm_srli_epi16(bits, 4)), Each(0x0F));
    const __m128i sums = _mm_sad_epu8(bits, _mm_setzero_si128());
    return {_mm_cvtsi128_si32(sums), _mm_extract_epi16(sums, 4)};
}

} // namespace xSDL
