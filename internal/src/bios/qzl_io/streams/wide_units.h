#pragma once

#include <string>
#include <string_view>

namespace IO {

// Wide text and UTF-16 units, both ways, where wchar_t holds whole characters. Lone surrogates stay what they are; a
// value that is no character becomes U+FFFD.
std::u16string UnitsOf(std::wstring_view text);
std::wstring WideOf(std::u16string_view units);

} // namespace IO
