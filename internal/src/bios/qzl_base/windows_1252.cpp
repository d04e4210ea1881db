// SPDX-License-Identifier: BSL-1.0
#include "windows_1252.h"

#include <algorithm>
#include <array>

#include "qzl_base/shared/unicode.h"

namespace windows_1252 {

namespace {

// The characters of bytes 80 to 9F; every other byte is the character of the same value.
constexpr std::array<char16_t, 32> kSpecials{0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021,
                                             0x02c6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008d, 0x017d, 0x008f,
                                             0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022, 0x2013, 0x2014,
                                             0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

wchar_t CharacterOf(unsigned char byte) {
    return byte >= 0x80 && byte < 0xa0 ? static_cast<wchar_t>(kSpecials[byte - 0x80u]) : static_cast<wchar_t>(byte);
}

char ByteOf(char32_t code) {
    if (code < 0x80 || (code >= 0xa0 && code <= 0xff))
        return static_cast<char>(code);
    const auto special = std::find(kSpecials.begin(), kSpecials.end(), code);
    return special == kSpecials.end() ? '?' : static_cast<char>(0x80 + (special - kSpecials.begin()));
}

} // namespace

std::wstring Widen(std::string_view text) {
    std::wstring wide(text.size(), L'\0');
    std::transform(text.begin(), text.end(), wide.begin(),
                   [](char c) { return CharacterOf(static_cast<unsigned char>(c)); });
    return wide;
}

std::string Narrow(std::wstring_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    while (!text.empty()) {
        const unicode::eCharacter first = unicode::FirstOf(text);
        narrow += ByteOf(first.code);
        text.remove_prefix(first.units);
    }
    return narrow;
}

} // namespace windows_1252
