// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>

#include <qzl_io_c.h>

// Structures that begin with their size, whatever version of the header the caller was compiled with.

namespace xC {

// No version of a structure is larger; a size beyond it was not set.
inline constexpr std::size_t kLargest = 4096;

// Whether the structure is there and holds at least what its first version held.
template <class T>
bool IsSized(const T* structure) {
    return structure && structure->size >= sizeof(T) && structure->size <= kLargest;
}

// Copies what the library knows into the caller's structure, and sets the rest of it to zero.
template <class T>
qzl_status Fill(T* target, T known) noexcept {
    if (!IsSized(target))
        return QZL_BAD_ARGUMENT;
    known.size = target->size;
    std::memcpy(target, &known, sizeof(T));
    std::memset(reinterpret_cast<unsigned char*>(target) + sizeof(T), 0, known.size - sizeof(T));
    return QZL_OK;
}

// Copies the caller's structure. False if it is none, or holds settings that the library does not know.
template <class T>
bool Take(const T* source, T* known) noexcept {
    if (!IsSized(source))
        return false;
    std::memcpy(known, source, sizeof(T));
    const auto* const bytes = reinterpret_cast<const unsigned char*>(source);
    return std::all_of(bytes + sizeof(T), bytes + source->size, [](unsigned char byte) { return byte == 0; });
}

} // namespace xC
