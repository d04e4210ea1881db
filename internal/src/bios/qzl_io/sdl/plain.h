#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <qzl_io/sdl/parser.h>

#include "qzl_base/shared/decimal_float.h"
#include "sdl/lexer.h"
#include "sdl/number.h"

// Tokens of an expected kind in their most frequent form, cut without asking what else could stand there. Each function
// either does what eSDLParser::CutAny would do, or returns false and leaves everything as it is for CutAny to do.

// The longest text that a string object holds within itself, with its zero behind it.
inline constexpr std::size_t kShortText = 15;

inline bool IsWithinItself(const std::string& string) {
    return string.capacity() == kShortText;
}

// Whether the current token's text is what it was copied from.
[[gnu::always_inline]] inline bool eSDLParser::IsAsInSource() const {
    const std::string& copy = current.token.text;
    const std::string_view source = currentText.source;
    if (copy.size() != source.size() || !IsWithinItself(copy))
        return copy == source;
    const unsigned same = xSDL::Mask(_mm_cmpeq_epi8(xSDL::Load16(copy.data()), xSDL::Load16(source.data())));
    const unsigned all = (1u << copy.size()) - 1;
    return (same & all) == all;
}

[[gnu::always_inline]] inline void eSDLParser::Remember() {
    previous.token.type = current.token.type;
    previous.token.floatValue = current.token.floatValue;
    previous.token.intValue = current.token.intValue;
    previous.line = current.line;
    previous.position = current.position;
    previousText.source = currentText.source;
    previousText.home = eTokenText::Source;
    if (currentText.home == eTokenText::Own || (watched && !IsAsInSource()))
        RememberText();
}

// Most texts are short. They are copied without a call: as the longest short text, which is then cut to its length.
[[gnu::always_inline]] inline void eSDLParser::FillText() const {
    std::string* const copy = &current.token.text;
    const std::string_view source = currentText.source;
    if (source.size() <= kShortText && IsWithinItself(*copy)) {
        std::destroy_at(copy);
        std::construct_at(copy, source.data(), kShortText);
        copy->resize(source.size());
    } else {
        CopyText();
    }
    currentText.home = eTokenText::Copied;
}

// Makes a token of the characters from `begin` to `end` the current one and goes on reading at `next`.
[[gnu::always_inline]] inline void eSDLParser::Accept(eSDLParserLexType type, int line, const char* begin,
                                                      const char* end, const char* next) {
    Remember();
    current.token.type = type;
    current.line = line;
    current.position = next;
    currentText = {{begin, static_cast<std::size_t>(end - begin)}, eTokenText::Source};
    if (watched)
        FillText();
}

inline void eSDLParser::ForgetPrevious() {
    previous.line = 1;
    previous.position = nullptr;
}

[[gnu::always_inline]] inline void eSDLParser::SetInt(int value) {
    current.token.intValue = value;
    current.token.floatValue = static_cast<float>(value);
}

[[gnu::always_inline]] inline xSDL::eTokenBegin eSDLParser::FindToken() const {
    return xSDL::FindToken(current.position, current.line);
}

// A short decimal number, its value known from its digits. Returns its end, null if there is none.
[[gnu::always_inline]] inline const char* eSDLParser::PassPlainNumber(const char* begin, xSDL::eLexeme* number) const {
    if (begin - text.data() < 16)
        return nullptr;
    const char* const end = xSDL::CutShortNumber(begin, number);
    return end && number->exact && *end != 'x' ? end : nullptr;
}

[[gnu::always_inline]] inline bool eSDLParser::CutPlainInt(xSDL::eTokenBegin begin) {
    xSDL::eLexeme number;
    const char* const end = PassPlainNumber(begin.at, &number);
    if (!end || number.type != sdlInt)
        return false;
    Accept(sdlInt, begin.line, begin.at, end, end);
    SetInt(xSDL::NearestInt(number.digits, *begin.at == '-'));
    return true;
}

// A number of either kind.
[[gnu::always_inline]] inline bool eSDLParser::CutPlainNumber(xSDL::eTokenBegin begin) {
    xSDL::eLexeme number;
    const char* const end = PassPlainNumber(begin.at, &number);
    if (!end)
        return false;
    if (number.type == sdlInt) {
        Accept(sdlInt, begin.line, begin.at, end, end);
        SetInt(xSDL::NearestInt(number.digits, *begin.at == '-'));
        return true;
    }
    float value;
    if (!decimal::ToFloat(number.digits, number.exponent, *begin.at == '-', &value))
        return false;
    Accept(sdlFloat, begin.line, begin.at, end, end);
    current.token.floatValue = value;
    current.token.intValue = xSDL::TruncateToInt(value);
    return true;
}

// A string without a backslash.
[[gnu::always_inline]] inline bool eSDLParser::CutPlainString(xSDL::eTokenBegin begin) {
    if (*begin.at != '"')
        return false;
    const char* const end = xSDL::PassStringBody(begin.at + 1);
    if (*end != '"')
        return false;
    Accept(sdlString, begin.line, begin.at + 1, end, end + 1);
    return true;
}

// An identifier or a keyword of the table.
[[gnu::always_inline]] inline bool eSDLParser::CutWord(xSDL::eTokenBegin begin, const eSDLKeyword* table) {
    if (xSDL::Begins(*begin.at) != xSDL::eBegins::Word)
        return false;
    const char* const end = xSDL::PassIdent(begin.at + 1);
    const int id = table ? eSDLKeyword::FindIn(table, begin.at, static_cast<std::size_t>(end - begin.at)) : 0;
    Accept(id != 0 ? sdlKeyword : sdlIdent, begin.line, begin.at, end, end);
    if (id != 0)
        current.token.intValue = id;
    return true;
}

// A block start without a mark.
[[gnu::always_inline]] inline bool eSDLParser::CutPlainBlockStart(xSDL::eTokenBegin begin) {
    if (begin.at[0] != '{' || begin.at[1] == '#')
        return false;
    Accept(sdlBlockStart, begin.line, begin.at, begin.at, begin.at + 1);
    return true;
}

[[gnu::always_inline]] inline bool eSDLParser::CutBlockEnd(xSDL::eTokenBegin begin) {
    if (*begin.at != '}')
        return false;
    Accept(sdlBlockEnd, begin.line, begin.at, begin.at, begin.at + 1);
    return true;
}

// The character that the next token begins with, when it tells by itself what that token is to a reader; 0 otherwise.
// A plain one leaves the state that cutting it and going back would leave. A string that the text ends in is no token:
// in an included source another one may follow, in the last it is as good as one.
[[gnu::always_inline]] inline char eSDLParser::SeePlainToken(bool included) {
    const char* const begin = FindToken().at;
    if (xSDL::Begins(*begin) == xSDL::eBegins::Other || (begin[0] == '{' && begin[1] == '#'))
        return 0;
    if (included && *begin == '"' && *xSDL::PassStringBody(begin + 1) != '"')
        return 0;
    ForgetPrevious();
    return *begin;
}
