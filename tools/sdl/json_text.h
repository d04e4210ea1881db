// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

// Values as JSON writes them.

namespace json_text {

// Appends the text in quotes. Control characters are escaped, and so is what a terminal would obey or hide; each
// ill-formed part of UTF-8 becomes U+FFFD.
void AppendString(std::string* target, std::string_view text);

// Appends the shortest number that reads back to the same bits. The value is finite.
void AppendFloat(std::string* target, float value);

} // namespace json_text
