// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <qzl_io/detail/compiler.h>

#include "sdl/lexer.h"
#include "sdl/mask_pass.h"

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
// braces and plain strings; any other character is examined separately.
class eSkim : eMaskPass {
public:
    // Begins at the position, which is a boundary between tokens, with that many open blocks.
    eSkim(const char* position, long long openBlocks) : eMaskPass(position, openBlocks), boundary(position) {
        skimmed.anchor = position;
    }

    eSkimmed Run(eMaskPasser passByMasks) {
        do {
            passByMasks(this);
            skimmed.counted = at + 64;
        } while (PassByOne());
        KeepStarts(starts);
        skimmed.depth = depth;
        skimmed.lines = lines;
        return skimmed;
    }

private:
    // Passes 64 characters of which some must be examined separately.
    bool PassByOne() {
        const char* const block = at;
        const std::uint64_t marks = FindMarks();
        std::uint64_t left = AllIf(true);
        while (const std::uint64_t stops = (Stops() | LongString()) & left & ~marks) {
            const std::uint64_t stop = stops & (0 - stops);
            const std::uint64_t passed = left & (stop - 1);
            if (!PassEachBrace(block, passed, marks))
                return false;
            at = block + std::countr_zero(stop);
            if (*at == ';' && !(inside & stop))
                PassComments(block, masks.Stops(AllIf(true)) & ~(stop - 1));
            else if (!((inside & stop) ? PassRestOfString(block, masks.Quotes() & passed) : Pass(*at)))
                return false;
            if (at - block >= 64) {
                CountLines();
                carry = {0, AllIf(at == boundary), 0, 0};
                return true;
            }
            left = AllIf(true) << (at - block);
            if (((inside ^ masks.Quotes()) >> (at - block)) & 1)
                inside = ~inside;
        }
        carry.inside = AllIf(inside >> 63 != 0);
        if (!PassEachBrace(block, left, marks))
            return false;
        at = block + 64;
        return true;
    }

    // Each # after a {, and those that follow it directly.
    std::uint64_t FindMarks() const {
        std::uint64_t marks = 0;
        for (std::uint64_t begun = masks.Starts(); begun; begun &= begun - 1)
            for (std::uint64_t hash = (begun & (0 - begun)) << 1; hash && at[std::countr_zero(hash)] == '#'; hash <<= 1)
                marks |= hash;
        return marks;
    }

    void CountLines() {
        lines += CountLineFeeds(skimmed.counted, at);
        skimmed.counted = at;
    }

    // Passes the braces of the block in these places. False if one of them is the terminator.
    bool PassEachBrace(const char* block, std::uint64_t places, std::uint64_t marks) {
        const std::uint64_t begun = Starts();
        for (std::uint64_t braces = (begun | Ends()) & places; braces; braces &= braces - 1) {
            const std::uint64_t brace = braces & (0 - braces);
            if (begun & brace) {
                ++depth;
                ++starts;
                if (marks & (brace << 1))
                    MarkStart(block + std::countr_zero(brace));
            } else if (depth == 0) {
                at = block + std::countr_zero(brace);
                return Stop(eSkimEnd::Terminator, at);
            } else {
                --depth;
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
            ++depth;
            return PassToken(at, at + 1);
        case ')':
            if (depth == 0)
                return Stop(eSkimEnd::Terminator, at);
            --depth;
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
        const char* const brace = MarkedRunBefore(at, boundary);
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
        KeepStarts(starts - 1);
        skimmed.markBefore = skimmed.mark;
        skimmed.mark = brace;
        skimmed.starts = starts;
    }

    // Notes that the starts since the last one noted, up to that many in all, have no marks.
    void KeepStarts(std::size_t count) {
        if (count > skimmed.starts) {
            skimmed.markBefore = count > skimmed.starts + 1 ? nullptr : skimmed.mark;
            skimmed.mark = nullptr;
        }
        skimmed.starts = count;
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

    // If the masks do not show whether the point belongs to a number, the lexer decides.
    bool PassPoint() {
        const char* position = MarkedRunBefore(at, boundary);
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

    // Likewise; the brace of a mark if the run is one.
    static const char* MarkedRunBefore(const char* end, const char* floor) {
        const char* const run = RunBefore(end, floor);
        return run - (run > floor && *run == '#');
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
            skimmed.anchor = EndsToken(lastEnd[-1]) ? lastEnd - 1 : MarkedRunBefore(lastEnd, lastFloor);
    }

    bool Stop(eSkimEnd end, const char* stop) {
        FindAnchor();
        skimmed.end = end;
        skimmed.stop = stop;
        return false;
    }

    const char* boundary;            // end of what was last examined separately: a boundary between tokens
    const char* lastEnd = nullptr;   // of the last token before it, if the anchor is not there yet
    const char* lastFloor = nullptr; // a boundary between tokens before that token
    eSkimmed skimmed;
};

} // namespace xSDL
