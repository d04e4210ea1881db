// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include <qzl_io/sdl/limits.h>
#include <qzl_io/sdl/names.h>
#include <qzl_io/sdl/token.h>

#include "sdl/lexer.h"
#include "sdl/mask_pass.h"

// What the tokens of a text are to each other: which brackets belong together and what is wrong, as a reader judges it.

namespace xSDL {

enum class eMistake : unsigned char {
    IllegalCharacters,
    BrokenString,   // by the end of a line
    UnendedString,  // by the end of the text: for readers, the text ends before it
    NumberExpected, // in a calculation
    IdentifierExpected,
    InvalidControl,
    TokenLimit,
    ExtraBlockEnd,
    ExtraClose, // which readers pass
    Unclosed
};

constexpr bool IsWarning(eMistake mistake) {
    return mistake == eMistake::UnendedString || mistake == eMistake::ExtraClose;
}

// Whether the character begins no token at all.
constexpr bool IsIllegal(char c) {
    return c != 0 && kAutomaton[stBetween][static_cast<unsigned char>(c)].type == sdlError &&
           kAutomaton[stBetween][static_cast<unsigned char>(c)].to == stAccept;
}

inline const char* PassIllegal(const char* at) {
    while (IsIllegal(*at))
        ++at;
    return at;
}

// Whether the brace begins a block that readers skip: its mark contains a second #.
inline bool IsHiddenAt(const char* brace) {
    eLexeme mark;
    CutMark(brace + 1, &mark);
    return mark.length > 1 && std::string_view(mark.begin + 1, mark.length - 1).find('#') != std::string_view::npos;
}

inline constexpr std::string_view kControlWords[] = {"include", "define", "mod"};

inline bool IsControlWord(std::string_view word) {
    return std::any_of(std::begin(kControlWords), std::end(kControlWords),
                       [&](std::string_view known) { return IsSameWord(known, word); });
}

// Reads a text and tells a sink of its brackets and mistakes:
//
//     Open(at)                    a { or ( that holds what follows
//     Close(end)                  the innermost one ends there
//     Mistake(what, begin, end)   in the order of the text; Unclosed once, at its end
//
// Within a hidden block or a control block either closing bracket ends either opening one, as readers skip them; a }
// that would end the control block itself ends the block around it instead.
template <class eSink>
class eStructure {
public:
    // The longest text of a token that is no mistake.
    eStructure(eSink& itsSink, unsigned long long mostBytes) : sink(itsSink), longest(mostBytes) {}

    // Words, numbers and plain strings matter only where something is expected or a token has a limit. So text that
    // holds nothing else but braces is passed by its masks, and the rest token by token.
    void Read(const char* at) {
        std::ptrdiff_t apart = kLeastApart;
        for (bool more = true; more;) {
            const char* const begin = at;
            if (longest == eSDLLimits::kNone && expects == eExpects::Anything)
                at = PassByMasks(begin);
            apart = at == begin ? std::min(2 * apart, kMostApart) : kLeastApart;
            for (const char* const end = at + apart; more && at < end;)
                more = ReadToken(&at);
        }
    }

private:
    static constexpr std::uint64_t kNotSkipping = ~std::uint64_t{0};
    // The number of bytes that are read token by token at once: more where the masks show something else again and
    // again.
    static constexpr std::ptrdiff_t kLeastApart = 64;
    static constexpr std::ptrdiff_t kMostApart = 1024;

    // From a boundary between tokens to a later one, or the same.
    const char* PassByMasks(const char* at) {
        constexpr std::size_t kRoom = 32;
        std::array<eBraces, kRoom> found;
        eMaskScan scan(at);
        for (std::size_t count = kRoom; count == kRoom;) {
            const char* block = scan.at;
            count = findBraces(&scan, found.data(), kRoom);
            for (std::size_t i = 0; i < count; ++i, block += 64)
                TakeBraces(block, found[i]);
        }
        return scan.BoundaryAfter(at);
    }

    void TakeBraces(const char* block, const eBraces& braces) {
        for (std::uint64_t left = braces.starts | braces.ends; left != 0; left &= left - 1) {
            const char* const brace = block + std::countr_zero(left);
            if (*brace == '{')
                Enter(brace);
            else
                TakeBlockEnd(brace, brace + 1);
        }
    }

    // False at the end of the text.
    bool ReadToken(const char** at) {
        int line = 0;
        const char* const begin = FindToken(*at, line).at;
        eLexeme token;
        token.begin = begin;
        *at = CutAt(begin, &line, &token);
        if (token.type == sdlNone) {
            if (*begin == '"')
                sink.Mistake(eMistake::UnendedString, begin, *at);
            if (depth != 0)
                sink.Mistake(eMistake::Unclosed, *at, *at);
            return false;
        }
        if (token.type == sdlError)
            *at = PassError(begin, *at);
        else
            Take(token, begin, *at);
        return true;
    }

    const char* PassError(const char* begin, const char* end) {
        const bool string = *begin == '"';
        const char* const next = string ? end : PassIllegal(begin);
        sink.Mistake(string ? eMistake::BrokenString : eMistake::IllegalCharacters, begin, next);
        expects = eExpects::Anything;
        return next;
    }

    void Take(const eLexeme& token, const char* begin, const char* end) {
        if (token.length > longest && (skipped == kNotSkipping || expects != eExpects::Anything))
            sink.Mistake(eMistake::TokenLimit, begin, end);
        if (expects != eExpects::Anything && IsAsExpected(token, begin, end))
            return;
        switch (token.type) {
        case sdlBlockStart:
            if (skipped == kNotSkipping && token.length != 0 && IsHiddenAt(begin))
                Skip(false);
            Enter(begin);
            break;
        case sdlOpen:
            if (skipped == kNotSkipping) {
                Skip(true);
                expects = eExpects::Head;
            }
            Enter(begin);
            break;
        case sdlBlockEnd:
            TakeBlockEnd(begin, end);
            break;
        case sdlClose:
            if (skipped == kNotSkipping)
                sink.Mistake(eMistake::ExtraClose, begin, end);
            else
                Leave(end);
            break;
        default:
            break;
        }
    }

    // The first token of a control block, and those of a calculation. Whatever else there is, is skipped.
    bool IsAsExpected(const eLexeme& token, const char* begin, const char* end) {
        const eExpects expected = expects;
        expects = eExpects::Anything;
        if (expected == eExpects::Head) {
            if (token.type == sdlString)
                return true;
            if (token.type == sdlOperator) {
                expects = eExpects::Number;
                return true;
            }
            if (token.type != sdlIdent)
                sink.Mistake(eMistake::IdentifierExpected, begin, end);
            else if (!IsControlWord({token.begin, token.length}))
                sink.Mistake(eMistake::InvalidControl, begin, end);
            return token.type == sdlIdent;
        }
        if (token.type == sdlInt || token.type == sdlFloat || token.type == sdlHex) {
            expects = eExpects::NumberOrEnd;
            return true;
        }
        if (expected != eExpects::NumberOrEnd || token.type != sdlClose)
            sink.Mistake(eMistake::NumberExpected, begin, end);
        return false;
    }

    void TakeBlockEnd(const char* begin, const char* end) {
        if (control && depth == skipped + 1)
            Leave(begin);
        if (depth == 0)
            sink.Mistake(eMistake::ExtraBlockEnd, begin, end);
        else
            Leave(end);
    }

    void Skip(bool isControl) {
        skipped = depth;
        control = isControl;
    }

    void Enter(const char* begin) {
        sink.Open(begin);
        ++depth;
    }

    void Leave(const char* end) {
        sink.Close(end);
        if (--depth == skipped) {
            skipped = kNotSkipping;
            control = false;
        }
    }

    enum class eExpects : unsigned char { Anything, Head, Number, NumberOrEnd };

    eSink& sink;
    unsigned long long longest;
    eBraceFinder findBraces = Widest(FindBracesBySse2, FindBracesByAvx2);
    std::uint64_t depth = 0;
    std::uint64_t skipped = kNotSkipping; // the depth at which a hidden block or a control block began
    bool control = false;                 // it is a control block
    eExpects expects = eExpects::Anything;
};

} // namespace xSDL
