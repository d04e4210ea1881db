#pragma once

#include <string>
#include <string_view>

// Windows-1252, its unassigned bytes being the control characters of the same value.
namespace windows_1252 {

std::wstring Widen(std::string_view text);

// A character, or an ill-formed part, that the page does not have becomes "?".
std::string Narrow(std::wstring_view text);

} // namespace windows_1252
