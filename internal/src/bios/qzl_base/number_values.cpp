#include <qzl_base/convert.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>

namespace {

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit, -1 for any other character.
constexpr int HexDigit(char c) {
    if (IsDigit(c))
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// std::from_chars takes no plus sign.
const char* SkipPlus(const char* begin, const char* end) {
    return end - begin >= 2 && *begin == '+' && begin[1] != '-' ? begin + 1 : begin;
}

bool IsHexadecimal(const char* begin, const char* end) {
    return end - begin >= 2 && begin[0] == '0' && begin[1] == 'x';
}

bool HexadecimalFromString(int* value, const char* begin, const char* end) {
    const char* const digits = begin + 2;
    unsigned bits = 0;
    bool fits = true;
    const char* at = digits;
    for (int digit = 0; at != end && (digit = HexDigit(*at)) >= 0; ++at) {
        fits = fits && bits < 0x10000000u;
        bits = bits << 4 | static_cast<unsigned>(digit);
    }
    *value = static_cast<int>(bits);
    return fits && at == end && at != digits;
}

bool HexadecimalFromString(float* value, const char* begin, const char* end) {
    int integer = 0;
    const bool whole = HexadecimalFromString(&integer, begin, end);
    *value = static_cast<float>(integer);
    return whole;
}

bool DecimalFromString(int* value, const char* begin, const char* end) {
    const auto [stop, failure] = std::from_chars(SkipPlus(begin, end), end, *value);
    if (failure == std::errc::invalid_argument)
        *value = 0;
    if (failure == std::errc::result_out_of_range)
        *value = *begin == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    return failure == std::errc() && stop == end;
}

const char* TakeDigits(const char* at, const char* end, std::uint64_t* value) {
    for (; at != end && IsDigit(*at); ++at)
        *value = *value * 10 + static_cast<unsigned>(*at - '0');
    return at;
}

// Powers of ten that a double holds exactly.
constexpr std::array kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMostPower = static_cast<int>(kPowers.size()) - 1;
constexpr std::ptrdiff_t kExactDigits = 15; // of any integer that a double holds exactly

// digits * 10^exponent as the nearest float. False when rounding to a double has hidden which one that is: when the
// double lies just between two floats.
bool NearestFloat(float* value, std::uint64_t digits, int exponent) {
    const auto whole = static_cast<double>(digits);
    const double nearest = exponent < 0 ? whole / kPowers[static_cast<std::size_t>(-exponent)]
                                        : whole * kPowers[static_cast<std::size_t>(exponent)];
    constexpr std::uint64_t kBitsBeyondFloat = 0x1fffffff;
    if ((std::bit_cast<std::uint64_t>(nearest) & kBitsBeyondFloat) == 0x10000000)
        return false;
    *value = static_cast<float>(nearest);
    return true;
}

// Adds the exponent behind an "e" and returns its end, null when it is ill-formed or of more than two digits.
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

// Reads an unsigned number of ordinary length and size and returns its end, null when it is not of that kind or no
// number at all.
const char* TakeOrdinary(float* value, const char* begin, const char* end) {
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
    if (count == 0 || count > kExactDigits)
        return nullptr;
    if (at != end && (*at | 0x20) == 'e') {
        at = TakeExponent(at + 1, end, &exponent);
        if (!at)
            return nullptr;
    }
    return exponent >= -kMostPower && exponent <= kMostPower && NearestFloat(value, digits, exponent) ? at : nullptr;
}

// Whether a sign, if any, is followed by what a decimal number begins with, and not by a name such as "inf".
bool BeginsNumber(const char* at, const char* end) {
    if (at != end && *at == '-')
        ++at;
    return at != end && (IsDigit(*at) || *at == '.');
}

// For a number that is out of a float's range: whether it is too large, rather than too small.
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

float OutOfRange(const char* begin, const char* end) {
    const float magnitude = TooLarge(begin, end) ? std::numeric_limits<float>::infinity() : 0.0f;
    return *begin == '-' ? -magnitude : magnitude;
}

bool AnyFromString(float* value, const char* begin, const char* end) {
    *value = 0;
    const char* const number = SkipPlus(begin, end);
    if (!BeginsNumber(number, end))
        return false;
    const auto [stop, failure] = std::from_chars(number, end, *value);
    if (failure == std::errc::result_out_of_range)
        *value = OutOfRange(number, stop);
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
    if (IsHexadecimal(begin, end))
        return HexadecimalFromString(value, begin, end);
    return DecimalFromString(value, begin, end);
}

bool _FromString(float* value, const char* text) {
    return _FromString(value, text, EndOf(text));
}

bool _FromString(float* value, const char* begin, const char* end) {
    const bool negative = begin != end && *begin == '-';
    const bool sign = negative || (begin != end && *begin == '+');
    if (const char* const stop = TakeOrdinary(value, begin + sign, end)) {
        *value = negative ? -*value : *value;
        return stop == end || (IsHexadecimal(begin, end) && HexadecimalFromString(value, begin, end));
    }
    return AnyFromString(value, begin, end);
}
