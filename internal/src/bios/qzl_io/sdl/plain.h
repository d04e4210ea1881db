// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <bit>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "sdl/lexer.h"

// The most frequent form of each kind of token, passed without a check for other forms. Each function returns the end
// of the token's text, where the general lexer (lexer.h) would find it, or null.

namespace xSDL {

// Marks those of 16 characters that are not digits, from the one after the sign on.
QZL_IO_ALWAYS_INLINE unsigned NoDigits(const char* begin, unsigned sign) {
    return (Mask(IsDigit(Load16(begin))) ^ 0xFFFFu) >> sign;
}

// The characters after which a number may be of another kind than it seems.
inline constexpr std::array<bool, 256> kContinuesNumber = [] {
    std::array<bool, 256> continues{};
    for (const char c : {'.', 'e', 'E', 'x'})
        continues[static_cast<unsigned char>(c)] = true;
    return continues;
}();

QZL_IO_ALWAYS_INLINE bool ContinuesNumber(char c) {
    return kContinuesNumber[static_cast<unsigned char>(c)];
}

// The functions for numbers read up to 16 characters before the end of the digits, so they take none before the 16th
// character of `source`. A number has less than 16 characters, without its exponent.
QZL_IO_ALWAYS_INLINE const char* PassPlainInt(const char* begin, const char* source, unsigned long long* value) {
    const unsigned sign = *begin == '-';
    const unsigned others = NoDigits(begin, sign);
    if (begin - source < 16 || others == 0 || (others & 1) != 0)
        return nullptr;
    const auto digits = static_cast<unsigned>(std::countr_zero(others));
    const char* const end = begin + sign + digits;
    if (ContinuesNumber(*end))
        return nullptr;
    *value = DigitsBefore(end, digits);
    return end;
}

// Passes the digits of a number of either kind, and its point. An exponent may follow.
QZL_IO_ALWAYS_INLINE const char* PassPlainDecimal(const char* begin, const char* source, eLexeme* number) {
    const unsigned sign = *begin == '-';
    unsigned others = NoDigits(begin, sign);
    if (begin - source < 16 || others == 0 || (others & 1) != 0)
        return nullptr;
    const char* const first = begin + sign;
    const auto digits = static_cast<unsigned>(std::countr_zero(others));
    const char* const whole = first + digits;
    number->exact = true;
    if (*whole != '.') {
        number->type = sdlInt;
        number->digits = DigitsBefore(whole, digits);
        return whole;
    }
    others &= others - 1;
    if (others == 0)
        return nullptr;
    const auto size = static_cast<unsigned>(std::countr_zero(others));
    const unsigned decimals = size - digits - 1;
    number->type = sdlFloat;
    number->digits = DigitsBefore(first + size, size - 1, decimals);
    number->exponent = -static_cast<int>(decimals);
    return first + size;
}

// Passes a number of either kind whose digits tell its value.
QZL_IO_ALWAYS_INLINE const char* PassPlainNumber(const char* begin, const char* source, eLexeme* number) {
    const char* const at = PassPlainDecimal(begin, source, number);
    if (!at)
        return nullptr;
    const bool takesExponent = *begin != '0' || at - begin > 1;
    const char* const end = CutFromDigits(begin, at, takesExponent, number);
    return number->exact && *end != 'x' ? end : nullptr;
}

// Passes a string without a backslash, up to its closing quote.
QZL_IO_ALWAYS_INLINE const char* PassPlainString(const char* begin) {
    if (*begin != '"')
        return nullptr;
    const char* const end = PassStringBody(begin + 1);
    return *end == '"' ? end : nullptr;
}

QZL_IO_ALWAYS_INLINE const char* PassWord(const char* begin) {
    return Begins(*begin) == eBegins::Word ? PassIdent(begin + 1) : nullptr;
}

// Passes a word of at most 16 characters.
QZL_IO_ALWAYS_INLINE const char* PassShortWord(const char* begin) {
    const unsigned others = Mask(IsInIdent(Load16(begin + 1))) ^ 0xFFFFu;
    return Begins(*begin) == eBegins::Word && others != 0 ? begin + 1 + std::countr_zero(others) : nullptr;
}

// Passes a block start without a mark, whose text is empty.
QZL_IO_ALWAYS_INLINE const char* PassPlainBlockStart(const char* begin) {
    return begin[0] == '{' && begin[1] != '#' ? begin : nullptr;
}

QZL_IO_ALWAYS_INLINE const char* PassBlockEnd(const char* begin) {
    return *begin == '}' ? begin : nullptr;
}

// The character that a token begins with, if it tells by itself what that token is to a reader; 0 otherwise. A string
// in which the text ends is not a token: in an included source another one may follow, and in the last source it is as
// good as one.
QZL_IO_ALWAYS_INLINE char SeePlain(const char* begin, bool included) {
    if (Begins(*begin) == eBegins::Other || (begin[0] == '{' && begin[1] == '#'))
        return 0;
    if (included && *begin == '"' && *PassStringBody(begin + 1) != '"')
        return 0;
    return *begin;
}

} // namespace xSDL
