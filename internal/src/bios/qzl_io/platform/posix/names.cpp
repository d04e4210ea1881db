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

bool NamesAreUtf8() {
    return true;
}

} // namespace IO::Platform
