// SPDX-License-Identifier: BSL-1.0
#include "sdl/copy.h"

#include <cstddef>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr std::size_t kLongest = 70;

std::string Letters(std::size_t size) {
    std::string text;
    while (text.size() < size)
        text += static_cast<char>('a' + text.size() % 26);
    return text;
}

TEST(TextCopies, AreExactAtEverySizeAndTouchNothingElse) {
    for (std::size_t size = 0; size <= kLongest; ++size) {
        const std::string text = Letters(size);
        std::string copy(size + 2, '#');
        EXPECT_EQ(xSDL::CopyText(copy.data() + 1, text.data(), size), copy.data() + 1 + size);
        EXPECT_EQ(copy, "#" + text + "#");
        std::string plain(size + 2, '#');
        EXPECT_TRUE(xSDL::CopyPlain(plain.data() + 1, text.data(), size));
        EXPECT_EQ(plain, "#" + text + "#");
    }
}

TEST(TextCopies, AreComparedInEveryCharacter) {
    for (std::size_t size = 0; size <= kLongest; ++size) {
        const std::string text = Letters(size);
        EXPECT_TRUE(xSDL::IsSameText(text.data(), std::string(text).data(), size));
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = text;
            other[at] = '?';
            EXPECT_FALSE(xSDL::IsSameText(text.data(), other.data(), size)) << at << " of " << size;
        }
    }
}

TEST(TextCopies, ArePlainExactlyWhenNothingNeedsAnEscape) {
    std::string copy(kLongest, '\0');
    for (std::size_t size = 1; size <= kLongest; ++size) {
        for (std::size_t at = 0; at < size; ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text = Letters(size);
                text[at] = static_cast<char>(byte);
                const bool plain = byte >= ' ' && byte != '"' && byte != '\\' && byte != 0x7F;
                ASSERT_EQ(xSDL::CopyPlain(copy.data(), text.data(), size), plain)
                    << "byte " << byte << " at " << at << " of " << size;
            }
        }
    }
}

} // namespace
