// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "qzl_base/shared/powers_of_ten.h"
#include "sdl/lexer.h"

// The most frequent form of each kind of token, passed without a check for other forms. Each function returns the end
// of the token's text, where the general lexer (lexer.h) would find it, or null.

namespace xSDL {

// Marks those of 16 characters that are not digits, from the one after the sign on.
QZL_IO_ALWAYS_INLINE unsigned NoDigits(const char* begin, unsigned sign) {
    return (Mask(IsDigit(Load16(begin))) ^ 0xFFFFu) >> sign;
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
    if (*end == '.' || (*end | 0x20) == 'e' || *end == 'x')
        return nullptr;
    *value = DigitsBefore(end, digits);
    return end;
}

// Passes a number of either kind whose digits tell its value.
QZL_IO_ALWAYS_INLINE const char* PassPlainNumber(const char* begin, const char* source, eLexeme* number) {
    const unsigned sign = *begin == '-';
    unsigned others = NoDigits(begin, sign);
    if (begin - source < 16 || others == 0 || (others & 1) != 0)
        return nullptr;
    const char* const first = begin + sign;
    const auto digits = static_cast<unsigned>(std::countr_zero(others));
    const char* at = first + digits;
    bool takesExponent = *begin != '0' || digits > 1;
    number->type = sdlInt;
    number->exact = true;
    number->digits = DigitsBefore(at, digits);
    if (*at == '.') {
        others &= others - 1;
        if (others == 0)
            return nullptr;
        at = first + std::countr_zero(others);
        const unsigned decimals = static_cast<unsigned>(std::countr_zero(others)) - digits - 1;
        number->digits =
            number->digits * decimal::kPowersOfTen<std::uint64_t, 15>[decimals] + DigitsBefore(at, decimals);
        number->type = sdlFloat;
        number->exponent = -static_cast<int>(decimals);
        takesExponent = true;
    }
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
