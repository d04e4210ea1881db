// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string_view>

// UTF-8, character by character.

namespace utf8 {

inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD"; // U+FFFD

struct eCharacter {
    char32_t value = 0xFFFD;
    std::size_t size = 1; // in bytes
    bool wellFormed = false;
};

// The first character of a text that is not empty. An ill-formed beginning is one byte long.
constexpr eCharacter FirstOf(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned first = byte(0);
    if (first < 0x80)
        return {first, 1, true};
    const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < size)
        return {};
    char32_t value = first & (0xFFu >> (size + 1));
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xC0) != 0x80)
            return {};
        value = value << 6 | (byte(at) & 0x3Fu);
    }
    const char32_t least = size == 2 ? 0x80 : size == 3 ? 0x800 : 0x10000;
    if (value < least || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000))
        return {};
    return {value, size, true};
}

} // namespace utf8
