#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Unicode text in bytes (UTF-8) and in wchar_t (UTF-16 where that has 2 bytes, UTF-32 where it has 4).

namespace unicode {

inline constexpr char32_t kReplacement = 0xfffd;

// The first character of a text and the number of its units; kReplacement and 1 where the text begins with a lone
// surrogate or a value that is no character. The text must not be empty.
struct eCharacter {
    char32_t code;
    std::size_t units;
};

eCharacter FirstOf(std::wstring_view text);

// Whole texts, each ill-formed part as one kReplacement.
std::wstring Widen(std::string_view text);
std::string Narrow(std::wstring_view text);

} // namespace unicode
