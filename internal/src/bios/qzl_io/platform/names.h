// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

// File names in the other width, by the rules by which the system's functions take them.

namespace IO::Platform {

// The wide form of a narrow name; empty if it has none.
std::wstring WidenedName(const std::string& name);

// The narrow form of a wide name; empty if none leads back to it.
std::string NarrowedName(const std::wstring& name);

// The wide form of a UTF-8 text, and the UTF-8 text of a wide name. Ill-formed UTF-8 is kept where names are bytes, and
// otherwise gives an empty name.
std::wstring NameOfUtf8(std::string_view utf8);
std::string Utf8OfName(const std::wstring& name);

// Whether narrow names are UTF-8 in this process.
bool NamesAreUtf8();

} // namespace IO::Platform
