// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

#include "qzl_base/shared/ascii.h"
#include "qzl_base/shared/decimal_float.h"

namespace {

using ascii::HexDigit;
using ascii::IsDigit;

// std::from_chars accepts no plus sign.
const char* SkipPlus(const char* begin, const char* end) {
    return end - begin >= 2 && *begin == '+' && begin[1] != '-' ? begin + 1 : begin;
}

bool IsHexadecimal(const char* begin, const char* end) {
    return end - begin >= 2 && begin[0] == '0' && begin[1] == 'x';
}

// Gives the low bits of the type.
template <class T>
bool HexadecimalFromString(T* value, const char* begin, const char* end) {
    using eBits = std::make_unsigned_t<T>;
    constexpr eBits kRoomForDigit = static_cast<eBits>(~eBits{0}) >> 4;
    const char* const digits = begin + 2;
    eBits bits = 0;
    bool fits = true;
    const char* at = digits;
    for (int digit = 0; at != end && (digit = HexDigit(*at)) >= 0; ++at) {
        fits = fits && bits <= kRoomForDigit;
        bits = bits << 4 | static_cast<eBits>(digit);
    }
    *value = static_cast<T>(bits);
    return fits && at == end && at != digits;
}

template <class eInteger, class eFloating>
bool HexadecimalAs(eFloating* value, const char* begin, const char* end) {
    eInteger integer = 0;
    const bool whole = HexadecimalFromString(&integer, begin, end);
    *value = static_cast<eFloating>(integer);
    return whole;
}

template <class T>
bool DecimalFromString(T* value, const char* begin, const char* end) {
    const auto [stop, failure] = std::from_chars(SkipPlus(begin, end), end, *value);
    if (failure == std::errc::invalid_argument)
        *value = 0;
    if (failure == std::errc::result_out_of_range)
        *value = *begin == '-' ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
    return failure == std::errc() && stop == end;
}

template <class T>
bool IntegerFromString(T* value, const char* begin, const char* end) {
    if (IsHexadecimal(begin, end))
        return HexadecimalFromString(value, begin, end);
    return DecimalFromString(value, begin, end);
}

const char* TakeDigits(const char* at, const char* end, std::uint64_t* value) {
    for (; at != end && IsDigit(*at); ++at)
        *value = *value * 10 + static_cast<unsigned>(*at - '0');
    return at;
}

// Any number of that many digits fits into 64 bits.
constexpr std::ptrdiff_t kCertainDigits = std::numeric_limits<std::uint64_t>::digits10;

// Adds the exponent after an "e" and returns its end; null if it is ill-formed or has more than two digits.
const char* TakeExponent(const char* at, const char* end, int* exponent) {
    const bool negative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+'))
        ++at;
    std::uint64_t magnitude = 0;
    const char* const stop = TakeDigits(at, end, &magnitude);
    if (stop == at || stop - at > 2)
        return nullptr;
    *exponent += negative ? -static_cast<int>(magnitude) : static_cast<int>(magnitude);
    return stop;
}

// Reads a number of ordinary length and size, whose sign has been passed, and returns its end; null for other numbers
// and if there is none.
const char* TakeOrdinary(float* value, bool negative, const char* begin, const char* end) {
    std::uint64_t digits = 0;
    const char* at = TakeDigits(begin, end, &digits);
    std::ptrdiff_t count = at - begin;
    int exponent = 0;
    if (at != end && *at == '.') {
        const char* const fraction = at + 1;
        at = TakeDigits(fraction, end, &digits);
        count += at - fraction;
        exponent = static_cast<int>(fraction - at);
    }
    if (count == 0 || count > kCertainDigits)
        return nullptr;
    if (at != end && (*at | 0x20) == 'e') {
        at = TakeExponent(at + 1, end, &exponent);
        if (!at)
            return nullptr;
    }
    return decimal::ToFloat(digits, exponent, negative, value) ? at : nullptr;
}

// Whether a decimal number begins here, with or without a sign; false for a name such as "inf".
bool BeginsNumber(const char* at, const char* end) {
    if (at != end && *at == '-')
        ++at;
    return at != end && (IsDigit(*at) || *at == '.');
}

// For a number out of its type's range: whether it is too large rather than too small.
bool TooLarge(const char* at, const char* end) {
    long long magnitude = 0;
    bool pointSeen = false;
    bool digitSeen = false;
    for (; at != end && (IsDigit(*at) || *at == '.' || *at == '-'); ++at) {
        pointSeen = pointSeen || *at == '.';
        digitSeen = digitSeen || (IsDigit(*at) && *at != '0');
        if (IsDigit(*at) && digitSeen != pointSeen)
            magnitude += digitSeen ? 1 : -1;
    }
    if (at == end)
        return magnitude > 0;
    int exponent = 0;
    _FromString(&exponent, at + 1, end);
    return magnitude + exponent > 0;
}

template <class T>
T OutOfRange(const char* begin, const char* end) {
    const T magnitude = TooLarge(begin, end) ? std::numeric_limits<T>::infinity() : T{0};
    return *begin == '-' ? -magnitude : magnitude;
}

template <class T>
bool AnyFromString(T* value, const char* begin, const char* end) {
    *value = 0;
    const char* const number = SkipPlus(begin, end);
    if (!BeginsNumber(number, end))
        return false;
    const auto [stop, failure] = std::from_chars(number, end, *value);
    if (failure == std::errc::result_out_of_range)
        *value = OutOfRange<T>(number, stop);
    return failure != std::errc::invalid_argument && stop == end;
}

const char* EndOf(const char* text) {
    return text ? text + std::strlen(text) : text;
}

} // namespace

bool _FromString(int* value, const char* text) {
    return _FromString(value, text, EndOf(text));
}

bool _FromString(int* value, const char* begin, const char* end) {
    return IntegerFromString(value, begin, end);
}

bool _FromString(long long* value, const char* begin, const char* end) {
    return IntegerFromString(value, begin, end);
}

// std::from_chars accepts no sign for an unsigned number. "-0" is a zero.
bool _FromString(unsigned long long* value, const char* begin, const char* end) {
    if (begin == end || *begin != '-')
        return IntegerFromString(value, begin, end);
    const bool whole = DecimalFromString(value, begin + 1, end) && *value == 0;
    *value = 0;
    return whole;
}

bool _FromString(float* value, const char* text) {
    return _FromString(value, text, EndOf(text));
}

bool _FromString(float* value, const char* begin, const char* end) {
    const bool negative = begin != end && *begin == '-';
    const bool sign = negative || (begin != end && *begin == '+');
    if (const char* const stop = TakeOrdinary(value, negative, begin + sign, end))
        return stop == end || (IsHexadecimal(begin, end) && HexadecimalAs<int>(value, begin, end));
    return AnyFromString(value, begin, end);
}

bool _FromString(double* value, const char* begin, const char* end) {
    if (IsHexadecimal(begin, end))
        return HexadecimalAs<unsigned long long>(value, begin, end);
    return AnyFromString(value, begin, end);
}
