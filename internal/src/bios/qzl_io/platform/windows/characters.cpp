// SPDX-License-Identifier: BSL-1.0
#include "platform/characters.h"

#include <cstring>
#include <cwchar>
#include <mbctype.h>

namespace IO::Platform {

bool IsLeadByte(char byte) {
    return ::_ismbblead(static_cast<unsigned char>(byte)) != 0;
}

void LowerCase(std::string* text) {
    ::_strlwr_s(text->data(), text->size() + 1);
}

void LowerCase(std::wstring* text) {
    ::_wcslwr_s(text->data(), text->size() + 1);
}

} // namespace IO::Platform
