#pragma once

#include <exception>

namespace xSDL {

// Tells a destructor that may report whether it runs because an exception is on its way: a member of the object, made
// with it. A copy is made with the object's copy, so it starts anew; assigning leaves it as it is.
class eUnwinding {
public:
    eUnwinding() = default;
    eUnwinding(const eUnwinding&) noexcept {}
    eUnwinding& operator=(const eUnwinding&) noexcept { return *this; }

    // Are more exceptions under way than when the object was made?
    bool IsUnderWay() const noexcept { return std::uncaught_exceptions() > atStart; }

private:
    int atStart = std::uncaught_exceptions();
};

} // namespace xSDL
