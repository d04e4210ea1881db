#pragma once

#include <string>

#include <qzl_io/export.h>

// What the C run-time knows of narrow and wide characters.
namespace IO::Platform {

// Whether the byte is the first half of a double-byte character. In file names such halves come in pairs, and the
// second one may look like a slash.
QZL_IO_API bool IsLeadByte(char byte);

// Lower-case by the current locale; double-byte characters as wholes.
QZL_IO_API void LowerCase(std::string* text);
QZL_IO_API void LowerCase(std::wstring* text);

} // namespace IO::Platform
