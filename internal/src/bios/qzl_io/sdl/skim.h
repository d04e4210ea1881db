// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <qzl_io/detail/compiler.h>

#include "sdl/lexer.h"
#include "sdl/masks.h"

// Passes a block without cutting its tokens.

namespace xSDL {

enum class eSkimEnd {
    Terminator, // the } or ) that matches no { or ( on the way
    Error,      // where the lexer says sdlError
    EndOfText
};

struct eSkimmed {
    eSkimEnd end = eSkimEnd::EndOfText;
    const char* stop = nullptr;       // the terminator, or the character at which the lexer would stop
    const char* anchor = nullptr;     // a place from which cutting tokens produces the last ones before `stop`
    long long depth = 0;              // number of blocks open at `stop`
    std::size_t starts = 0;           // number of block starts passed
    const char* mark = nullptr;       // the { of the last one; null if no mark follows it
    const char* markBefore = nullptr; // likewise for the one before the last
    const char* counted = nullptr;    // a place near the end of the pass
    std::size_t lines = 0;            // line feeds before it
};

// The mark of the block that starts with the brace, without its first #.
inline std::string_view MarkOf(const char* brace) {
    if (!brace)
        return {};
    eLexeme mark;
    CutMark(brace + 1, &mark);
    return {mark.begin + 1, mark.length - 1};
}

// The number of line feeds from the beginning of the pass to a place near its end.
inline std::size_t LinesBefore(const char* place, const eSkimmed& skimmed) {
    return place < skimmed.counted ? skimmed.lines - CountLineFeeds(place, skimmed.counted)
                                   : skimmed.lines + CountLineFeeds(skimmed.counted, place);
}

// One pass over a block. 64 characters at a time are passed by their masks while these contain only words, numbers,
// braces and short plain strings; any other character is examined separately.
class eSkim {
public:
    // Begins at the position, which is a boundary between tokens, with `depth` blocks open.
    eSkim(const char* position, long long depth) : at(position), boundary(position) {
        skimmed.anchor = position;
        skimmed.depth = depth;
    }

    eSkimmed Run() {
        while (PassBlock()) {
        }
        KeepPlainStarts();
        skimmed.lines = static_cast<std::size_t>(_mm_cvtsi128_si64(lineFeeds)) +
                        static_cast<std::size_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(lineFeeds, lineFeeds)));
        return skimmed;
    }

private:
    // The effect of the characters before a place on the one at the place, as bits for that place.
    struct eCarry {
        std::uint64_t inside = 0; // it is in a string: this bit and all above
        std::uint64_t begin = 0;  // a token begins there, unless the character is a blank
        std::uint64_t number = 0; // digits and operators that begin with a token reach to there
        std::uint64_t digit = 0;  // it follows a digit
    };

    // Passes 64 characters, and more if something among them is longer. False at the end of the skimming.
    QZL_IO_ALWAYS_INLINE bool PassBlock() {
        const eMasks masks(at);
        const std::uint64_t inside = InsideQuotes(masks.Quotes()) ^ carry.inside;
        const std::uint64_t points = masks.Points() & ~AfterIntegers(masks);
        carry.inside = AllIf(inside >> 63 != 0);
        lineFeeds = _mm_add_epi64(lineFeeds, masks.LineFeeds());
        skimmed.counted = at + 64;
        if (FindStops(masks, inside, points)) [[unlikely]]
            return PassByOne(masks, inside, points);
        if (!PassBraces(at, masks.Starts() & ~inside, masks.Ends() & ~inside))
            return false;
        at += 64;
        return true;
    }

    // Passes 64 characters of which some must be examined separately.
    QZL_IO_NOINLINE bool PassByOne(eMasks masks, std::uint64_t inside, std::uint64_t points) {
        const char* const block = at;
        const std::uint64_t marks = FindMarks(masks);
        std::uint64_t left = ~std::uint64_t{0};
        while (const std::uint64_t stops = FindStops(masks, inside, points) & left & ~marks) {
            const std::uint64_t stop = stops & (0 - stops);
            const std::uint64_t passed = left & (stop - 1) & ~inside;
            if (!PassEachBrace(block, masks.Starts() & passed, masks.Ends() & passed, marks))
                return false;
            at = block + std::countr_zero(stop);
            if (*at == ';' && !(inside & stop))
                PassComments(block, masks.Stops(AllIf(true)) & ~(stop - 1));
            else if (!((inside & stop) ? PassRestOfString(block, masks.Quotes() & left & (stop - 1)) : Pass(*at)))
                return false;
            if (at - block >= 64) {
                CountLines();
                carry = {0, at == boundary ? 1u : 0u, 0, 0};
                return true;
            }
            left = ~std::uint64_t{0} << (at - block);
            if (((inside ^ masks.Quotes()) >> (at - block)) & 1)
                inside = ~inside;
        }
        carry.inside = AllIf(inside >> 63 != 0);
        if (!PassEachBrace(block, masks.Starts() & left & ~inside, masks.Ends() & left & ~inside, marks))
            return false;
        at = block + 64;
        return true;
    }

    // Each # after a {, and those that follow it directly.
    std::uint64_t FindMarks(const eMasks& masks) const {
        std::uint64_t marks = 0;
        for (std::uint64_t starts = masks.Starts(); starts; starts &= starts - 1)
            for (std::uint64_t hash = (starts & (0 - starts)) << 1; hash && at[std::countr_zero(hash)] == '#';
                 hash <<= 1)
                marks |= hash;
        return marks;
    }

    // The characters that must be examined separately.
    static std::uint64_t FindStops(const eMasks& masks, std::uint64_t inside, std::uint64_t points) {
        return masks.Stops(inside) | (points & ~inside) | LongString(inside);
    }

    void CountLines() {
        lineFeeds =
            _mm_add_epi64(lineFeeds, _mm_cvtsi64_si128(static_cast<long long>(CountLineFeeds(skimmed.counted, at))));
        skimmed.counted = at;
    }

    // The places after integers, where a point is part of a number. Digits and operators that begin with a token are
    // only integers and operators.
    QZL_IO_ALWAYS_INLINE std::uint64_t AfterIntegers(const eMasks& masks) {
        const std::uint64_t between = masks.Between();
        const std::uint64_t numbers = masks.Numbers();
        const std::uint64_t digits = masks.Digits();
        const std::uint64_t begun = (numbers & ((between << 1) | carry.begin)) + carry.number;
        const std::uint64_t passed = numbers + begun;
        const std::uint64_t after = passed & ~numbers & ((digits << 1) | carry.digit);
        carry.begin = between >> 63;
        carry.number = passed < numbers ? 1 : 0;
        carry.digit = digits >> 63;
        return after;
    }

    // The last place, if a string of some length continues there: its rest is passed faster separately.
    static std::uint64_t LongString(std::uint64_t inside) {
        return static_cast<std::uint64_t>(inside >> 48 == 0xFFFF) << 63;
    }

    // Passes the braces among 64 characters. False if one of them is the terminator.
    QZL_IO_ALWAYS_INLINE bool PassBraces(const char* block, std::uint64_t starts, std::uint64_t ends) {
        if (MayTerminate(starts, ends))
            return PassEachBrace(block, starts, ends, 0);
        const eBitCounts counts = CountBits(starts, ends);
        skimmed.depth += counts.ofFirst - counts.ofSecond;
        plainStarts += static_cast<unsigned>(counts.ofFirst);
        return true;
    }

    // Whether there are more block ends than open blocks, not counting ends whose start is the brace before them. Three
    // such ends always suffice. There are no branches, as nothing could predict them.
    bool MayTerminate(std::uint64_t starts, std::uint64_t ends) const {
        const std::uint64_t others = ~(starts | ends);
        const std::uint64_t behindStart = starts << 1;
        const std::uint64_t one = ends & ~(behindStart | ((behindStart & others) + others));
        const std::uint64_t two = one & (one - 1);
        const std::uint64_t three = two & (two - 1);
        return (three | (two & AllIf(skimmed.depth < 2)) | (one & AllIf(skimmed.depth < 1))) != 0;
    }

    static std::uint64_t AllIf(bool condition) { return 0 - static_cast<std::uint64_t>(condition); }

    bool PassEachBrace(const char* block, std::uint64_t starts, std::uint64_t ends, std::uint64_t marks) {
        for (std::uint64_t braces = starts | ends; braces; braces &= braces - 1) {
            const std::uint64_t brace = braces & (0 - braces);
            if (starts & brace) {
                ++skimmed.depth;
                ++plainStarts;
                if (marks & (brace << 1))
                    MarkStart(block + std::countr_zero(brace));
            } else if (skimmed.depth == 0) {
                at = block + std::countr_zero(brace);
                return Stop(eSkimEnd::Terminator, at);
            } else {
                --skimmed.depth;
            }
        }
        return true;
    }

    // Passes one character separately. False if it ends the skimming.
    bool Pass(char c) {
        switch (c) {
        case '#':
            return PassMark();
        case '(':
            ++skimmed.depth;
            return PassToken(at, at + 1);
        case ')':
            if (skimmed.depth == 0)
                return Stop(eSkimEnd::Terminator, at);
            --skimmed.depth;
            return PassToken(at, at + 1);
        case '.':
            return PassPoint();
        case '%':
        case '/':
            ++at;
            return true;
        case '\0':
            return Stop(eSkimEnd::EndOfText, at);
        default:
            return Stop(eSkimEnd::Error, at);
        }
    }

    bool PassToken(const char* begin, const char* end) {
        skimmed.anchor = begin;
        lastEnd = nullptr;
        boundary = at = end;
        return true;
    }

    // `ends` marks the places in the block, from there on, where the comment may end. A longer comment is passed
    // together with the comments that follow it.
    void PassComments(const char* block, std::uint64_t ends) {
        NoteLastEnd();
        const char* const end = ends ? block + std::countr_zero(ends) : at;
        at = EndsComment(*end) ? end : PassComment(at + 1);
        while (at - block >= 64 && *(at = PassWhile(at, IsBlank)) == ';')
            at = PassComment(at + 1);
        boundary = at;
    }

    static bool EndsComment(char c) { return c == '\n' || c == '\r' || c == '\0'; }

    // What directly follows a brace is known to be a mark, except at the beginning of a block.
    bool PassMark() {
        const char* const brace = RunBefore(at, boundary);
        eLexeme mark;
        const char* const end = *brace == '{' ? CutMark(brace + 1, &mark) : at;
        if (end <= at)
            return Stop(eSkimEnd::Error, at);
        if (brace == at - 1)
            MarkStart(brace);
        return PassToken(brace, end);
    }

    // Notes that the last start, which has been passed, has a mark.
    void MarkStart(const char* brace) {
        --plainStarts;
        KeepPlainStarts();
        skimmed.markBefore = skimmed.mark;
        skimmed.mark = brace;
        ++skimmed.starts;
    }

    void KeepPlainStarts() {
        if (plainStarts > 0) {
            skimmed.markBefore = plainStarts > 1 ? nullptr : skimmed.mark;
            skimmed.mark = nullptr;
        }
        skimmed.starts += plainStarts;
        plainStarts = 0;
    }

    // Passes the rest of a string, from a place in it; `quotes` are the quotes before that in the block. More strings
    // that follow are passed with it: where one is long, others are, too.
    bool PassRestOfString(const char* block, std::uint64_t quotes) {
        const char* begin = quotes ? block + 63 - std::countl_zero(quotes) : QuoteBefore(block);
        for (;;) {
            eLexeme string;
            int line = 0;
            const char* const end = CutString(at, &line, &string);
            if (string.type != sdlString) {
                at = begin;
                return Stop(string.type == sdlError ? eSkimEnd::Error : eSkimEnd::EndOfText, end);
            }
            PassToken(begin, end);
            begin = PassBlanks(end, &line);
            if (*begin != '"')
                return true;
            at = begin + 1;
        }
    }

    static const char* QuoteBefore(const char* end) {
        do
            --end;
        while (*end != '"');
        return end;
    }

    // If the masks do not show whether the point belongs to a number, the lexer decides.
    bool PassPoint() {
        const char* position = RunBefore(at, boundary);
        const char* begin = position;
        for (int line = 0; position <= at;) {
            eLexeme token;
            begin = position;
            CutToken(&position, &line, &token);
            if (token.type == sdlError)
                return Stop(eSkimEnd::Error, at);
        }
        return PassToken(begin, position);
    }

    static bool EndsToken(char c) { return Has(stBetween, c) || c == '{' || c == '}' || c == '"'; }

    // The beginning of the adjacent words and numbers before `end`, or the brace of a mark.
    static const char* RunBefore(const char* end, const char* floor) {
        while (end > floor && !EndsToken(end[-1]))
            --end;
        return end - (end > floor && *end == '#');
    }

    // The end of the last token before the place; the boundary if there is no token after that.
    const char* EndBefore(const char* place) const {
        while (place > boundary && Has(stBetween, place[-1]))
            --place;
        return place;
    }

    // Remembers the last token before `at` if it was not examined separately.
    void NoteLastEnd() {
        if (const char* const end = EndBefore(at); end != boundary) {
            lastEnd = end;
            lastFloor = boundary;
        }
    }

    // Makes the last token before `at` the place to begin at, unless it is already.
    void FindAnchor() {
        NoteLastEnd();
        if (!lastEnd)
            return;
        if (lastEnd[-1] == '"')
            skimmed.anchor = QuoteBefore(lastEnd - 1);
        else
            skimmed.anchor = EndsToken(lastEnd[-1]) ? lastEnd - 1 : RunBefore(lastEnd, lastFloor);
    }

    bool Stop(eSkimEnd end, const char* stop) {
        FindAnchor();
        skimmed.end = end;
        skimmed.stop = stop;
        return false;
    }

    const char* at;
    const char* boundary;                    // end of what was last examined separately: a boundary between tokens
    const char* lastEnd = nullptr;           // of the last token before it, if the anchor is not there yet
    const char* lastFloor = nullptr;         // a boundary between tokens before that token
    std::size_t plainStarts = 0;             // the last block starts, without marks, that `skimmed` does not count yet
    __m128i lineFeeds = _mm_setzero_si128(); // before skimmed.counted, in two parts
    eCarry carry{0, 1, 0, 0};
    eSkimmed skimmed;
};

} // namespace xSDL
