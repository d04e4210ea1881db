// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "qzl_base/shared/powers_of_ten.h"

namespace decimal {

inline float WithSign(float magnitude, bool negative) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (std::uint32_t{negative} << 31));
}

// The float nearest to digits * 10^exponent, negated if `negative`, if two roundings find it. False, with *value
// unchanged, if they may not.
//
// Both numbers are exact as doubles, so their quotient or product is the nearest double. Rounding that again gives the
// nearest float unless the double lies in the middle between two floats, where the true value may be on either side.
// All values are far from the limits of a float's range. Signs cannot be predicted, so there is no branch on them.
inline bool ToFloat(std::uint64_t digits, int exponent, bool negative, float* value) {
    constexpr int kMostPower = 22;
    constexpr std::uint64_t kBeyondFloat = (1u << 29) - 1;
    constexpr std::uint64_t kMiddle = 1u << 28;
    constexpr auto& kPowers = kPowersOfTen<double, kMostPower + 1>;
    if (digits >= (1ull << 53) || exponent < -kMostPower || exponent > kMostPower)
        return false;
    const auto whole = static_cast<double>(static_cast<std::int64_t>(digits));
    const double nearest = exponent < 0 ? whole / kPowers[static_cast<std::size_t>(-exponent)]
                                        : whole * kPowers[static_cast<std::size_t>(exponent)];
    if ((std::bit_cast<std::uint64_t>(nearest) & kBeyondFloat) == kMiddle)
        return false;
    *value = WithSign(static_cast<float>(nearest), negative);
    return true;
}

} // namespace decimal
