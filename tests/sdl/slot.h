#pragma once

#include <cstddef>
#include <cstring>

// The number of a virtual function's slot in its class, the first one being 0, as compilers that keep to the Itanium
// rules lay classes out. A destructor takes two slots.
template <class eFunction>
std::ptrdiff_t SlotOf(eFunction function) {
    std::ptrdiff_t parts[2];
    static_assert(sizeof function == sizeof parts);
    std::memcpy(parts, &function, sizeof parts);
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}
