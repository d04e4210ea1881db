// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <string_view>

#include <qzl_io/export.h>

namespace IO::Platform {

// Names are bytes on disk. Wide names are UTF-8 there; a byte that is not part of a well-formed sequence is U+DC00 plus
// its value in the wide name, so that every name on disk has a wide form that leads back to it.

QZL_IO_API std::wstring WideName(std::string_view bytes);

// The bytes of a wide name. A surrogate pair counts as the one character that it stands for. Empty, so that it names
// nothing, if the name contains a value that is not a character.
QZL_IO_API std::string ByteName(std::wstring_view name);

// A name in the form that the system takes.
class eNativeName {
public:
    explicit eNativeName(const char* name) : bytes(name) {}
    explicit eNativeName(const wchar_t* name) : converted(ByteName(name)), bytes(converted.c_str()) {}
    eNativeName(const eNativeName&) = delete;
    eNativeName& operator=(const eNativeName&) = delete;

    const char* c_str() const { return bytes; }

private:
    std::string converted;
    const char* bytes;
};

// A name on disk as text of either width.
template <class Char>
std::basic_string<Char> NameText(std::string_view bytes) {
    if constexpr (sizeof(Char) == 1)
        return std::string(bytes);
    else
        return WideName(bytes);
}

} // namespace IO::Platform
