// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cmath>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>

// The numbers that number tokens stand for, in full range.

namespace xSDL::numbers {

// False if the integer does not fit. A 0x without digits is 0, as for readers.
inline bool ToInteger(std::string_view text, long long* value) {
    *value = 0;
    return text == "0x" || _FromString(value, text.data(), text.data() + text.size());
}

// The nearest to the longest beginning that is a number, as readers take it; false beyond the range.
inline bool ToDouble(std::string_view text, double* value) {
    *value = 0;
    _FromString(value, text.data(), text.data() + text.size());
    return std::isfinite(*value);
}

inline std::string ToText(double value) {
    char text[kNumberTextRoom];
    return {text, PutDouble(text, value)};
}

} // namespace xSDL::numbers
