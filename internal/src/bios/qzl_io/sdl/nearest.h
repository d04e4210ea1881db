#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "qzl_base/shared/ascii.h"

// Finds what a misspelt word may stand for.

namespace xSDL {

// Longer words are not compared, which bounds the time.
inline constexpr std::size_t kLongestCompared = 64;

// The number of letters to insert, remove, replace or exchange with their neighbour that make the words equal, ignoring
// the case of ASCII letters.
inline std::size_t Distance(std::string_view from, std::string_view to) {
    using eRow = std::array<std::size_t, kLongestCompared + 1>;
    eRow beforeLast{};
    eRow last{};
    for (std::size_t column = 0; column <= to.size(); ++column)
        last[column] = column;
    for (std::size_t row = 1; row <= from.size(); ++row) {
        eRow next{};
        next[0] = row;
        for (std::size_t column = 1; column <= to.size(); ++column) {
            const auto same = [&](std::size_t left, std::size_t right) {
                return ascii::ToLower(from[left - 1]) == ascii::ToLower(to[right - 1]);
            };
            next[column] =
                std::min({last[column] + 1, next[column - 1] + 1, last[column - 1] + (same(row, column) ? 0 : 1)});
            if (row > 1 && column > 1 && same(row, column - 1) && same(row - 1, column))
                next[column] = std::min(next[column], beforeLast[column - 2] + 1);
        }
        beforeLast = last;
        last = next;
    }
    return last[to.size()];
}

// Collects words and keeps the one that is nearest to a word, the first of several. A word that differs in more than a
// third of its letters is not near.
class eNearest {
public:
    explicit eNearest(std::string_view soughtWord)
        : word(soughtWord),
          least(soughtWord.size() > kLongestCompared ? 0 : std::max<std::size_t>(soughtWord.size() / 3, 1) + 1) {}

    void Try(std::string_view candidate) {
        if (least == 0 || candidate.size() > kLongestCompared)
            return;
        if (const std::size_t distance = Distance(word, candidate); distance < least && distance < candidate.size()) {
            least = distance;
            nearest = candidate;
        }
    }

    // Empty if none is near.
    std::string_view Word() const { return nearest; }

private:
    std::string_view word;
    std::size_t least;
    std::string_view nearest;
};

} // namespace xSDL
