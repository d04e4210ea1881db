// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

// Windows-1252. Its unassigned bytes are the control characters of the same value.

namespace windows_1252 {

std::wstring Widen(std::string_view text);

// Each character that the page lacks, and each ill-formed part, becomes "?".
std::string Narrow(std::wstring_view text);

} // namespace windows_1252
