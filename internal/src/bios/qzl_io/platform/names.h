// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

// File names in the other width, by the rules by which the system's functions take them.

namespace IO::Platform {

// The wide form of a narrow name; empty if it has none.
std::wstring WidenedName(const std::string& name);

// The narrow form of a wide name; empty if none leads back to it.
std::string NarrowedName(const std::wstring& name);

// Whether narrow names are UTF-8 in this process.
bool NamesAreUtf8();

} // namespace IO::Platform
