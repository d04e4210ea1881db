// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

#include <qzl_io/detail/compiler.h>

#include "qzl_base/shared/powers_of_ten.h"

// Runs of characters in an SDL text, found 16 at a time. Every function may read up to kTextEnd bytes from any
// character of the text on, including its terminating zero, so a text ends with that many zeros.

namespace xSDL {

// 64 characters at a time, and 16 from the last of them on.
inline constexpr std::size_t kTextEnd = 80;

inline __m128i Load16(const char* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

inline std::uint64_t Load8(const char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

inline std::uint32_t Load4(const char* at) {
    std::uint32_t word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

// The first characters of a text, at most eight, as one number. Different texts of one length give different numbers.
// Reads nothing past the text.
inline std::uint64_t LoadUpTo8(const char* at, std::size_t length) {
    if (length >= 8)
        return Load8(at);
    if (length >= 4)
        return Load4(at) | (static_cast<std::uint64_t>(Load4(at + length - 4)) << 32);
    if (length == 0)
        return 0;
    const auto byte = [at](std::size_t index) {
        return static_cast<std::uint64_t>(static_cast<unsigned char>(at[index]));
    };
    return byte(0) | (byte(length / 2) << 8) | (byte(length - 1) << 16);
}

inline __m128i Each(int byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}
inline __m128i Is(__m128i bytes, int byte) {
    return _mm_cmpeq_epi8(bytes, Each(byte));
}
// Marks bytes from `first` to `last`, as unsigned numbers.
inline __m128i IsFrom(__m128i bytes, int first, int last) {
    const __m128i shifted = _mm_add_epi8(bytes, Each(127 - last));
    return _mm_cmpgt_epi8(shifted, Each(126 - last + first));
}
inline __m128i Or(__m128i a, __m128i b) {
    return _mm_or_si128(a, b);
}
inline unsigned Mask(__m128i bytes) {
    return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

inline __m128i IsLetter(__m128i bytes) {
    return Or(IsFrom(Or(bytes, Each(0x20)), 'a', 'z'), Is(bytes, '_'));
}
inline __m128i IsDigit(__m128i bytes) {
    return IsFrom(bytes, '0', '9');
}
inline __m128i IsBlank(__m128i bytes) {
    return Or(Or(Is(bytes, ' '), Is(bytes, '=')), Or(IsFrom(bytes, '\t', '\n'), Is(bytes, '\r')));
}

// The first character from `at` on for which `Test` (over 16 bytes) is false; it must be false for the terminating
// zero.
template <class Test>
inline const char* PassWhile(const char* at, Test test) {
    for (;; at += 16)
        if (const unsigned other = Mask(test(Load16(at))) ^ 0xFFFFu)
            return at + std::countr_zero(other);
}

inline __m128i IsInIdent(__m128i bytes) {
    return Or(IsLetter(bytes), IsDigit(bytes));
}

inline const char* PassIdent(const char* at) {
    return PassWhile(at, IsInIdent);
}

inline const char* PassMark(const char* at) {
    return PassWhile(at, [](__m128i bytes) {
        const __m128i signs = Or(Is(bytes, '+'), Is(bytes, '-'));
        return Or(Or(IsLetter(bytes), IsDigit(bytes)), Or(Is(bytes, '#'), signs));
    });
}

// Returns the end of the line or of the text.
inline const char* PassComment(const char* at) {
    for (;; at += 16) {
        const __m128i bytes = Load16(at);
        if (const unsigned end = Mask(Or(Or(Is(bytes, '\n'), Is(bytes, '\r')), Is(bytes, 0))))
            return at + std::countr_zero(end);
    }
}

inline bool IsWithinString(char c) {
    return (c > 0 && c <= '\t') || c == '\v' || c == '\f';
}

// Returns the next quote, backslash, or end of the line or of the text.
inline const char* PassStringBody(const char* at) {
    for (;; at += 16) {
        const __m128i bytes = Load16(at);
        const __m128i control = IsFrom(bytes, 0, '\r');
        unsigned found = Mask(Or(control, Or(Is(bytes, '"'), Is(bytes, '\\'))));
        for (; found; found &= found - 1) {
            const char* const stop = at + std::countr_zero(found);
            if (!IsWithinString(*stop))
                return stop;
        }
    }
}

// The line number that many lines on. A text may have more lines than an int can count; the number then continues from
// the smallest int.
constexpr int LinesOn(int line, std::size_t by) {
    return static_cast<int>(static_cast<unsigned>(line) + static_cast<unsigned>(by));
}

// Passes 16 characters or, if not all are blanks, those before the first other one. Counts their line feeds.
QZL_IO_ALWAYS_INLINE bool PassBlankBlock(const char** at, int* line) {
    const __m128i bytes = Load16(*at);
    const unsigned others = Mask(IsBlank(bytes)) ^ 0xFFFFu;
    for (unsigned feeds = Mask(Is(bytes, '\n')) & (others ^ (others - 1)); feeds; feeds &= feeds - 1)
        *line = LinesOn(*line, 1);
    *at += std::countr_zero(others | 0x10000u);
    return others == 0;
}

// Passes blanks and counts their line feeds.
inline const char* PassBlanks(const char* at, int* line) {
    while (PassBlankBlock(&at, line)) {
    }
    return at;
}

// The sum of 16 bytes.
inline std::size_t SumOfBytes(__m128i bytes) {
    const __m128i halves = _mm_sad_epu8(bytes, _mm_setzero_si128());
    return static_cast<std::size_t>(_mm_cvtsi128_si64(halves)) +
           static_cast<std::size_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(halves, halves)));
}

inline std::size_t CountLineFeeds(const char* begin, const char* end) {
    std::size_t count = 0;
    while (end - begin >= 16) {
        const std::ptrdiff_t blocks = (end - begin) / 16 < 255 ? (end - begin) / 16 : 255;
        __m128i sums = _mm_setzero_si128();
        for (std::ptrdiff_t block = 0; block < blocks; ++block, begin += 16)
            sums = _mm_sub_epi8(sums, Is(Load16(begin), '\n'));
        count += SumOfBytes(sums);
    }
    if (begin < end) {
        const unsigned left = (1u << (end - begin)) - 1;
        for (unsigned feeds = Mask(Is(Load16(begin), '\n')) & left; feeds; feeds &= feeds - 1)
            ++count;
    }
    return count;
}

// The highest bit of each of the eight characters that is not a digit.
inline std::uint64_t OtherThanDigits(std::uint64_t characters) {
    const std::uint64_t values = characters ^ 0x3030303030303030u;
    return ((values + 0x7676767676767676u) | values) & 0x8080808080808080u;
}

// The number that eight digits form.
inline std::uint64_t DigitsToNumber(std::uint64_t characters) {
    std::uint64_t value = characters & 0x0F0F0F0F0F0F0F0Fu;
    value = (value * 2561) >> 8;
    value = ((value & 0x00FF00FF00FF00FFu) * 6553601) >> 16;
    return ((value & 0x0000FFFF0000FFFFu) * 42949672960001u) >> 32;
}

// Passes digits and appends their number to *value, modulo 2^64.
inline const char* PassDigits(const char* at, unsigned long long* value) {
    for (;;) {
        const std::uint64_t characters = Load8(at);
        if (const std::uint64_t others = OtherThanDigits(characters)) [[likely]] {
            const int bits = std::countr_zero(others) & ~7; // of the digits before the first other character
            if (bits == 0)
                return at;
            *value = *value * decimal::kPowersOfTen<std::uint64_t, 8>[static_cast<std::size_t>(bits / 8)] +
                     DigitsToNumber(characters << (64 - bits));
            return at + bits / 8;
        }
        *value = *value * 100000000 + DigitsToNumber(characters);
        at += 8;
    }
}

// Keeps the digits of the last characters, at most 16, as their values.
inline __m128i KeepLast(unsigned count) {
    alignas(16) static constexpr std::array<unsigned char, 32> kKeep = [] {
        std::array<unsigned char, 32> keep{};
        std::fill(keep.begin() + 16, keep.end(), static_cast<unsigned char>(0x0F));
        return keep;
    }();
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(kKeep.data() + count));
}

// The number that 16 digits form, given as their values.
inline std::uint64_t NumberOf(__m128i ones) {
    const __m128i pairs = _mm_srli_epi16(_mm_mullo_epi16(ones, _mm_set1_epi16(10 << 8 | 1)), 8);
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
    const __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
    const auto halves = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return (halves & 0xFFFFFFFFu) * 100000000 + (halves >> 32);
}

// The number that the digits before `end` form, at most 16 of them. Reads the 16 bytes before `end`.
inline std::uint64_t DigitsBefore(const char* end, unsigned count) {
    return NumberOf(_mm_and_si128(Load16(end - 16), KeepLast(count)));
}

// Likewise with a point before the last digits, which does not count. Reads the 17 bytes before `end`.
inline std::uint64_t DigitsBefore(const char* end, unsigned count, unsigned decimals) {
    const __m128i fraction = KeepLast(decimals);
    const __m128i whole = _mm_andnot_si128(fraction, KeepLast(count));
    return NumberOf(Or(_mm_and_si128(Load16(end - 16), fraction), _mm_and_si128(Load16(end - 17), whole)));
}

} // namespace xSDL
