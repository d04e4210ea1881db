// SPDX-License-Identifier: BSL-1.0
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>

#include <qzl_base/convert.h>

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes as a text with a number, and the first ones as a number to be written.

namespace {

template <class T>
struct eNumber {
    T value = 0;
    bool whole = false;
};

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexadecimalDigits = "0123456789abcdefABCDEF";

// The place after the characters of a class, from a place on.
std::size_t After(std::string_view text, std::size_t at, std::string_view characters) {
    const std::size_t end = text.find_first_not_of(characters, at);
    return end == text.npos ? text.size() : end;
}

bool IsHexadecimal(std::string_view text) {
    return text.starts_with("0x");
}

std::size_t AfterSign(std::string_view text) {
    return text.starts_with('+') || text.starts_with('-') ? 1 : 0;
}

eNumber<int> HexadecimalIn(std::string_view text) {
    const std::size_t end = After(text, 2, kHexadecimalDigits);
    std::uint64_t value = 0;
    bool fits = true;
    for (const char digit : text.substr(2, end - 2)) {
        const std::size_t place = kHexadecimalDigits.find(digit);
        value = value << 4 | (place < 16 ? place : place - 6);
        fits = fits && value <= std::numeric_limits<std::uint32_t>::max();
        value &= std::numeric_limits<std::uint32_t>::max();
    }
    return {static_cast<int>(value), fits && end > 2 && end == text.size()};
}

eNumber<int> IntIn(std::string_view text) {
    if (IsHexadecimal(text))
        return HexadecimalIn(text);
    const std::size_t begin = AfterSign(text);
    const std::size_t end = After(text, begin, kDigits);
    const bool negative = text.starts_with('-');
    const std::int64_t limit = std::int64_t{std::numeric_limits<int>::max()} + (negative ? 1 : 0);
    std::int64_t value = 0;
    bool fits = true;
    for (const char digit : text.substr(begin, end - begin)) {
        value = value * 10 + (digit - '0');
        fits = fits && value <= limit;
        value = fits ? value : limit;
    }
    return {static_cast<int>(negative ? -value : value), fits && end > begin && end == text.size()};
}

// The end of the longest beginning that is a number; 0 if there is none.
std::size_t FloatEnd(std::string_view text) {
    const std::size_t begin = AfterSign(text);
    std::size_t end = After(text, begin, kDigits);
    std::size_t digits = end - begin;
    if (end < text.size() && text[end] == '.') {
        const std::size_t fraction = end + 1;
        end = After(text, fraction, kDigits);
        digits += end - fraction;
    }
    if (digits == 0)
        return 0;
    if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
        const std::size_t exponent = end + 1 + AfterSign(text.substr(end + 1));
        const std::size_t exponentEnd = After(text, exponent, kDigits);
        end = exponentEnd > exponent ? exponentEnd : end;
    }
    return end;
}

eNumber<float> FloatIn(std::string_view text) {
    if (IsHexadecimal(text)) {
        const eNumber<int> integer = HexadecimalIn(text);
        return {static_cast<float>(integer.value), integer.whole};
    }
    const std::size_t end = FloatEnd(text);
    return {std::strtof(std::string(text.substr(0, end)).c_str(), nullptr), end > 0 && end == text.size()};
}

template <class T>
eNumber<T> Read(std::string_view text) {
    eNumber<T> number{T{7}, false};
    number.whole = _FromString(&number.value, text.data(), text.data() + text.size());
    return number;
}

bool HaveSameBits(float one, float other) {
    return std::bit_cast<std::uint32_t>(one) == std::bit_cast<std::uint32_t>(other);
}

void CheckRead(std::string_view text) {
    const eNumber<int> integer = Read<int>(text), expectedInteger = IntIn(text);
    Require(integer.value == expectedInteger.value, "the integer in " + Shown(text));
    Require(integer.whole == expectedInteger.whole, "the end of the integer in " + Shown(text));
    const eNumber<float> number = Read<float>(text), expected = FloatIn(text);
    Require(HaveSameBits(number.value, expected.value), "the float in " + Shown(text));
    Require(number.whole == expected.whole, "the end of the float in " + Shown(text));

    const std::string terminated(text);
    const std::string_view beforeZero = terminated.c_str();
    int value = 7;
    Require(_FromString(&value, terminated.c_str()) == IntIn(beforeZero).whole, "the end of a terminated integer");
    Require(value == IntIn(beforeZero).value, "a terminated integer");
    float floatValue = 7;
    Require(_FromString(&floatValue, terminated.c_str()) == FloatIn(beforeZero).whole, "the end of a terminated float");
    Require(HaveSameBits(floatValue, FloatIn(beforeZero).value), "a terminated float");
}

template <class T>
std::string Digits(T value, int base) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value, base).ptr};
}

void CheckIntText(unsigned long long bits) {
    const auto value = static_cast<int>(bits);
    RequireEqual(ToString(value, false), Digits(value, 10), "a decimal integer");
    RequireEqual(ToString(value, true), "0x" + Digits(static_cast<unsigned>(value), 16), "a hexadecimal integer");
    RequireEqual(ToString(bits, false), Digits(bits, 10), "a long decimal integer");
    RequireEqual(ToString(bits, true), "0x" + Digits(bits, 16), "a long hexadecimal integer");
    const auto negative = static_cast<long long>(bits);
    RequireEqual(ToString(negative, false), Digits(negative, 10), "a long integer with a sign");
    char room[kNumberTextRoom];
    RequireEqual(std::string(room, PutInt(room, value)), ToString(value, false), "an integer in a buffer");
}

void CheckFloatText(float value) {
    const std::string text = ToString(value);
    if (!std::isfinite(value)) {
        RequireEqual(text, std::string(std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf"), "not a number");
        return;
    }
    const eNumber<float> back = Read<float>(text);
    Require(back.whole && HaveSameBits(back.value, value), "a float does not come back: " + text);
    const bool isInteger = text.find_first_of(".e") == text.npos;
    Require(!isInteger || Read<int>(text).whole, "an integer text is outside the integers: " + text);
    char shortest[64];
    const auto end = std::to_chars(shortest, shortest + sizeof shortest, value).ptr;
    Require(text.size() <= static_cast<std::size_t>(end - shortest) + 1, "a float's text is long: " + text);
    char room[kNumberTextRoom];
    RequireEqual(std::string(room, PutFloat(room, value)), text, "a float in a buffer");
}

} // namespace

void Check(std::string_view input) {
    CheckRead(input);
    const unsigned long long bits = eScript(input).Number(8);
    CheckIntText(bits);
    CheckFloatText(std::bit_cast<float>(static_cast<std::uint32_t>(bits >> 32)));
}

void Work(std::string_view input) {
    Read<int>(input);
    Read<float>(input);
}
