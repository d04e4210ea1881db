#pragma once

#include <array>
#include <bit>
#include <cstddef>

// Holds interfaces to what is stated: signatures while this compiles, the order of virtual functions when it runs.

// One of the functions of that name has the signature: static_assert(Is<void (eClass::*)(int) const>(&eClass::Name)).
template <class Signature>
consteval bool Is(Signature) {
    return true;
}

// The place of a virtual function in the table, as a pointer to it tells; -1 for any other function. The two entries of
// a virtual destructor come first where it is declared first.
template <class Function>
std::ptrdiff_t Slot(Function function) {
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(function);
    return words[0] % 2 == 0 ? -1 : words[0] / static_cast<std::ptrdiff_t>(sizeof(void*));
}
