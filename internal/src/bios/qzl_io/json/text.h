// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <emmintrin.h>
#include <stdexcept>
#include <string_view>

#include "qzl_base/shared/ascii.h"
#include "qzl_base/shared/unicode.h"

// Facts about a JSON text that must be known before it is parsed.

namespace json_text {

// The number of leading bytes, in whole blocks of 16, before the first block in which `isStop` finds one.
template <class eTest>
std::size_t BlocksBefore(std::string_view text, eTest isStop) {
    constexpr std::size_t kBlock = sizeof(__m128i);
    std::size_t at = 0;
    for (; at + kBlock <= text.size(); at += kBlock)
        if (_mm_movemask_epi8(isStop(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at)))) != 0)
            break;
    return at;
}

inline std::size_t AsciiBlocks(std::string_view text) {
    return BlocksBefore(text, [](__m128i bytes) { return bytes; });
}

// The leading blocks of ASCII without an escape, which need no further check.
inline std::size_t PlainBlocks(std::string_view text) {
    const __m128i escapes = _mm_set1_epi8('\\');
    return BlocksBefore(text, [escapes](__m128i bytes) { return _mm_or_si128(bytes, _mm_cmpeq_epi8(bytes, escapes)); });
}

// The number of bytes before the first ill-formed sequence; the text's size if there is none.
inline std::size_t WellFormedBytes(std::string_view text) {
    std::string_view rest = text;
    while (!rest.empty()) {
        rest.remove_prefix(AsciiBlocks(rest));
        for (std::size_t sequences = 0; sequences < sizeof(__m128i) && !rest.empty(); ++sequences) {
            const unicode::eCharacter first = unicode::FirstOf(rest);
            if (!first.wellFormed)
                return text.size() - rest.size();
            rest.remove_prefix(first.units);
        }
    }
    return text.size();
}

inline bool IsUtf8(std::string_view text) {
    return WellFormedBytes(text) == text.size();
}

constexpr std::string_view WithoutByteOrderMark(std::string_view text) {
    return text.substr(text.starts_with(unicode::kByteOrderMark) ? unicode::kByteOrderMark.size() : 0);
}

inline constexpr std::size_t kEscapeSize = 6;
inline constexpr char32_t kNoUnit = ~char32_t{0};

// The code unit of the escape "\uHHHH" at the beginning of `text`; kNoUnit if there is none.
constexpr char32_t EscapedUnit(std::string_view text) {
    if (text.size() < kEscapeSize || text[0] != '\\' || text[1] != 'u')
        return kNoUnit;
    char32_t unit = 0;
    for (const char letter : text.substr(2, kEscapeSize - 2)) {
        const int digit = ascii::HexDigit(letter);
        if (digit < 0)
            return kNoUnit;
        unit = unit << 4 | static_cast<char32_t>(digit);
    }
    return unit;
}

// True if one half of a surrogate pair is escaped and the other half is not, directly before or after it.
constexpr bool HasLoneSurrogate(std::string_view text) {
    for (std::size_t at = text.find('\\'); at != std::string_view::npos; at = text.find('\\', at)) {
        const char32_t unit = EscapedUnit(text.substr(at));
        if (unicode::IsLowSurrogate(unit))
            return true;
        if (unicode::IsHighSurrogate(unit)) {
            at += kEscapeSize;
            if (!unicode::IsLowSurrogate(EscapedUnit(text.substr(at))))
                return true;
        }
        at += unit == kNoUnit ? 2 : kEscapeSize;
        if (at >= text.size())
            return false;
    }
    return false;
}

inline void RefuseLoneSurrogates(std::string_view text) {
    if (HasLoneSurrogate(text))
        throw std::range_error("Json text has an escaped surrogate without its other half.");
}

// Passes a string from after its opening quote, up to after its closing quote or the end of the text.
constexpr std::size_t StringEnd(std::string_view text, std::size_t at) {
    for (; at < text.size() && text[at] != '"'; ++at)
        if (text[at] == '\\')
            ++at;
    return at + 1;
}

// True if somewhere more objects and arrays than `most` are open at once.
constexpr bool IsDeeper(std::string_view text, unsigned long long most) {
    if (most >= text.size())
        return false;
    unsigned long long depth = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character == '"')
            at = StringEnd(text, at + 1) - 1;
        else if ((character == '[' || character == '{') && ++depth > most)
            return true;
        else if ((character == ']' || character == '}') && depth > 0)
            --depth;
    }
    return false;
}

} // namespace json_text
