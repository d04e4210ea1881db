#pragma once

#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "qzl_base/shared/ascii.h"

// The numbers that number tokens stand for, in full range.

namespace xSDL::numbers {

inline bool IsHex(std::string_view text) {
    return text.size() >= 2 && text[0] == '0' && text[1] == 'x';
}

// False if the integer does not fit.
inline bool ToInteger(std::string_view text, long long* value) {
    const bool hex = IsHex(text);
    if (hex || text.starts_with('+'))
        text.remove_prefix(hex ? 2 : 1);
    *value = 0;
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), *value, hex ? 16 : 10);
    return (hex && text.empty()) || (result.ec == std::errc() && result.ptr == text.data() + text.size());
}

// The nearest to the longest beginning that is a number, as readers take it; false beyond the range.
inline bool ToDouble(std::string_view text, double* value) {
    if (long long integer = 0; IsHex(text)) {
        const bool fits = ToInteger(text, &integer);
        *value = static_cast<double>(integer);
        return fits;
    }
    if (text.starts_with('+'))
        text.remove_prefix(1);
    return std::from_chars(text.data(), text.data() + text.size(), *value).ec == std::errc();
}

} // namespace xSDL::numbers
