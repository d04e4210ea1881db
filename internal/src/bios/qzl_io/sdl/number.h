#pragma once

#include <algorithm>
#include <emmintrin.h>
#include <limits>
#include <string_view>

#include <qzl_base/convert.h>

// Converts number texts of SDL tokens, as classified by the lexer, to values.

namespace xSDL {

// The int nearest to a decimal integer that fits into 64 bits. Signs cannot be predicted, so there is no branch.
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

// The value without its fraction, as an int. Values of 2147483648 and more, and NaN, give the smallest int, as does the
// processor's own conversion for all values that do not fit.
inline int TruncateToInt(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}

} // namespace xSDL
