// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <string>
#include <string_view>

#include "qzl_base/shared/powers_of_ten.h"

namespace {

constexpr std::size_t kLongTextRoom = 20;          // of 2^64 - 1 in decimal
constexpr std::size_t kMostDigits = 9;             // distinguish any two floats
constexpr std::size_t kMostDoubleDigits = 17;      // distinguish any two doubles
constexpr float kIntegersEnd = 2147483648.0f;      // the first float beyond the 32-bit integers
constexpr float kExactIntegersEnd = 16777216.0f;   // below this value the float nearest to an integer is that integer
constexpr std::ptrdiff_t kShortenedByExponent = 3; // trailing zeros that are longer than "e" and a digit

char* PutView(char* out, std::string_view text) {
    return std::copy(text.begin(), text.end(), out);
}

template <class T>
char* PutInteger(char* out, T value, int base) {
    return std::to_chars(out, out + kLongTextRoom, value, base).ptr;
}

constexpr std::uint32_t kEightDigitsEnd = 100'000'000;

// The values of the eight decimal digits of a number below kEightDigitsEnd, the first one in the lowest byte. The
// number is split into halves of four digits, these into pairs, and these into digits, all pieces of a step at once.
std::uint64_t EightDigits(std::uint32_t value) {
    const std::uint64_t fours = value / 10000 | std::uint64_t{value % 10000} << 32;
    const std::uint64_t hundreds = (fours * 10486 >> 20) & 0x0000007F0000007Fu;
    const std::uint64_t pairs = hundreds | (fours - 100 * hundreds) << 16;
    const std::uint64_t tens = (pairs * 103 >> 10) & 0x000F000F000F000Fu;
    return tens | (pairs - 10 * tens) << 8;
}

// Write eight characters. Those after the returned end do not count.
char* PutDigits(char* out, std::uint64_t digits, int count) {
    digits |= 0x3030303030303030u;
    std::memcpy(out, &digits, sizeof digits);
    return out + count;
}

// Writes a number below kEightDigitsEnd.
char* PutShortInteger(char* out, std::uint32_t value) {
    const std::uint64_t digits = EightDigits(value);
    const int zeros = std::countr_zero(digits | std::uint64_t{1} << 56) / 8;
    return PutDigits(out, digits >> (8 * zeros), 8 - zeros);
}

// Writes `count` digits, up to eight, with leading zeros. The number has no more digits than that.
char* PutPlaces(char* out, std::uint32_t value, int count) {
    return PutDigits(out, EightDigits(value) >> (8 * (8 - count)), count);
}

template <class T>
std::string HexadecimalText(T bits) {
    std::array<char, kLongTextRoom> text{'0', 'x'};
    return {text.data(), PutInteger(text.data() + 2, bits, 16)};
}

// A finite positive number as digits * 10^exponent with as few digits as distinguish it from every other one.
template <std::size_t most>
struct eDecimalOf {
    std::array<char, most> digits;
    int count = 0;
    int exponent = 0;

    std::string_view Digits() const { return {digits.data(), static_cast<std::size_t>(count)}; }
};

using eDecimal = eDecimalOf<kMostDigits>;
using eDoubleDecimal = eDecimalOf<kMostDoubleDigits>;

eDecimal ShortestDecimal(float value) {
    // "d.dddddddde-dd": one digit before the point (if there is one) and two in the exponent.
    std::array<char, 24> text{};
    const char* const end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific).ptr;
    const int mantissaSize = static_cast<int>(end - text.data()) - 4;
    eDecimal decimal;
    decimal.digits[0] = text[0];
    std::copy_n(text.data() + 2, kMostDigits - 1, decimal.digits.data() + 1);
    decimal.count = std::max(mantissaSize - 1, 1);
    const int magnitude = (end[-2] - '0') * 10 + (end[-1] - '0');
    decimal.exponent = (end[-3] == '-' ? -magnitude : magnitude) - (decimal.count - 1);
    return decimal;
}

// Unlike that of a float, its exponent has two or three digits.
eDoubleDecimal ShortestDecimal(double value) {
    std::array<char, 32> text{};
    const char* const end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific).ptr;
    const char* const exponent = std::find<const char*>(text.data(), end, 'e');
    eDoubleDecimal decimal;
    decimal.digits[0] = text[0];
    std::copy_n(text.data() + 2, kMostDoubleDigits - 1, decimal.digits.data() + 1);
    decimal.count = std::max(static_cast<int>(exponent - text.data()) - 1, 1);
    std::from_chars(exponent + (exponent[1] == '+' ? 2 : 1), end, decimal.exponent);
    decimal.exponent -= decimal.count - 1;
    return decimal;
}

// Half the distances from a positive normal float to its neighbours: values nearer than these read as that float.
struct eHalfGaps {
    double below;
    double above;
};

eHalfGaps HalfGapsOf(float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    const std::uint64_t exponent = (bits >> 23) + (1023 - 127) - 24;
    const auto above = std::bit_cast<double>(exponent << 52);
    const bool powerOfTwo = (bits & 0x7fffffu) == 0;
    return {powerOfTwo ? above / 2 : above, above};
}

// From this value on an exponent never makes the text of a fraction shorter.
constexpr float kFewPlacesFrom = 0.01f;

// The fewest decimal places that distinguish a float below kExactIntegersEnd, and the decimal without its point.
struct eFewPlaces {
    int places = 0; // 0: more than eight
    std::uint64_t decimal = 0;
};

// Tries one to eight places at once, since a loop over them would end unpredictably. The products are exact: a float's
// 24 bits and 5^8 fit into a double. Adding and subtracting 2^52 rounds to an integer, a half to the even one.
eFewPlaces FewestPlaces(float value) {
    static constexpr std::size_t kPairs = 4;
    static constexpr auto& kPowers = decimal::kPowersOfTen<double, 2 * kPairs + 1>;
    alignas(16) double decimals[2 * kPairs];
    const eHalfGaps gaps = HalfGapsOf(value);
    const __m128d rounder = _mm_set1_pd(0x1p52);
    unsigned found = 0;
    for (std::size_t pair = 0; pair < kPairs; ++pair) {
        const __m128d power = _mm_loadu_pd(&kPowers[2 * pair + 1]);
        const __m128d scaled = _mm_mul_pd(_mm_set1_pd(double{value}), power);
        const __m128d nearest = _mm_sub_pd(_mm_add_pd(scaled, rounder), rounder);
        const __m128d difference = _mm_sub_pd(nearest, scaled);
        const __m128d reads = _mm_and_pd(_mm_cmplt_pd(difference, _mm_mul_pd(_mm_set1_pd(gaps.above), power)),
                                         _mm_cmpgt_pd(difference, _mm_mul_pd(_mm_set1_pd(-gaps.below), power)));
        found |= static_cast<unsigned>(_mm_movemask_pd(reads)) << (2 * pair);
        _mm_store_pd(decimals + 2 * pair, nearest);
    }
    if (found == 0)
        return {};
    const int least = std::countr_zero(found);
    return {least + 1, static_cast<std::uint64_t>(decimals[least])};
}

template <std::size_t most>
char* PutWithExponent(char* out, const eDecimalOf<most>& decimal) {
    out = PutView(out, decimal.Digits());
    *out++ = 'e';
    return PutInteger(out, decimal.exponent, 10);
}

template <std::size_t most>
int LengthWithExponent(const eDecimalOf<most>& decimal) {
    const int magnitude = std::abs(decimal.exponent);
    return decimal.count + 1 + (decimal.exponent < 0 ? 1 : 0) + (magnitude < 10 ? 1 : magnitude < 100 ? 2 : 3);
}

// Writes a value below 1. From there up to kExactIntegersEnd, eight places distinguish any two floats.
char* PutFraction(char* out, const eDecimal& decimal) {
    if (LengthWithExponent(decimal) < 2 - decimal.exponent)
        return PutWithExponent(out, decimal);
    out = PutView(out, "0.");
    out = std::fill_n(out, -decimal.exponent - decimal.count, '0');
    return PutView(out, decimal.Digits());
}

// Writes an integer below kExactIntegersEnd.
char* PutSmallInteger(char* out, int magnitude) {
    char* const end = PutInteger(out, magnitude, 10);
    char* digitsEnd = end;
    while (digitsEnd - 1 > out && digitsEnd[-1] == '0')
        --digitsEnd;
    const std::ptrdiff_t zeros = end - digitsEnd;
    if (zeros < kShortenedByExponent)
        return end;
    *digitsEnd++ = 'e';
    *digitsEnd++ = static_cast<char>('0' + zeros);
    return digitsEnd;
}

char* PutLargeInteger(char* out, const eDecimal& decimal, float magnitude, bool negative) {
    const bool fitsInt = magnitude < kIntegersEnd || (negative && magnitude == kIntegersEnd);
    if (!fitsInt)
        return PutWithExponent(out, decimal);
    char* const end = PutInteger(out, static_cast<unsigned>(magnitude), 10);
    return end - out <= LengthWithExponent(decimal) ? end : PutWithExponent(out, decimal);
}

// The decimal lies between the same two integers as the value, since these are floats, too.
char* PutFewPlaces(char* out, std::uint32_t whole, const eFewPlaces& few) {
    const std::uint32_t power = decimal::kPowersOfTen<std::uint32_t, 9>[static_cast<std::size_t>(few.places)];
    out = PutShortInteger(out, whole);
    *out++ = '.';
    const std::uint64_t fraction = few.decimal - std::uint64_t{whole} * power;
    return PutPlaces(out, static_cast<std::uint32_t>(fraction), few.places);
}

char* PutMagnitude(char* out, float magnitude, bool negative) {
    if (magnitude >= kExactIntegersEnd)
        return PutLargeInteger(out, ShortestDecimal(magnitude), magnitude, negative);
    const int whole = static_cast<int>(magnitude);
    if (static_cast<float>(whole) == magnitude)
        return PutSmallInteger(out, whole);
    if (magnitude >= kFewPlacesFrom)
        if (const eFewPlaces few = FewestPlaces(magnitude); few.places > 0)
            return PutFewPlaces(out, static_cast<std::uint32_t>(whole), few);
    return PutFraction(out, ShortestDecimal(magnitude));
}

// A point without decimals makes an integer a float to a reader, unless it is within 32 bits.
char* PutWithPoint(char* out, const eDoubleDecimal& decimal, bool fitsInt) {
    const std::string_view digits = decimal.Digits();
    if (decimal.exponent >= 0) {
        out = std::fill_n(PutView(out, digits), decimal.exponent, '0');
        return fitsInt ? out : PutView(out, ".");
    }
    const int before = decimal.count + decimal.exponent;
    if (before <= 0)
        return PutView(std::fill_n(PutView(out, "0."), -before, '0'), digits);
    const auto point = static_cast<std::size_t>(before);
    return PutView(PutView(PutView(out, digits.substr(0, point)), "."), digits.substr(point));
}

int LengthWithPoint(const eDoubleDecimal& decimal, bool fitsInt) {
    if (decimal.exponent >= 0)
        return decimal.count + decimal.exponent + (fitsInt ? 0 : 1);
    return std::max(decimal.count, 1 - decimal.exponent) + 1;
}

// The signs and the values that have no digits; null for other values.
template <class T>
char* PutSpecial(char** out, T value) {
    if (std::isnan(value))
        return PutView(*out, "nan");
    const bool negative = std::signbit(value);
    if (negative)
        *(*out)++ = '-';
    if (std::isinf(value))
        return PutView(*out, "inf");
    return value == 0 ? PutView(*out, negative ? "0." : "0") : nullptr;
}

char* PutDecimal(char* out, int value) {
    auto magnitude = static_cast<std::uint32_t>(value);
    if (value < 0) {
        *out++ = '-';
        magnitude = 0u - magnitude;
    }
    if (magnitude < kEightDigitsEnd)
        return PutShortInteger(out, magnitude);
    out = PutShortInteger(out, magnitude / kEightDigitsEnd);
    return PutPlaces(out, magnitude % kEightDigitsEnd, 8);
}

} // namespace

std::string ToString(int value, bool hexadecimal) {
    std::array<char, kNumberTextRoom> text;
    return {text.data(), PutInt(text.data(), value, hexadecimal)};
}

std::string ToString(unsigned long long value, bool hexadecimal) {
    if (hexadecimal)
        return HexadecimalText(value);
    std::array<char, kLongTextRoom> text;
    return {text.data(), PutInteger(text.data(), value, 10)};
}

std::string ToString(float value) {
    std::array<char, kNumberTextRoom> text;
    return {text.data(), PutFloat(text.data(), value)};
}

char* PutInt(char* out, int value, bool hexadecimal) {
    if (!hexadecimal)
        return PutDecimal(out, value);
    return PutInteger(PutView(out, "0x"), static_cast<unsigned>(value), 16);
}

char* PutFloat(char* out, float value) {
    if (char* const end = PutSpecial(&out, value))
        return end;
    return PutMagnitude(out, std::fabs(value), std::signbit(value));
}

char* PutDouble(char* out, double value) {
    if (char* const end = PutSpecial(&out, value))
        return end;
    const eDoubleDecimal decimal = ShortestDecimal(std::fabs(value));
    const bool fitsInt = value >= -2147483648.0 && value <= 2147483647.0;
    if (LengthWithPoint(decimal, fitsInt) <= LengthWithExponent(decimal))
        return PutWithPoint(out, decimal, fitsInt);
    return PutWithExponent(out, decimal);
}
