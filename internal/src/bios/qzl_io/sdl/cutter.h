// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string_view>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/sdl/parser.h>

#include "qzl_base/shared/decimal_float.h"
#include "sdl/current_token.h"
#include "sdl/keyword_index.h"
#include "sdl/number.h"
#include "sdl/plain.h"

// Makes a parser's next token the current one. A reader's call often determines the kind of the token, so there is a
// function for each kind. It takes a token of that kind in its most frequent form and within the limit, or returns
// false and leaves everything unchanged, for eSDLParser::Cut to take any token. Inline in the parser and the reader.
//
// A near cutter takes only what needs no call: a token after blanks alone, while the token before it is plain. So a
// function that tries it first, and calls another one at its end, keeps nothing on the stack.
template <bool isNear>
class eSDLParser::eCutter {
public:
    // A cutter of the next token. The parser's place does not change.
    QZL_IO_ALWAYS_INLINE explicit eCutter(eSDLParser& cutParser) : parser(cutParser), begin(Find(cutParser.current)) {}

    // Whether there is anything that it might take.
    explicit operator bool() const { return begin.at != nullptr; }
    const xSDL::eTokenBegin& Begin() const { return begin; }

    QZL_IO_ALWAYS_INLINE bool TakeInt() {
        unsigned long long digits;
        const char* const end = xSDL::PassPlainInt(begin.at, parser.plainNumbers, &digits);
        return end && AcceptInt(digits, end);
    }

    // Takes a number of either kind.
    QZL_IO_ALWAYS_INLINE bool TakeNumber() {
        xSDL::eLexeme number;
        const char* const end = isNear ? xSDL::PassPlainDecimal(begin.at, parser.plainNumbers, &number)
                                       : xSDL::PassPlainNumber(begin.at, parser.plainNumbers, &number);
        if (!end || (isNear && xSDL::ContinuesNumber(*end)))
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
        if (!end || (isNear && !parser.current.Admits(static_cast<std::size_t>(end - begin.at - 1))))
            return false;
        return Accept(sdlString, begin.at + 1, end, end + 1);
    }

    // Takes an identifier, or a keyword of the table.
    QZL_IO_ALWAYS_INLINE bool TakeWord(const eSDLKeyword* table) {
        const char* const end = isNear ? xSDL::PassShortWord(begin.at) : xSDL::PassWord(begin.at);
        if (!end)
            return false;
        const std::string_view word(begin.at, static_cast<std::size_t>(end - begin.at));
        int id;
        if constexpr (!isNear)
            id = eSDLKeyword::FindIn(table, word.data(), word.size());
        else if (!eSDLKeyword::FindAtOnce(table, word, &id))
            return false;
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

    // Takes a block start and the keyword that directly follows it, which has that id unless it is 0.
    QZL_IO_ALWAYS_INLINE bool TakeBlock(const eSDLKeyword* table, int wanted) requires isNear {
        const char* const brace = xSDL::PassPlainBlockStart(begin.at);
        const char* const end = brace ? xSDL::PassShortWord(brace + 1) : nullptr;
        if (!end)
            return false;
        const std::string_view word(brace + 1, static_cast<std::size_t>(end - brace - 1));
        int id;
        if (!eSDLKeyword::FindAtOnce(table, word, &id) || id == 0 || (wanted != 0 && id != wanted))
            return false;
        parser.current.AcceptPlainBlock(brace, begin.line, word, id);
        return true;
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
    QZL_IO_ALWAYS_INLINE static xSDL::eTokenBegin Find(const xSDL::eCurrentToken& current) {
        if constexpr (!isNear)
            return xSDL::FindToken(current.Position(), current.Line());
        else if (current.IsPlain()) [[likely]]
            return xSDL::FindNearToken(current.Position(), current.Line());
        else
            return {nullptr, 0};
    }

    bool IsNegative() const { return *begin.at == '-'; }

    QZL_IO_ALWAYS_INLINE bool Accept(eSDLParserLexType type, const char* textBegin, const char* textEnd,
                                     const char* next) {
        const std::string_view itsText(textBegin, static_cast<std::size_t>(textEnd - textBegin));
        if constexpr (!isNear)
            return parser.current.Accept(type, itsText, begin.line, next);
        parser.current.AcceptPlain(type, itsText, begin.line, next);
        return true;
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
