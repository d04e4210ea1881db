// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <emmintrin.h>
#include <limits>
#include <string_view>
#include <type_traits>

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

template <class T>
T TextTo(std::string_view text) {
    T value = 0;
    _FromString(&value, text.data(), text.data() + text.size());
    return value;
}

inline int TextToInt(std::string_view text) {
    return TextTo<int>(text);
}

inline float TextToFloat(std::string_view text) {
    return TextTo<float>(text);
}

inline bool IsHexadecimal(std::string_view text) {
    return text.starts_with("0x");
}

// Whether a text is an integer of the first type that the second type has, too.
template <std::integral Wide, std::integral Narrow>
bool IsWithin(std::string_view text) {
    Wide value = 0;
    return _FromString(&value, text.data(), text.data() + text.size()) && value >= std::numeric_limits<Narrow>::min() &&
           value <= std::numeric_limits<Narrow>::max();
}

// Whether the type has the value of an integer's text. Hexadecimal digits are bits, so an int has 0xffffffff.
template <std::integral T>
bool Fits(std::string_view text) {
    using eValue = std::conditional_t<std::is_signed_v<T>, long long, unsigned long long>;
    return IsHexadecimal(text) ? IsWithin<unsigned long long, std::make_unsigned_t<T>>(text)
                               : IsWithin<eValue, T>(text);
}

// Whether the value of a number's text is finite in the type, and zero only if all digits are. False for names such as
// "inf".
template <std::floating_point T>
bool Fits(std::string_view text) {
    if (IsHexadecimal(text))
        return Fits<unsigned long long>(text);
    const T value = TextTo<T>(text);
    const std::string_view digits = text.substr(0, text.find_first_of("eE"));
    return std::isfinite(value) && (value != 0 || digits.find_first_not_of("+-0.") == std::string_view::npos);
}

// The value without its fraction, as an int. Values of 2147483648 and more, and NaN, give the smallest int, as does the
// processor's own conversion for all values that do not fit.
inline int TruncateToInt(float value) {
    return _mm_cvttss_si32(_mm_set_ss(value));
}

} // namespace xSDL
