// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <immintrin.h>
#include <string_view>

#include <qzl_io/detail/compiler.h>

#include "sdl/masks.h"

// The masks of a text with AVX2: 32 characters at a time, whose kinds are looked up.

namespace xSDL::avx2 {

// 16 bytes, twice: the processor looks up each half of 32 characters by itself.
struct alignas(32) eTable {
    std::array<unsigned char, 32> bytes{};

    constexpr void AddBits(std::size_t index, unsigned bits) {
        for (const std::size_t half : {0u, 16u})
            bytes[half + index] |= static_cast<unsigned char>(bits);
    }
};

// The bit that stands for the upper half of a character below 128.
constexpr unsigned BitOf(unsigned upperHalf) {
    return 1u << upperHalf;
}

inline constexpr eTable kUpperHalves = [] {
    eTable table;
    for (unsigned upperHalf = 0; upperHalf < 8; ++upperHalf)
        table.AddBits(upperHalf, BitOf(upperHalf));
    return table;
}();

// Characters below 128: for each lower half, the bits of the upper halves.
constexpr eTable SetOf(std::string_view characters) {
    eTable table;
    for (const char c : characters) {
        const auto code = static_cast<unsigned char>(c);
        table.AddBits(code & 15u, BitOf(code >> 4u));
    }
    return table;
}

inline constexpr eTable kBetween = SetOf(" =\t\n\r{}\"");
inline constexpr eTable kFirst = SetOf(std::string_view("\t\n\r{\"./0123456789\\\0", 19));
inline constexpr eTable kSecond = SetOf("}\"*+-./,");
inline constexpr eTable kHarmless = SetOf(" ={}\"*+-./0123456789_abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ");

QZL_IO_AVX2 QZL_IO_ALWAYS_INLINE __m256i Load(const void* at) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(at));
}

QZL_IO_AVX2 QZL_IO_ALWAYS_INLINE std::uint64_t At(int place, __m256i bytes) {
    return std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes))} << place;
}

// Where the characters are that do not belong to the set. A byte from 128 up finds no bits.
QZL_IO_AVX2 QZL_IO_ALWAYS_INLINE std::uint64_t OthersThan(const eTable& set, __m256i bytes, __m256i upperHalves,
                                                          int place) {
    const __m256i found = _mm256_and_si256(_mm256_shuffle_epi8(Load(&set), bytes), upperHalves);
    return At(place, _mm256_cmpeq_epi8(found, _mm256_setzero_si256()));
}

QZL_IO_ALWAYS_INLINE int CountBits(std::uint64_t word) {
    return std::popcount(word); // an instruction in functions with AVX2
}

// The masks of the 64 characters from `at` on.
QZL_IO_AVX2 QZL_IO_ALWAYS_INLINE eMasks FindMasks(const char* at) {
    eMasks others;
    std::uint64_t lineFeeds = 0;
    for (int place = 0; place < 64; place += 32) {
        const __m256i bytes = Load(at + place);
        const __m256i shifted = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), _mm256_set1_epi8(15));
        const __m256i upperHalves = _mm256_shuffle_epi8(Load(&kUpperHalves), shifted);
        others.between |= OthersThan(kBetween, bytes, upperHalves, place);
        others.first |= OthersThan(kFirst, bytes, upperHalves, place);
        others.second |= OthersThan(kSecond, bytes, upperHalves, place);
        others.harmless |= OthersThan(kHarmless, bytes, upperHalves, place);
        lineFeeds |= At(place, _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\n')));
    }
    return {~others.between, ~others.first, ~others.second, ~others.harmless,
            static_cast<std::size_t>(CountBits(lineFeeds))};
}

// From each opening quote to before the closing one; the first quote is an opening one.
QZL_IO_AVX2 QZL_IO_ALWAYS_INLINE std::uint64_t InsideQuotes(std::uint64_t quotes) {
    const __m128i all = _mm_set1_epi8(-1);
    const __m128i word = _mm_cvtsi64_si128(static_cast<std::int64_t>(quotes));
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_clmulepi64_si128(word, all, 0)));
}

} // namespace xSDL::avx2
