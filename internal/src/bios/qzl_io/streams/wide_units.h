// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

namespace IO {

// Converts between wide text and UTF-16 units where wchar_t holds whole characters. Lone surrogates are kept; a value
// that is not a character becomes U+FFFD.
std::u16string UnitsOf(std::wstring_view text);
std::wstring WideOf(std::u16string_view units);

} // namespace IO
