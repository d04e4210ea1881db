// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "platform/processor.h"
#include "sdl/count_bits.h"
#include "sdl/lexer.h"
#include "sdl/masks.h"
#include "sdl/masks_avx2.h"
#include "sdl/masks_sse2.h"

// Goes through a text 64 characters at a time, by their masks. There are two of each loop, one for each width: what is
// marked QZL_IO_AVX2 can be inlined only in a function that is marked so itself. All they share is in the structures.

namespace xSDL {

// Of two functions that do the same, the faster one that the processor can run.
template <class Function>
Function Widest(Function bySse2, Function byAvx2) {
    return IO::Platform::HasAvx2() ? byAvx2 : bySse2;
}

// All bits, or none.
constexpr std::uint64_t AllIf(bool condition) {
    return 0 - static_cast<std::uint64_t>(condition);
}

inline bool EndsToken(char c) {
    return Has(stBetween, c) || c == '{' || c == '}' || c == '"';
}

// The beginning of the adjacent words and numbers before the place.
inline const char* RunBefore(const char* end, const char* floor) {
    while (end > floor && !EndsToken(end[-1]))
        --end;
    return end;
}

inline const char* QuoteBefore(const char* end) {
    do
        --end;
    while (*end != '"');
    return end;
}

// What the masks tell of a text, from a boundary between tokens on.
struct eMaskScan {
    explicit eMaskScan(const char* begin) : at(begin) {}

    // The effect of the characters before a place on those from there on.
    struct eCarry {
        std::uint64_t inside = 0;            // all bits: the first one is in a string
        std::uint64_t between = AllIf(true); // the highest bit: a token begins there, unless the character is a blank
        std::uint64_t number = 0; // the lowest bit: digits and operators that begin with a token reach to there
        std::uint64_t digits = 0; // the highest bit: the first one follows a digit
    };

    const char* at; // the next characters
    eCarry carry;   // to behind those that were taken up

    // Of the 64 characters at `at`, once they are taken up.
    eMasks masks;
    std::uint64_t inside = 0; // in a string
    std::uint64_t points = 0; // where a point does not belong to a number, unless it is in a string

    // Takes up the masks of the next 64 characters. `withinQuotes` is InsideQuotes of these.
    QZL_IO_ALWAYS_INLINE void Take(const eMasks& found, std::uint64_t withinQuotes) {
        masks = found;
        inside = withinQuotes ^ carry.inside;
        points = masks.Points() & ~AfterIntegers();
        carry.inside = AllIf(inside >> 63 != 0);
    }

    // The characters that must be examined separately: they are neither in words, numbers and plain strings, nor
    // braces.
    std::uint64_t Stops() const { return masks.Stops(inside) | (points & ~inside); }

    std::uint64_t Starts() const { return masks.Starts() & ~inside; }
    std::uint64_t Ends() const { return masks.Ends() & ~inside; }

    // The last place, if a block starts there whose mark is behind the 64 characters.
    std::uint64_t StartOfMark() const { return Starts() & (static_cast<std::uint64_t>(at[64] == '#') << 63); }

    // The last place, if a string of some length continues there: its rest is passed faster without masks of 16
    // characters.
    std::uint64_t LongString() const { return static_cast<std::uint64_t>(inside >> 48 == 0xFFFF) << 63; }

    // The boundary between tokens to cut from, so that the one that reaches to `at` is cut. The other boundary is one
    // before that, from which the masks are.
    const char* BoundaryAfter(const char* earlier) const {
        const bool continuesString = ((inside ^ masks.Quotes()) & 1) != 0;
        return continuesString ? QuoteBefore(at) : RunBefore(at, earlier);
    }

private:
    // The places after integers, where a point is part of a number. Digits and operators that begin with a token are
    // only integers and operators.
    QZL_IO_ALWAYS_INLINE std::uint64_t AfterIntegers() {
        const std::uint64_t between = masks.Between();
        const std::uint64_t numbers = masks.Numbers();
        const std::uint64_t digits = masks.Digits();
        const std::uint64_t begun = (numbers & ((between << 1) | (carry.between >> 63))) + carry.number;
        const std::uint64_t passed = numbers + begun;
        const std::uint64_t after = passed & ~numbers & ((digits << 1) | (carry.digits >> 63));
        carry.between = between;
        carry.number = passed < numbers ? 1 : 0;
        carry.digits = digits;
        return after;
    }
};

// A pass over text of which only the number of braces and lines matters.
struct eMaskPass : eMaskScan {
    eMaskPass(const char* begin, long long openBlocks) : eMaskScan(begin), depth(openBlocks) {}

    long long depth;        // blocks open at `at`
    std::size_t starts = 0; // block starts passed
    std::size_t lines = 0;  // line feeds among all characters that were taken up

    // Passes the characters that were taken up, by the number of their braces. False if a brace among them may end more
    // than began: if those that do not follow a start, but for what is no brace, are more than the open blocks.
    QZL_IO_ALWAYS_INLINE bool PassBraces(int (*count)(std::uint64_t)) {
        const std::uint64_t begun = Starts();
        const std::uint64_t ended = Ends();
        const std::uint64_t others = ~(begun | ended);
        const std::uint64_t behindStart = begun << 1;
        if (count(ended & ~(behindStart | ((behindStart & others) + others))) > depth) [[unlikely]]
            return false;
        const int blocks = count(begun);
        depth += blocks - count(ended);
        starts += static_cast<unsigned>(blocks);
        at += 64;
        return true;
    }
};

// Passes characters until some must be examined separately, which are then taken up.
using eMaskPasser = void (*)(eMaskPass*);

inline void PassBySse2(eMaskPass* pass) {
    eMaskPass now = *pass;
    do {
        const eMasks masks = sse2::FindMasks(now.at);
        now.Take(masks, sse2::InsideQuotes(masks.Quotes()));
        now.lines += masks.lineFeeds;
    } while ((now.Stops() | now.LongString()) == 0 && now.PassBraces(CountBits));
    *pass = now;
}

QZL_IO_AVX2 inline void PassByAvx2(eMaskPass* pass) {
    eMaskPass now = *pass;
    do {
        const eMasks masks = avx2::FindMasks(now.at);
        now.Take(masks, avx2::InsideQuotes(masks.Quotes()));
        now.lines += masks.lineFeeds;
    } while (now.Stops() == 0 && now.PassBraces(avx2::CountBits));
    *pass = now;
}

// The braces among 64 characters.
struct eBraces {
    std::uint64_t starts = 0;
    std::uint64_t ends = 0;
};

// Tells of the braces among the next characters, 64 at a time, until some must be examined separately, which are then
// taken up, or there is no room for more. A brace is told of only if no mark follows it. Returns the number of times.
using eBraceFinder = std::size_t (*)(eMaskScan*, eBraces* found, std::size_t room);

inline std::size_t FindBracesBySse2(eMaskScan* scan, eBraces* found, std::size_t room) {
    eMaskScan now = *scan;
    std::size_t count = 0;
    for (; count < room; ++count) {
        const eMasks masks = sse2::FindMasks(now.at);
        now.Take(masks, sse2::InsideQuotes(masks.Quotes()));
        if ((now.Stops() | now.StartOfMark() | now.LongString()) != 0)
            break;
        found[count] = {now.Starts(), now.Ends()};
        now.at += 64;
    }
    *scan = now;
    return count;
}

QZL_IO_AVX2 inline std::size_t FindBracesByAvx2(eMaskScan* scan, eBraces* found, std::size_t room) {
    eMaskScan now = *scan;
    std::size_t count = 0;
    for (; count < room; ++count) {
        const eMasks masks = avx2::FindMasks(now.at);
        now.Take(masks, avx2::InsideQuotes(masks.Quotes()));
        if ((now.Stops() | now.StartOfMark()) != 0)
            break;
        found[count] = {now.Starts(), now.Ends()};
        now.at += 64;
    }
    *scan = now;
    return count;
}

} // namespace xSDL
