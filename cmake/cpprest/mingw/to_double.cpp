// SPDX-License-Identifier: BSL-1.0
#include "include/cpprest_mingw.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

namespace qzl_cpprest {
namespace {

long long Exponent(std::string_view number) {
    const std::size_t mark = number.find_first_of("eE");
    if (mark == std::string_view::npos) {
        return 0;
    }
    std::string_view text = number.substr(mark + 1);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    int value = std::numeric_limits<int>::max();
    std::from_chars(text.data(), text.data() + text.size(), value);
    return negative ? -static_cast<long long>(value) : value;
}

// The power of ten of the first digit that is not zero.
long long Magnitude(std::string_view number) {
    const std::string_view digits = number.substr(0, number.find_first_of("eE"));
    const std::size_t first = digits.find_first_of("123456789");
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const long long place = static_cast<long long>(point) - static_cast<long long>(first);
    return Exponent(number) + place;
}

} // namespace

double ToDouble(const char* text) {
    const std::string_view number(text);
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc::result_out_of_range) {
        return value;
    }
    const double size = Magnitude(number) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return number.starts_with('-') ? -size : size;
}

double ToDouble(const wchar_t* text) {
    std::string narrow;
    while (*text > 0 && *text < 0x80) {
        narrow += static_cast<char>(*text++);
    }
    return ToDouble(narrow.c_str());
}

} // namespace qzl_cpprest
