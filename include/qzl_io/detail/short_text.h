// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/export.h>

// Copies of a text's characters in words that may overlap, for any length. Only the text's own characters are read, and
// only their places are written.

namespace IO::ShortText {

inline constexpr std::size_t kLongest = 64;

template <class Word>
Word Load(const char* from) noexcept {
    Word word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

// Whether one of the bytes is zero. If all are ASCII, the first of the two tests decides.
template <class Word>
bool HasZero(Word one, Word other) noexcept {
    constexpr auto kLowest = static_cast<Word>(static_cast<Word>(~Word{0}) / 255);
    constexpr auto kHighest = static_cast<Word>(kLowest << 7);
    const auto oneLess = static_cast<Word>(one - kLowest);
    const auto otherLess = static_cast<Word>(other - kLowest);
    return ((oneLess | otherLess) & kHighest) != 0 && (((oneLess & ~one) | (otherLess & ~other)) & kHighest) != 0;
}

// Copies n characters, from sizeof(Word) to twice as many. False, with nothing written, if one of them is NUL.
template <class Word>
QZL_IO_ALWAYS_INLINE bool CopyEnds(unsigned char* to, const char* from, std::size_t n) noexcept {
    const Word first = Load<Word>(from);
    const Word last = Load<Word>(from + n - sizeof last);
    if (HasZero(first, last)) [[unlikely]]
        return false;
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + n - sizeof last, &last, sizeof last);
    return true;
}

// CopyEnds for 16 characters up to kLongest.
inline bool CopyPieces(unsigned char* to, const char* from, std::size_t n) noexcept {
    const std::size_t last = n - 16;
    const auto hasZero = [from](std::size_t at) {
        return HasZero(Load<std::uint64_t>(from + at), Load<std::uint64_t>(from + at + 8));
    };
    for (std::size_t at = 0; at < last; at += 16)
        if (hasZero(at)) [[unlikely]]
            return false;
    if (hasZero(last)) [[unlikely]]
        return false;
    for (std::size_t at = 0; at < last; at += 16)
        std::memcpy(to + at, from + at, 16);
    std::memcpy(to + last, from + last, 16);
    return true;
}

// CopyEnds for more than kLongest characters, which the C library does faster.
QZL_IO_API bool CopyLong(unsigned char* to, const char* from, std::size_t n) noexcept;

// CopyEnds for any number of characters.
QZL_IO_ALWAYS_INLINE bool CopyWithoutNul(unsigned char* to, const char* from, std::size_t n) noexcept {
    if (n >= 8) {
        if (n < 16)
            return CopyEnds<std::uint64_t>(to, from, n);
        return n <= kLongest ? CopyPieces(to, from, n) : CopyLong(to, from, n);
    }
    if (n >= 4)
        return CopyEnds<std::uint32_t>(to, from, n);
    if (n >= 2)
        return CopyEnds<std::uint16_t>(to, from, n);
    return n == 0 || CopyEnds<std::uint8_t>(to, from, n);
}

} // namespace IO::ShortText
