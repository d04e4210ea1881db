#pragma once

#include <array>
#include <bit>
#include <cstddef>

// The place of a virtual member function in its class's table, as both systems' compilers lay it out: a destructor
// takes places 0 and 1 where it is declared first.
template <class eMember>
std::size_t VirtualSlot(eMember member) {
    static_assert(sizeof(member) == 2 * sizeof(std::ptrdiff_t));
    return (static_cast<std::size_t>(std::bit_cast<std::array<std::ptrdiff_t, 2>>(member)[0]) - 1) / sizeof(void*);
}
