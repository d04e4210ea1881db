// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

#include "qzl_base/shared/escapes.h"

// Copies and comparisons of short texts in whole words that overlap, without a call and without a loop.

namespace xSDL {

template <class T>
T LoadWord(const char* from) {
    T word;
    std::memcpy(&word, from, sizeof word);
    return word;
}

template <class T>
void StoreWord(char* to, T word) {
    std::memcpy(to, &word, sizeof word);
}

// The first and the last bytes of a text, which overlap if it is shorter than two words.
template <class T>
struct eEnds {
    eEnds(const char* text, std::size_t size) : first(LoadWord<T>(text)), last(LoadWord<T>(text + size - sizeof(T))) {}

    void Store(char* to, std::size_t size) const {
        StoreWord(to, first);
        StoreWord(to + size - sizeof(T), last);
    }

    T first;
    T last;
};

template <class T>
void CopyEnds(char* to, const char* from, std::size_t size) {
    eEnds<T>(from, size).Store(to, size);
}

// Copies the text and returns the end of the copy.
inline char* CopyText(char* to, const char* from, std::size_t size) {
    if (size > 16)
        std::memcpy(to, from, size);
    else if (size >= 8)
        CopyEnds<std::uint64_t>(to, from, size);
    else if (size >= 4)
        CopyEnds<std::uint32_t>(to, from, size);
    else if (size >= 2)
        CopyEnds<std::uint16_t>(to, from, size);
    else if (size == 1)
        *to = *from;
    return to + size;
}

template <class T>
bool AreEndsSame(const char* left, const char* right, std::size_t size) {
    const eEnds<T> ends(left, size);
    const eEnds<T> others(right, size);
    return ends.first == others.first && ends.last == others.last;
}

inline bool IsSameText(const char* left, const char* right, std::size_t size) {
    if (size > 16)
        return std::memcmp(left, right, size) == 0;
    if (size >= 8)
        return AreEndsSame<std::uint64_t>(left, right, size);
    if (size >= 4)
        return AreEndsSame<std::uint32_t>(left, right, size);
    if (size >= 2)
        return AreEndsSame<std::uint16_t>(left, right, size);
    return size == 0 || *left == *right;
}

inline bool AnyEscaped(__m128i bytes) {
    return escapes::AreNeeded(bytes) != 0;
}

inline bool AnyEscaped(std::uint64_t first, std::uint64_t last) {
    return AnyEscaped(_mm_set_epi64x(static_cast<long long>(last), static_cast<long long>(first)));
}

inline bool CopyBlocks(char* to, const char* from, std::size_t size) {
    constexpr std::size_t kBlock = sizeof(__m128i);
    for (std::size_t at = 0; at + kBlock < size; at += kBlock) {
        const auto bytes = LoadWord<__m128i>(from + at);
        if (AnyEscaped(bytes))
            return false;
        StoreWord(to + at, bytes);
    }
    const auto bytes = LoadWord<__m128i>(from + size - kBlock);
    StoreWord(to + size - kBlock, bytes);
    return !AnyEscaped(bytes);
}

inline bool CopyFew(char* to, const char* from, std::size_t size) {
    constexpr std::uint64_t kBlanks = 0x2020202020202020;
    if (size == 0)
        return true;
    const auto middle = static_cast<unsigned char>(from[size / 2]);
    const auto first = static_cast<unsigned char>(from[0]);
    const auto last = static_cast<unsigned char>(from[size - 1]);
    to[0] = from[0];
    to[size / 2] = from[size / 2];
    to[size - 1] = from[size - 1];
    return !AnyEscaped((kBlanks << 24) | (std::uint64_t{first} << 16) | (std::uint64_t{middle} << 8) | last, kBlanks);
}

// Copies the text if a quoted string can contain all of it unchanged. Otherwise returns false, and the copy is invalid.
inline bool CopyPlain(char* to, const char* from, std::size_t size) {
    if (size >= 16)
        return CopyBlocks(to, from, size);
    if (size >= 8) {
        const eEnds<std::uint64_t> ends(from, size);
        ends.Store(to, size);
        return !AnyEscaped(ends.first, ends.last);
    }
    if (size >= 4) {
        const eEnds<std::uint32_t> ends(from, size);
        ends.Store(to, size);
        const std::uint64_t both = std::uint64_t{ends.first} << 32 | ends.last;
        return !AnyEscaped(both, both);
    }
    return CopyFew(to, from, size);
}

} // namespace xSDL
