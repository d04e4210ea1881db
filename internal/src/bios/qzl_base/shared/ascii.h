// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

// ASCII characters, whatever the locale. Bytes from 128 up belong to no class.

namespace ascii {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char ToLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline void LowerCase(std::string* text) {
    for (char& c : *text)
        c = ToLower(c);
}

inline std::string LowerCased(std::string text) {
    LowerCase(&text);
    return text;
}

// The value of a hexadecimal digit of either case; -1 for any other character.
constexpr int HexDigit(char c) {
    if (IsDigit(c))
        return c - '0';
    const char lower = ToLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

} // namespace ascii
