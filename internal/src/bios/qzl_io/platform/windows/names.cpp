// SPDX-License-Identifier: BSL-1.0
#include "platform/names.h"

#include "platform/windows/native_name.h"

namespace IO::Platform {

std::wstring WidenedName(const std::string& name) {
    return WideName(name);
}

std::string NarrowedName(const std::wstring& name) {
    std::string narrow;
    return NarrowName(name, &narrow) ? narrow : std::string();
}

bool NamesAreUtf8() {
    return NameCodePage() == CP_UTF8;
}

} // namespace IO::Platform
