// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "qzl_base/shared/ascii.h"
#include "sdl/count_bits.h"

// Finds what a misspelt word may stand for.

namespace xSDL {

// Longer words are not compared, which bounds the time.
inline constexpr std::size_t kLongestCompared = 64;

// The number of letters to insert, remove, replace or exchange with their neighbour that make the words equal, ignoring
// the case of ASCII letters.
inline std::size_t Distance(std::string_view from, std::string_view to) {
    std::array<std::size_t, kLongestCompared + 1> rows[3];
    auto* beforeLast = &rows[0];
    auto* last = &rows[1];
    auto* next = &rows[2];
    const auto same = [&](std::size_t left, std::size_t right) {
        return ascii::ToLower(from[left - 1]) == ascii::ToLower(to[right - 1]);
    };
    for (std::size_t column = 0; column <= to.size(); ++column)
        (*last)[column] = column;
    for (std::size_t row = 1; row <= from.size(); ++row) {
        (*next)[0] = row;
        for (std::size_t column = 1; column <= to.size(); ++column) {
            const std::size_t replaced = (*last)[column - 1] + (same(row, column) ? 0 : 1);
            (*next)[column] = std::min({(*last)[column] + 1, (*next)[column - 1] + 1, replaced});
            if (row > 1 && column > 1 && same(row, column - 1) && same(row - 1, column))
                (*next)[column] = std::min((*next)[column], (*beforeLast)[column - 2] + 1);
        }
        std::swap(beforeLast, last);
        std::swap(last, next);
    }
    return (*last)[to.size()];
}

// The set of a word's letters, of which different ones may share a place.
inline std::uint64_t LettersOf(std::string_view word) {
    std::uint64_t letters = 0;
    for (const char c : word)
        letters |= std::uint64_t{1} << (static_cast<unsigned char>(ascii::ToLower(c)) & 63u);
    return letters;
}

// Collects words and keeps the one that is nearest to a word, the first of several. A word that differs in more than a
// third of its letters is not near. Most words of a large table are refused by their lengths and letters alone.
class eNearest {
public:
    explicit eNearest(std::string_view soughtWord)
        : word(soughtWord),
          letters(LettersOf(soughtWord)),
          least(soughtWord.size() > kLongestCompared ? 0 : std::max<std::size_t>(soughtWord.size() / 3, 1) + 1) {}

    void Try(std::string_view candidate) {
        if (!MayBeNearer(candidate))
            return;
        if (const std::size_t distance = Distance(word, candidate); distance < least && distance < candidate.size()) {
            least = distance;
            nearest = candidate;
        }
    }

    // Empty if none is near.
    std::string_view Word() const { return nearest; }

private:
    // A step changes the length by one at most, and the set of letters by two.
    bool MayBeNearer(std::string_view candidate) const {
        return least > 0 && candidate.size() <= kLongestCompared && candidate.size() < word.size() + least &&
               word.size() < candidate.size() + least &&
               static_cast<std::size_t>(CountBits(letters ^ LettersOf(candidate))) <= 2 * (least - 1);
    }

    std::string_view word;
    std::uint64_t letters;
    std::size_t least;
    std::string_view nearest;
};

} // namespace xSDL
