// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

// Conversions between narrow names, wide names and UTF-8.
//
// On Windows narrow names are in the code page of the system's narrow file functions, which a user's settings choose
// and which lacks most characters of the world: UTF-8 texts are then no names, and names from a search may be short
// ones. Use wide names, or let CMake's qzl_utf8_names(TARGET) make a program's code page UTF-8 (Windows 10 1903 and
// later). On Linux names are bytes, and narrow names are taken for UTF-8 as far as they are.
//
// A name that cannot be converted without loss becomes empty, which names nothing.

namespace IO::System {

// Whether narrow names are UTF-8 in this process: always on Linux, on Windows by the process's code page.
QZL_IO_API bool NamesAreUtf8();

QZL_IO_API eFileNameW WideName(const eFileName& name);
QZL_IO_API eFileName NarrowName(const eFileNameW& name);

// Ill-formed UTF-8 becomes empty on Windows. On Linux its bytes are kept: narrow names are these bytes, and a wide name
// has U+DC00 plus its value for each byte that is no character.
QZL_IO_API eFileName NameFromUtf8(std::string_view utf8);
QZL_IO_API eFileNameW NameFromUtf8W(std::string_view utf8);

// The UTF-8 text of a name, for people and files. On Windows a lone surrogate becomes U+FFFD.
QZL_IO_API std::string NameToUtf8(const eFileName& name);
QZL_IO_API std::string NameToUtf8(const eFileNameW& name);

} // namespace IO::System
