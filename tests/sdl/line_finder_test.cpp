// SPDX-License-Identifier: BSL-1.0
#include "sdl/line_finder.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "sdl/scan.h"

namespace {

// Counted byte by byte, with the characters of RandomText.
std::size_t PlainCount(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) {
        const std::size_t size = text.starts_with("\u00e4") ? 2u : text.starts_with("\U0001f600") ? 4u : 1u;
        text.remove_prefix(size);
    }
    return count;
}

std::string RandomText(std::mt19937& random, std::size_t size, unsigned feedsInThousand) {
    std::string text;
    while (text.size() < size) {
        const auto roll = random() % 1000;
        text += roll < feedsInThousand ? "\n"
                : roll < 700           ? "a"
                : roll < 850           ? "\u00e4"
                : roll < 950           ? "\U0001f600"
                : roll < 975           ? "\x80"
                                       : "\xFF";
    }
    return text;
}

TEST(LineFinder, FindsPlacesInAnyOrderAsAPlainCountDoes) {
    std::mt19937 random(7);
    for (const unsigned feeds : {0u, 1u, 20u, 300u})
        for (int round = 0; round < 20; ++round) {
            const std::string text = RandomText(random, random() % 6000, feeds);
            const std::string padded = text + std::string(xSDL::kTextEnd, '\0');
            const std::string_view source(padded.data(), text.size());
            xSDL::eLineFinder finder;
            for (int query = 0; query < 50; ++query) {
                std::size_t offset = random() % (text.size() + 1);
                while (offset < text.size() && (text[offset] & 0xC0) == 0x80)
                    ++offset;
                const std::size_t feed = text.substr(0, offset).rfind('\n');
                const std::size_t begin = feed == std::string::npos ? 0 : feed + 1;
                const xSDL::eInLine found = finder.Find(source, offset);
                ASSERT_EQ(found.lineBegin, begin);
                ASSERT_EQ(found.characters, PlainCount(source.substr(begin, offset - begin)));
                ASSERT_EQ(finder.LineFeedsBefore(source, offset),
                          static_cast<std::size_t>(
                              std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n')));
            }
        }
}

TEST(LineFinder, DividesATextBetweenCharacters) {
    const struct {
        std::string text;
        std::size_t place;
        std::size_t begin;
    } rows[] = {
        {"ab", 1, 1},
        {"a\u00e4", 2, 1},
        {"\U0001f600", 3, 0},
        {"\U0001f600", 4, 4},
        {"\x80\x80\x80", 1, 1},
        {"\U0001f600\x80\x80\x80", 6, 6},
        {"\u00e4\x80\x80", 3, 0},
        {"", 0, 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(xSDL::CharacterBegin(row.text, row.place), row.begin) << row.text;
}

TEST(LineFinder, CountsABytePartOfNoCharacterAsOne) {
    const struct {
        std::string text;
        std::size_t characters;
    } rows[] = {
        {"", 0},          {"abc", 3},      {"\u00e4", 1},       {"\xFF\xFE", 2},     {"\xE2\x82", 2},
        {"\xE2\x82z", 3}, {"\x80\x80", 2}, {"\xED\xA0\x80", 3}, {"\xF0\x9F\x98", 3}, {"12345678\u00e4", 9},
    };
    for (const auto& row : rows)
        EXPECT_EQ(xSDL::CountCharacters(row.text), row.characters) << row.text;
}

} // namespace
