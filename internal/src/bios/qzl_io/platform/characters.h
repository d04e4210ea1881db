// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>

// Narrow and wide characters by the rules of the C run-time.

namespace IO::Platform {

// Whether the byte is the first half of a double-byte character. In file names the second half always follows, and it
// may look like a slash.
QZL_IO_API bool IsLeadByte(char byte);

// Converts the text to lower case by the current locale; double-byte characters are kept whole.
QZL_IO_API void LowerCase(std::string* text);
QZL_IO_API void LowerCase(std::wstring* text);

} // namespace IO::Platform
