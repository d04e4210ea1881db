// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <bit>
#include <cstddef>

// Checks of interfaces: signatures at compile time, the order of virtual functions at run time.

// One of the functions of that name has the signature: static_assert(Is<void (eClass::*)(int) const>(&eClass::Name)).
template <class Signature>
consteval bool Is(Signature) {
    return true;
}

// The index of a virtual function in the table, computed from a pointer to it; -1 for other functions. If a class
// declares its virtual destructor first, the destructor's two entries are first in the table.
template <class Function>
std::ptrdiff_t Slot(Function function) {
    const auto words = std::bit_cast<std::array<std::ptrdiff_t, 2>>(function);
    return words[0] % 2 == 0 ? -1 : words[0] / static_cast<std::ptrdiff_t>(sizeof(void*));
}
