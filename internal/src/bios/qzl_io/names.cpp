// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/names.h>

#include "platform/names.h"

namespace IO::System {

bool NamesAreUtf8() {
    return Platform::NamesAreUtf8();
}

eFileNameW WideName(const eFileName& name) {
    return Platform::WidenedName(name.str());
}

eFileName NarrowName(const eFileNameW& name) {
    return Platform::NarrowedName(name.str());
}

eFileName NameFromUtf8(std::string_view utf8) {
    return NarrowName(NameFromUtf8W(utf8));
}

eFileNameW NameFromUtf8W(std::string_view utf8) {
    return Platform::NameOfUtf8(utf8);
}

std::string NameToUtf8(const eFileName& name) {
    return Platform::Utf8OfName(Platform::WidenedName(name.str()));
}

std::string NameToUtf8(const eFileNameW& name) {
    return Platform::Utf8OfName(name.str());
}

} // namespace IO::System
