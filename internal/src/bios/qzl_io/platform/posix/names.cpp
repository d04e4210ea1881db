// SPDX-License-Identifier: BSL-1.0
#include "platform/names.h"

#include "platform/posix/native_name.h"

namespace IO::Platform {

std::wstring WidenedName(const std::string& name) {
    return WideName(name);
}

std::string NarrowedName(const std::wstring& name) {
    return ByteName(name);
}

std::wstring NameOfUtf8(std::string_view utf8) {
    return WideName(utf8);
}

std::string Utf8OfName(const std::wstring& name) {
    return ByteName(name);
}

bool NamesAreUtf8() {
    return true;
}

} // namespace IO::Platform
