// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>
#include <string_view>

// The code pages of the operating system.

namespace platform {

class eCodePage {
public:
    virtual ~eCodePage() = default;

    // Appends the converted text. False, with nothing appended, if a part of the text is ill-formed or has no
    // counterpart, or if the text is longer than the system converts at once.
    virtual bool Widen(std::string_view text, std::wstring* out) = 0;
    virtual bool Narrow(std::wstring_view text, std::string* out) = 0;
};

// Opens a code page. The page is null if the system does not know the number. False if the system has no file
// descriptor left to find out; throws std::bad_alloc if it has no memory.
bool OpenCodePage(int number, std::unique_ptr<eCodePage>* page);

} // namespace platform
