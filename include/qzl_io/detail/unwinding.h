// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <exception>

namespace xSDL {

// Tells a destructor that may report whether an exception is unwinding the stack. It is a member of the object and is
// constructed with it. A copy starts anew, like the copy of the object; assignment changes nothing.
class eUnwinding {
public:
    eUnwinding() = default;
    eUnwinding(const eUnwinding&) noexcept {}
    eUnwinding& operator=(const eUnwinding&) noexcept { return *this; }

    // Whether more exceptions are in progress than when the object was constructed.
    bool IsUnderWay() const noexcept { return std::uncaught_exceptions() > atStart; }

private:
    int atStart = std::uncaught_exceptions();
};

} // namespace xSDL
