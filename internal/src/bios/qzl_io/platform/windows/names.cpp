// SPDX-License-Identifier: BSL-1.0
#include "platform/names.h"

#include <cstddef>
#include <limits>

#include <qzl_base/convert.h>

#include "platform/windows/native_name.h"

namespace IO::Platform {

std::wstring WidenedName(const std::string& name) {
    return WideName(name);
}

std::string NarrowedName(const std::wstring& name) {
    std::string narrow;
    return NarrowName(name, &narrow) ? narrow : std::string();
}

std::wstring NameOfUtf8(std::string_view utf8) {
    if (utf8.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return {};
    const auto convert = [&](wchar_t* room, int count) {
        return ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), static_cast<int>(utf8.size()), room,
                                     count);
    };
    std::wstring name(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(name.data(), static_cast<int>(name.size()));
    return name;
}

std::string Utf8OfName(const std::wstring& name) {
    return ToString(name);
}

bool NamesAreUtf8() {
    return NameCodePage() == CP_UTF8;
}

} // namespace IO::Platform
