// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string_view>

// Unicode characters and the units that encode them: bytes of UTF-8, surrogate pairs of UTF-16.

namespace unicode {

inline constexpr char32_t kReplacement = 0xfffd; // replaces what is ill-formed
inline constexpr char32_t kLastCode = 0x10ffff;
inline constexpr bool kIsWideUtf16 = sizeof(wchar_t) == 2; // otherwise a wchar_t is a character
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr bool IsSurrogate(char32_t unit) {
    return unit >= 0xd800 && unit <= 0xdfff;
}
constexpr bool IsHighSurrogate(char32_t unit) {
    return unit >= 0xd800 && unit <= 0xdbff;
}
constexpr bool IsLowSurrogate(char32_t unit) {
    return unit >= 0xdc00 && unit <= 0xdfff;
}

// Whether UTF-16 encodes the character as a pair, and the two halves in their order.
constexpr bool IsPaired(char32_t code) {
    return code > 0xffff && code <= kLastCode;
}
constexpr char16_t HighSurrogate(char32_t code) {
    return static_cast<char16_t>(0xd800 + ((code - 0x10000) >> 10));
}
constexpr char16_t LowSurrogate(char32_t code) {
    return static_cast<char16_t>(0xdc00 + ((code - 0x10000) & 0x3ff));
}

constexpr char32_t OfPair(char32_t high, char32_t low) {
    return 0x10000 + ((high - 0xd800) << 10) + (low - 0xdc00);
}

// The first character of a text and the number of its units; if the text begins with none, kReplacement and the size of
// the ill-formed part.
struct eCharacter {
    char32_t code;
    std::size_t units;
    bool wellFormed;
};

// What may follow the first byte of a sequence. `total` counts all bytes; the second one is within the limits and the
// others are continuation bytes. A total of 0 marks a byte that begins no sequence.
struct eSequence {
    std::size_t total;
    unsigned char secondLow;
    unsigned char secondHigh;
};

constexpr eSequence SequenceOf(unsigned char first) {
    if (first < 0xc2 || first > 0xf4)
        return {0, 0, 0};
    if (first < 0xe0)
        return {2, 0x80, 0xbf};
    switch (first) {
    case 0xe0:
        return {3, 0xa0, 0xbf};
    case 0xed:
        return {3, 0x80, 0x9f};
    case 0xf0:
        return {4, 0x90, 0xbf};
    case 0xf4:
        return {4, 0x80, 0x8f};
    default:
        return {first < 0xf0 ? std::size_t{3} : std::size_t{4}, 0x80, 0xbf};
    }
}

// For UTF-8 that begins with a byte beyond ASCII.
constexpr eCharacter FirstBeyondAscii(std::string_view text) {
    const auto byteAt = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const eSequence sequence = SequenceOf(byteAt(0));
    if (sequence.total == 0 || text.size() < 2 || byteAt(1) < sequence.secondLow || byteAt(1) > sequence.secondHigh)
        return {kReplacement, 1, false};
    char32_t code = (byteAt(0) & (0xffu >> (sequence.total + 1))) << 6 | (byteAt(1) & 0x3fu);
    for (std::size_t at = 2; at < sequence.total; ++at) {
        if (at == text.size() || (byteAt(at) & 0xc0) != 0x80)
            return {kReplacement, at, false};
        code = code << 6 | (byteAt(at) & 0x3fu);
    }
    return {code, sequence.total, true};
}

// For UTF-8 that is not empty.
constexpr eCharacter FirstOf(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    return first < 0x80 ? eCharacter{first, 1, true} : FirstBeyondAscii(text);
}

// For a wide text that is not empty. Lone surrogates and values that are not characters are ill-formed.
constexpr eCharacter FirstOf(std::wstring_view text) {
    const auto first = static_cast<char32_t>(text[0]);
    if (kIsWideUtf16 && IsHighSurrogate(first) && text.size() > 1 && IsLowSurrogate(static_cast<char32_t>(text[1])))
        return {OfPair(first, static_cast<char32_t>(text[1])), 2, true};
    const bool wellFormed = !IsSurrogate(first) && first <= kLastCode;
    return {wellFormed ? first : kReplacement, 1, wellFormed};
}

// The number of bytes of a character beyond ASCII in UTF-8.
constexpr std::size_t BytesBeyondAscii(char32_t code) {
    if (code < 0x800)
        return 2;
    return code < 0x10000 ? 3 : 4;
}

// Writes a character beyond ASCII as UTF-8 and returns the end.
constexpr char* PutBeyondAscii(char* out, char32_t code) {
    const std::size_t total = BytesBeyondAscii(code);
    for (std::size_t at = total - 1; at > 0; --at, code >>= 6)
        out[at] = static_cast<char>(0x80u | (code & 0x3fu));
    *out = static_cast<char>((0xf00u >> total) | code);
    return out + total;
}

} // namespace unicode
