// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>

namespace xSDL {

// The number of ones in the word. std::popcount calls a function where the processor need not have the instruction.
inline int CountBits(std::uint64_t word) {
    word -= (word >> 1) & 0x5555555555555555u;
    word = (word & 0x3333333333333333u) + ((word >> 2) & 0x3333333333333333u);
    word = (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0Fu;
    return static_cast<int>((word * 0x0101010101010101u) >> 56);
}

} // namespace xSDL
