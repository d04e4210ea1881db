// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>

// 64 characters of an SDL text as the bits of 64-bit words; the first character is the lowest bit.

namespace xSDL {

// Where the characters of each kind are. Four bits tell the kinds apart:
//
//                           between  first  second  harmless
//     space, =                 x                       x
//     other blanks             x       x
//     {                        x       x               x
//     }                        x              x        x
//     "                        x       x      x        x
//     digit                            x               x
//     * + -                                   x        x
//     . /                              x      x        x
//     letter, _                                        x
//     zero, backslash                  x
//     comma                                   x
//     any other
struct eMasks {
    std::uint64_t between = 0;
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::uint64_t harmless = 0;
    std::size_t lineFeeds = 0; // their number

    std::uint64_t Quotes() const { return between & first & second; }
    std::uint64_t Starts() const { return between & harmless & first & ~second; }
    std::uint64_t Ends() const { return between & second & ~first; }
    // Blanks, braces and quotes, which end whatever comes before them.
    std::uint64_t Between() const { return between; }
    // Digits, and operators of one character.
    std::uint64_t Numbers() const { return (first ^ second) & harmless & ~between; }
    std::uint64_t Digits() const { return Numbers() & first; }
    // Points, and slashes.
    std::uint64_t Points() const { return first & second & ~between; }
    // Characters that end a plain string, where `inside` marks one, and elsewhere characters with a meaning other than
    // the kinds above.
    std::uint64_t Stops(std::uint64_t inside) const { return ~harmless & ((inside & first) | ~(inside | between)); }
};

} // namespace xSDL
