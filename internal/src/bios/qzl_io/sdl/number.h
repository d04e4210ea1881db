#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <emmintrin.h>
#include <iterator>
#include <limits>
#include <string_view>

#include <qzl_base/convert.h>

// Number texts of SDL tokens, as the lexer has found them to be, to values.
namespace xSDL {

// The nearest int of a decimal integer that fits into 64 bits. Signs cannot be predicted, so none of this is a branch.
inline int NearestInt(unsigned long long digits, bool negative) {
    constexpr auto kMax = static_cast<unsigned long long>(std::numeric_limits<int>::max());
    const unsigned sign = negative;
    const auto magnitude = static_cast<unsigned>(std::min(digits, kMax + sign));
    return static_cast<int>((magnitude ^ (0 - sign)) + sign);
}

inline int TextToInt(std::string_view text) {
    int value = 0;
    _FromString(&value, text.data(), text.data() + text.size());
    return value;
}

inline float TextToFloat(std::string_view text) {
    float value = 0;
    _FromString(&value, text.data(), text.data() + text.size());
    return value;
}

inline float WithSign(float magnitude, bool negative) {
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (std::uint32_t{negative} << 31));
}

// The float nearest to digits * 10^exponent where two roundings find it; false where they may not.
//
// Both numbers are doubles without error, so the quotient or product is the nearest double. Rounding that again gives
// the nearest float unless it lies in the middle between two floats, where the true value may be on either side. All
// values are far from the ends of a float's range.
inline bool DecimalToFloat(unsigned long long digits, int exponent, bool negative, float* value) {
    static constexpr double kPower[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    constexpr int kLargest = static_cast<int>(std::size(kPower)) - 1;
    constexpr std::uint64_t kBeyondFloat = (1u << 29) - 1;
    constexpr std::uint64_t kMiddle = 1u << 28;
    if (digits >= (1ull << 53) || exponent < -kLargest || exponent > kLargest)
        return false;
    const auto whole = static_cast<double>(static_cast<long long>(digits));
    const double nearest = exponent < 0 ? whole / kPower[-exponent] : whole * kPower[exponent];
    if ((std::bit_cast<std::uint64_t>(nearest) & kBeyondFloat) == kMiddle)
        return false;
    *value = WithSign(static_cast<float>(nearest), negative);
    return true;
}

// Without its fraction, within an int. Values of 2147483648 and more, and NaN, give the smallest int, which is what the
// processor's own conversion gives for all that does not fit.
inline int TruncateToInt(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}

} // namespace xSDL
