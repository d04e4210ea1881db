// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

// Conversions of whole texts between UTF-8 and wchar_t; each ill-formed part becomes one U+FFFD.

namespace utf8 {

std::wstring Widen(std::string_view text);
std::string Narrow(std::wstring_view text);

} // namespace utf8
