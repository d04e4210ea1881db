#pragma once

#include <algorithm>
#include <emmintrin.h>
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

// Without its fraction, within an int. Values of 2147483648 and more, and NaN, give the smallest int, which is what the
// processor's own conversion gives for all that does not fit.
inline int TruncateToInt(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}

} // namespace xSDL
