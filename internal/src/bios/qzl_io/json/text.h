#pragma once

#include <cstddef>
#include <emmintrin.h>
#include <string_view>

// What must be known of a JSON text before it is given to a parser.

namespace json_text {

// Number of bytes of the well-formed UTF-8 sequence that `text` begins with, 0 when it begins with none.
constexpr std::size_t Utf8SequenceSize(std::string_view text) {
    const auto byte = [text](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
    };
    const auto follows = [byte](std::size_t index) { return (byte(index) & 0xC0U) == 0x80U; };
    const unsigned first = byte(0);
    const unsigned second = byte(1);
    if (first < 0x80)
        return 1;
    if (first < 0xC2 || first > 0xF4 || !follows(1))
        return 0;
    if (first < 0xE0)
        return 2;
    const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool noCharacter = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
    if (overlong || noCharacter || !follows(2))
        return 0;
    if (first < 0xF0)
        return 3;
    return follows(3) ? 4 : 0;
}

// Number of leading bytes, in whole blocks of 16, before the first that `isStop` finds in one.
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

// Leading blocks of ASCII without an escape, which nothing further has to be known of.
inline std::size_t PlainBlocks(std::string_view text) {
    const __m128i escapes = _mm_set1_epi8('\\');
    return BlocksBefore(text, [escapes](__m128i bytes) { return _mm_or_si128(bytes, _mm_cmpeq_epi8(bytes, escapes)); });
}

inline bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        text.remove_prefix(AsciiBlocks(text));
        for (std::size_t sequences = 0; sequences < sizeof(__m128i) && !text.empty(); ++sequences) {
            const std::size_t size = Utf8SequenceSize(text);
            if (size == 0)
                return false;
            text.remove_prefix(size);
        }
    }
    return true;
}

// The code unit of the escape "\uHHHH" that `text` begins with, -1 when it begins with none.
constexpr int EscapedUnit(std::string_view text) {
    constexpr std::size_t kEscapeSize = 6;
    if (text.size() < kEscapeSize || text[0] != '\\' || text[1] != 'u')
        return -1;
    int unit = 0;
    for (const char letter : text.substr(2, kEscapeSize - 2)) {
        if (letter >= '0' && letter <= '9')
            unit = unit * 16 + (letter - '0');
        else if (letter >= 'a' && letter <= 'f')
            unit = unit * 16 + (letter - 'a' + 10);
        else if (letter >= 'A' && letter <= 'F')
            unit = unit * 16 + (letter - 'A' + 10);
        else
            return -1;
    }
    return unit;
}

constexpr bool IsHighSurrogate(int unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(int unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// True when one half of a surrogate pair is escaped and the other half is not, right before or behind it.
constexpr bool HasLoneSurrogate(std::string_view text) {
    constexpr std::size_t kEscapeSize = 6;
    for (std::size_t at = text.find('\\'); at != std::string_view::npos; at = text.find('\\', at)) {
        const int unit = EscapedUnit(text.substr(at));
        if (IsLowSurrogate(unit))
            return true;
        if (IsHighSurrogate(unit)) {
            at += kEscapeSize;
            if (!IsLowSurrogate(EscapedUnit(text.substr(at))))
                return true;
        }
        at += unit < 0 ? 2 : kEscapeSize;
        if (at >= text.size())
            return false;
    }
    return false;
}

} // namespace json_text
