// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <cstdint>

#include <qzl_io/detail/compiler.h>

#include "sdl/masks.h"
#include "sdl/masks_avx2.h"
#include "sdl/masks_sse2.h"

// Passes a text 64 characters at a time, by their masks.

namespace xSDL {

// All bits, or none.
constexpr std::uint64_t AllIf(bool condition) {
    return 0 - static_cast<std::uint64_t>(condition);
}

struct eMaskPass {
    // The effect of the characters before a place on those from there on.
    struct eCarry {
        std::uint64_t inside = 0;            // all bits: the first one is in a string
        std::uint64_t between = AllIf(true); // the highest bit: a token begins there, unless the character is a blank
        std::uint64_t number = 0; // the lowest bit: digits and operators that begin with a token reach to there
        std::uint64_t digits = 0; // the highest bit: the first one follows a digit
    };

    const char* at;         // the next characters
    long long depth;        // blocks open there
    std::size_t starts = 0; // block starts passed
    std::size_t lines = 0;  // line feeds among all characters whose masks were found
    eCarry carry{};         // to behind those

    // Of the 64 characters at `at`, when they must be examined separately.
    eMasks masks{};
    std::uint64_t inside = 0; // in a string
    std::uint64_t points = 0; // where a point does not belong to a number, unless it is in a string

    // Takes up the masks of the next 64 characters. `withinQuotes` is InsideQuotes of these.
    QZL_IO_ALWAYS_INLINE void Take(const eMasks& found, std::uint64_t withinQuotes) {
        masks = found;
        inside = withinQuotes ^ carry.inside;
        points = masks.Points() & ~AfterIntegers();
        carry.inside = AllIf(inside >> 63 != 0);
        lines += masks.lineFeeds;
    }

    // The characters that must be examined separately.
    std::uint64_t Stops() const { return masks.Stops(inside) | (points & ~inside); }

    std::uint64_t Starts() const { return masks.Starts() & ~inside; }
    std::uint64_t Ends() const { return masks.Ends() & ~inside; }

    // The last place, if a string of some length continues there: its rest is passed faster without masks of 16
    // characters.
    std::uint64_t LongString() const { return static_cast<std::uint64_t>(inside >> 48 == 0xFFFF) << 63; }

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

// Passes characters until some must be examined separately.
using eMaskPasser = void (*)(eMaskPass*);

inline void PassBySse2(eMaskPass* pass) {
    eMaskPass now = *pass;
    do {
        const eMasks masks = sse2::FindMasks(now.at);
        now.Take(masks, sse2::InsideQuotes(masks.Quotes()));
    } while ((now.Stops() | now.LongString()) == 0 && now.PassBraces(sse2::CountBits));
    *pass = now;
}

QZL_IO_AVX2 inline void PassByAvx2(eMaskPass* pass) {
    eMaskPass now = *pass;
    do {
        const eMasks masks = avx2::FindMasks(now.at);
        now.Take(masks, avx2::InsideQuotes(masks.Quotes()));
    } while (now.Stops() == 0 && now.PassBraces(avx2::CountBits));
    *pass = now;
}

} // namespace xSDL
