// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string_view>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/sdl/parser.h>

#include "qzl_base/shared/decimal_float.h"
#include "sdl/current_token.h"
#include "sdl/number.h"
#include "sdl/plain.h"

// Makes a parser's next token the current one. A reader's call often determines the kind of the token, so there is a
// function for each kind. It takes a token of that kind in its most frequent form and within the limit, or returns
// false and leaves everything unchanged, for eSDLParser::Cut to take any token. Inline in the parser and the reader.
class eSDLParser::eCutter {
public:
    // A cutter of the next token. The parser's place does not change.
    QZL_IO_ALWAYS_INLINE explicit eCutter(eSDLParser& cutParser)
        : parser(cutParser), begin(xSDL::FindToken(parser.current.Position(), parser.current.Line())) {}

    const xSDL::eTokenBegin& Begin() const { return begin; }

    QZL_IO_ALWAYS_INLINE bool TakeInt() {
        unsigned long long digits;
        const char* const end = xSDL::PassPlainInt(begin.at, parser.plainNumbers, &digits);
        return end && AcceptInt(digits, end);
    }

    // Takes a number of either kind.
    QZL_IO_ALWAYS_INLINE bool TakeNumber() {
        xSDL::eLexeme number;
        const char* const end = xSDL::PassPlainNumber(begin.at, parser.plainNumbers, &number);
        if (!end)
            return false;
        if (number.type == sdlInt)
            return AcceptInt(number.digits, end);
        float value;
        if (!decimal::ToFloat(number.digits, number.exponent, IsNegative(), &value))
            return false;
        if (!Accept(sdlFloat, begin.at, end, end))
            return false;
        parser.current.SetFloat(value);
        return true;
    }

    QZL_IO_ALWAYS_INLINE bool TakeString() {
        const char* const end = xSDL::PassPlainString(begin.at);
        return end && Accept(sdlString, begin.at + 1, end, end + 1);
    }

    // Takes an identifier, or a keyword of the table.
    QZL_IO_ALWAYS_INLINE bool TakeWord(const eSDLKeyword* table) {
        const char* const end = xSDL::PassWord(begin.at);
        if (!end)
            return false;
        const int id = table ? eSDLKeyword::FindIn(table, begin.at, static_cast<std::size_t>(end - begin.at)) : 0;
        if (!Accept(id != 0 ? sdlKeyword : sdlIdent, begin.at, end, end))
            return false;
        if (id != 0)
            parser.current.SetId(id);
        return true;
    }

    QZL_IO_ALWAYS_INLINE bool TakeBlockStart() {
        const char* const end = xSDL::PassPlainBlockStart(begin.at);
        return end && Accept(sdlBlockStart, end, end, end + 1);
    }

    QZL_IO_ALWAYS_INLINE bool TakeBlockEnd() {
        const char* const end = xSDL::PassBlockEnd(begin.at);
        return end && Accept(sdlBlockEnd, end, end, end + 1);
    }

    // The character that the next token begins with; 0 if it does not tell what the token is (SeePlain). The state is
    // then the one after taking the token and going back.
    QZL_IO_ALWAYS_INLINE char See(bool included) {
        const char seen = xSDL::SeePlain(begin.at, included);
        if (seen)
            parser.current.ForgetBefore();
        return seen;
    }

    // The name of the block that begins here, if it directly follows the { and is within the limit; empty if not.
    std::string_view SeeBlockName() const {
        const char* const word = xSDL::FindToken(begin.at + 1, begin.line).at;
        const char* const end = xSDL::PassWord(word);
        const auto size = static_cast<std::size_t>(end ? end - word : 0);
        return parser.current.Admits(size) ? std::string_view(word, size) : std::string_view();
    }

private:
    bool IsNegative() const { return *begin.at == '-'; }

    QZL_IO_ALWAYS_INLINE bool Accept(eSDLParserLexType type, const char* textBegin, const char* textEnd,
                                     const char* next) {
        return parser.current.Accept(type, {textBegin, static_cast<std::size_t>(textEnd - textBegin)}, begin.line,
                                     next);
    }

    QZL_IO_ALWAYS_INLINE bool AcceptInt(unsigned long long digits, const char* end) {
        if (!Accept(sdlInt, begin.at, end, end))
            return false;
        parser.current.SetInt(xSDL::NearestInt(digits, IsNegative()));
        return true;
    }

    eSDLParser& parser;
    const xSDL::eTokenBegin begin;
};
