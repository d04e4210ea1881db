// SPDX-License-Identifier: BSL-1.0
#include "sdl/nearest.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

std::string NearestTo(std::string_view misspelt, std::initializer_list<std::string_view> words) {
    xSDL::eNearest nearest(misspelt);
    for (const std::string_view word : words)
        nearest.Try(word);
    return std::string(nearest.Word());
}

TEST(Nearest, IsTheRightOneOfOneMistake) {
    const struct {
        const char* mistake;
        const char* misspelt;
    } rows[] = {
        {"exchanged", "lihgt"}, {"left out", "ligt"},     {"inserted", "liight"},   {"replaced", "lighr"},
        {"first", "kight"},     {"at the end", "lights"}, {"letter case", "LIHGT"}, {"exchanged at the end", "ligth"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(NearestTo(row.misspelt, {"color", "light", "sphere"}), "light") << row.mistake;
}

TEST(Nearest, IsTheWordItselfWhateverCameBefore) {
    EXPECT_EQ(NearestTo("light", {"lights", "light", "lighs"}), "light");
}

TEST(Nearest, MayHaveMoreMistakesTheLongerItIs) {
    const std::string right = "abcdefghijk";
    for (std::size_t length = 2; length <= right.size(); ++length) {
        const std::size_t most = std::max<std::size_t>(length / 3, 1);
        for (std::size_t mistakes = 0; mistakes <= 4; ++mistakes) {
            const std::string word = right.substr(0, length);
            const std::string misspelt =
                std::string(std::min(mistakes, length), 'z') + word.substr(std::min(mistakes, length));
            const bool isNear = mistakes <= most;
            EXPECT_EQ(NearestTo(misspelt, {word}), isNear ? word : "") << misspelt;
        }
    }
}

TEST(Nearest, IsTheFirstOfTheNearest) {
    EXPECT_EQ(NearestTo("cat", {"dog", "cart", "bat", "at"}), "cart");
    EXPECT_EQ(NearestTo("sphere", {"spore", "spher", "sphera"}), "spher");
    EXPECT_EQ(NearestTo("lightt", {"lihgt", "light"}), "light");
}

TEST(Nearest, IsNoneIfNoneIsNear) {
    EXPECT_EQ(NearestTo("fast", {"color", "light"}), "");
    EXPECT_EQ(NearestTo("x", {"y"}), "");
    EXPECT_EQ(NearestTo("", {"a", ""}), "");
    EXPECT_EQ(NearestTo("light", {}), "");
}

TEST(Nearest, IsNoneOfWordsOfMoreThan64Letters) {
    const std::string longest(64, 'a');
    EXPECT_EQ(NearestTo(longest.substr(1) + 'b', {longest}), longest);
    EXPECT_EQ(NearestTo(longest + 'a', {longest}), "");
    EXPECT_EQ(NearestTo(longest, {longest + 'a'}), "");
}

} // namespace
