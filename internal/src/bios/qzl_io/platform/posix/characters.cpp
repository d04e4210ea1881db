// SPDX-License-Identifier: BSL-1.0
#include "platform/characters.h"

#include <cctype>
#include <cwchar>
#include <cwctype>

namespace IO::Platform {

// Here the bytes of a file name stand for themselves.
bool IsLeadByte(char) {
    return false;
}

void LowerCase(std::string* text) {
    for (char& letter : *text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

void LowerCase(std::wstring* text) {
    for (wchar_t& letter : *text)
        letter = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(letter)));
}

} // namespace IO::Platform
