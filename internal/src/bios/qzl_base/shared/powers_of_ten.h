// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <cstddef>

namespace decimal {

// 10^0, 10^1, ... as numbers of the type, which must represent each of them exactly; a double does up to 10^22.
template <class T, std::size_t kCount>
inline constexpr std::array<T, kCount> kPowersOfTen = [] {
    std::array<T, kCount> powers{1};
    for (std::size_t power = 1; power < kCount; ++power)
        powers[power] = powers[power - 1] * 10;
    return powers;
}();

} // namespace decimal
