#pragma once

#include <memory>
#include <string>
#include <string_view>

// The operating system's own code pages.
namespace platform {

class eCodePage {
public:
    virtual ~eCodePage() = default;

    // Appends the text in the other form. False, with nothing appended, when a part of it is ill-formed or has no
    // counterpart, or when the text is longer than the system converts at once.
    virtual bool Widen(std::string_view text, std::wstring* out) = 0;
    virtual bool Narrow(std::wstring_view text, std::string* out) = 0;
};

// Null when the system does not know the number. False when it cannot tell, for want of file descriptors; for want of
// memory std::bad_alloc is thrown.
bool OpenCodePage(int number, std::unique_ptr<eCodePage>* page);

} // namespace platform
