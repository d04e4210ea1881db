// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "qzl_base/shared/ascii.h"
#include "sdl/automaton.h"
#include "sdl/scan.h"

// The fast lexer: the automaton of automaton.h, taken in runs. The first character is decided by the automaton's own
// row for "between tokens"; what follows it is scanned many characters at a time.

namespace xSDL {

inline bool Has(eLexerState state, char c) {
    return kAutomaton[state][static_cast<unsigned char>(c)].to == state;
}

inline void SetText(eLexeme* token, const char* begin, const char* end) {
    token->begin = begin;
    token->length = static_cast<std::size_t>(end - begin);
}

// More digits than this may not fit into eLexeme::digits.
inline constexpr std::ptrdiff_t kExactDigits = 18;

using ascii::IsDigit;

// What follows the e of a number: all signs and digits there. An optional sign and one or two digits are plain, and are
// a power of ten; anything else is left to the general conversion.
struct eExponent {
    const char* end;
    int power;
    bool plain;
};

QZL_IO_ALWAYS_INLINE eExponent CutExponent(const char* begin) {
    const char* at = begin;
    while (Has(stExponent, *at))
        ++at;
    const char* const first = begin + (*begin == '-' || *begin == '+');
    const bool plain = (at - first == 1 && IsDigit(*first)) || (at - first == 2 && IsDigit(*first) && IsDigit(at[-1]));
    const int power = plain ? (at[-1] - '0') + (at - first == 2 ? 10 * (*first - '0') : 0) : 0;
    return {at, *begin == '-' ? -power : power, plain};
}

// The rest of a number after its digits and point.
QZL_IO_ALWAYS_INLINE const char* CutFromDigits(const char* begin, const char* at, bool takesExponent, eLexeme* token) {
    if ((*at | 0x20) == 'e' && takesExponent) {
        const eExponent exponent = CutExponent(at + 1);
        at = exponent.end;
        token->type = sdlFloat;
        token->exponent += exponent.power;
        token->exact = token->exact && exponent.plain;
    }
    SetText(token, begin, at);
    return at;
}

// A number from its first character on, which may be a sign.
inline const char* CutNumber(const char* begin, eLexeme* token) {
    const char* const first = begin + (*begin == '-' || *begin == '+');
    const char* at = PassDigits(first, &token->digits);
    std::ptrdiff_t digits = at - first;
    bool takesExponent = *begin != '0' || digits > 1;
    token->type = sdlInt;
    if (*at == '.') {
        const char* const fraction = ++at;
        at = PassDigits(at, &token->digits);
        digits += at - fraction;
        token->type = sdlFloat;
        token->exponent = digits <= kExactDigits ? static_cast<int>(fraction - at) : 0;
        takesExponent = true;
    }
    token->exact = digits <= kExactDigits;
    return CutFromDigits(begin, at, takesExponent, token);
}

inline const char* CutHex(const char* begin, eLexeme* token) {
    const char* const digits = begin + 2;
    const char* at = digits;
    while (Has(stHex, *at))
        ++at;
    token->type = sdlHex;
    SetText(token, begin, at == digits ? begin + 1 : at);
    return at;
}

inline const char* CutMark(const char* begin, eLexeme* token) {
    const char* at = begin;
    if (*at == '#') {
        at = PassMark(at);
        SetText(token, begin, at);
    }
    token->type = sdlBlockStart;
    return at;
}

// A string from after its opening quote. The token has no type if the text ends in it.
inline const char* CutString(const char* begin, int* line, eLexeme* token) {
    const char* at = PassStringBody(begin);
    while (*at == '\\') {
        token->escaped = true;
        ++at;
        *line = LinesOn(*line, *at == '\n');
        at = PassStringBody(at + (*at != 0));
    }
    if (*at == 0)
        return at;
    SetText(token, begin, at);
    token->type = *at == '"' ? sdlString : sdlError;
    return at + (*at == '"');
}

// What a character between tokens begins.
enum class eBegins : unsigned char {
    Gap, // nothing: it is a blank, or begins a comment
    Word,
    Number, // or an operator
    String,
    BlockStart,
    BlockEnd,
    Operator,
    Other // the ( and ) of a control block, an error, the end of the text
};

constexpr eBegins FindBegins(const eStep& step) {
    switch (step.to) {
    case stBetween:
    case stComment:
        return eBegins::Gap;
    case stIdent:
        return eBegins::Word;
    case stInteger:
    case stZero:
    case stSign:
        return eBegins::Number;
    case stString:
        return eBegins::String;
    case stBrace:
        return eBegins::BlockStart;
    default:
        return step.type == sdlBlockEnd   ? eBegins::BlockEnd
               : step.type == sdlOperator ? eBegins::Operator
                                          : eBegins::Other;
    }
}

inline constexpr std::array<eBegins, 256> kBegins = [] {
    std::array<eBegins, 256> begins{};
    for (std::size_t c = 0; c != begins.size(); ++c)
        begins[c] = FindBegins(kAutomaton[stBetween][c]);
    return begins;
}();

constexpr eBegins Begins(char c) {
    return kBegins[static_cast<unsigned char>(c)];
}

// The place where a token begins, and its line.
struct eTokenBegin {
    const char* at;
    int line;
};

// Passes blanks and counts their line feeds. A branch, which the processor predicts, steps over each of a few, so that
// what follows can be loaded before they are.
QZL_IO_ALWAYS_INLINE const char* PassFewBlanks(const char* at, int* line) {
    for (const char* const few = at + 4; Has(stBetween, *at); ++at) {
        if (at == few) [[unlikely]] {
            while (PassBlankBlock(&at, line)) {
            }
            break;
        }
        *line = LinesOn(*line, *at == '\n');
    }
    return at;
}

// Out of line and only in registers, so that tokens within a line do not pay for it.
QZL_IO_NOINLINE inline eTokenBegin PassGap(const char* at, int line) {
    at = PassBlanks(at, &line);
    while (*at == ';')
        at = PassFewBlanks(PassComment(at + 1), &line);
    return {at, line};
}

// Within a line there is usually one blank before a token.
QZL_IO_ALWAYS_INLINE eTokenBegin FindToken(const char* at, int line) {
    if (*at == ' ') [[likely]]
        ++at;
    return Begins(*at) == eBegins::Gap ? PassGap(at, line) : eTokenBegin{at, line};
}

// Likewise without a call; null if there is a comment before the token.
QZL_IO_ALWAYS_INLINE eTokenBegin FindNearToken(const char* at, int line) {
    if (*at == ' ') [[likely]]
        ++at;
    if (Begins(*at) != eBegins::Gap)
        return {at, line};
    at = PassFewBlanks(at, &line);
    return {*at == ';' ? nullptr : at, line};
}

// Tokens that consist of their first character: brackets, operators, errors, and the end of the text, which has no
// type.
inline const char* CutSingle(const char* at, const eStep& step, eLexeme* token) {
    if (*at == 0)
        return at;
    token->type = step.type;
    if (step.action == eAction::Keep)
        SetText(token, at, at + 1);
    return at + (step.action != eAction::Stay);
}

inline const char* CutSigned(const char* at, eLexeme* token) {
    if (Has(stInteger, at[1]))
        return CutNumber(at, token);
    token->type = sdlOperator;
    SetText(token, at, at + 1);
    return at + 1;
}

// The token that begins at `begin`.
inline const char* CutAt(const char* begin, int* line, eLexeme* token) {
    const eStep& step = kAutomaton[stBetween][static_cast<unsigned char>(*begin)];
    const char* at = begin;
    switch (step.to) {
    case stIdent:
        at = PassIdent(at + 1);
        token->type = sdlIdent;
        SetText(token, begin, at);
        return at;
    case stInteger:
        return CutNumber(at, token);
    case stZero:
        return at[1] == 'x' ? CutHex(at, token) : CutNumber(at, token);
    case stSign:
        return CutSigned(at, token);
    case stString:
        return CutString(at + 1, line, token);
    case stBrace:
        return CutMark(at + 1, token);
    default:
        return CutSingle(at, step, token);
    }
}

// Cuts like CutByTable, and tells more about numbers and strings. The token must be new.
inline bool CutToken(const char** position, int* line, eLexeme* token) {
    const eTokenBegin begin = FindToken(*position, *line);
    *line = begin.line;
    *position = CutAt(begin.at, line, token);
    return token->type != sdlNone;
}

} // namespace xSDL
