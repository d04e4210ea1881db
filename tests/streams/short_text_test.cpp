// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include <qzl_io/streams.h>

#include "probe.h"
#include "support/reports.h"

// Texts of all lengths that are written in different ways.

namespace {

constexpr std::size_t kLengths = 140;

std::string TextOf(std::size_t length) {
    std::string text(length, ' ');
    for (std::size_t at = 0; at < length; ++at)
        text[at] = static_cast<char>('!' + at % 90);
    return text;
}

std::string Encoded(const std::string& text) {
    return static_cast<char>(text.size()) + text;
}

// Writes the text as a std::string and, from a block of its size, as a const char*, at position 3 of a stream of dots.
template <class Check>
void WriteAmongDots(std::size_t size, const std::string& text, Check check) {
    for (const bool asPointer : {false, true}) {
        eMemory stream(size);
        stream.Write(std::string(size, '.').data(), size);
        stream.Seek(3, IO::eSeekDir::Begin);
        const std::vector<char> block(text.c_str(), text.c_str() + text.size() + 1);
        if (asPointer)
            stream << block.data();
        else
            stream << text;
        check(stream);
    }
}

} // namespace

TEST(ShortTexts, OfEveryLengthChangeTheirOwnPlacesOnly) {
    for (std::size_t length = 0; length < kLengths; ++length) {
        const std::string text = TextOf(length), bytes = Encoded(text);
        WriteAmongDots(length + 40, text, [&](const eMemory& stream) {
            EXPECT_EQ(Content(stream), "..." + bytes + std::string(length + 40 - 3 - bytes.size(), '.')) << length;
            EXPECT_EQ(stream.Position(), 3 + bytes.size());
        });
    }
}

TEST(ShortTexts, OfEveryLengthAppendTheirOwnPlacesOnly) {
    for (std::size_t length = 0; length < kLengths; ++length) {
        const std::string text = TextOf(length), bytes = Encoded(text);
        eMemory stream(length + 40);
        stream.Write(std::string(length + 40, '.').data(), length + 40);
        stream.Clear() << text;
        EXPECT_EQ(stream.Size(), bytes.size());
        EXPECT_EQ(Content(stream), bytes) << length;
        stream.ResizeBuffer(length + 40, true);
        EXPECT_EQ(Content(stream), bytes + std::string(length + 40 - bytes.size(), '.')) << length;
    }
}

TEST(ShortTexts, OfEveryLengthEndAtTheFirstNul) {
    for (std::size_t length = 1; length < kLengths; ++length)
        for (std::size_t at = 0; at < length; ++at) {
            std::string text = TextOf(length);
            text[at] = text[length - 1] = '\0';
            const std::string bytes = Encoded(TextOf(at));
            WriteAmongDots(length + 40, text, [&](const eMemory& stream) {
                ASSERT_EQ(Content(stream), "..." + bytes + std::string(length + 40 - 3 - bytes.size(), '.'))
                    << length << ", " << at;
            });
        }
}

TEST(ShortTexts, OfEveryLengthHoldBytesOfAnyValue) {
    for (const char all : {'x', '\x01', '\x80', '\xFF'})
        for (const char one : {'\x01', '\x7F', '\x80', '\x81', '\xFE', '\xFF'})
            for (std::size_t length = 1; length < kLengths; ++length) {
                std::string text(length, all);
                text[length * 5 % 7 % length] = one;
                text[length / 2] = one;
                eMemory stream(length + 40);
                stream << text << text.c_str();
                ASSERT_EQ(Content(stream), Encoded(text) + Encoded(text)) << length << ", " << int{one};
            }
}

TEST(ShortTexts, OfEveryLengthStayWithinABufferOfAnySize) {
    const eReports reports;
    for (std::size_t length = 0; length < kLengths; ++length)
        for (std::size_t room = 1; room < length + 4; ++room) {
            std::vector<unsigned char> block(length + 40, '.');
            IO::eBufferStream stream(block.data(), room, room);
            const std::string text = TextOf(length);
            stream << text;
            std::string expected = Encoded(text).substr(0, room);
            expected.resize(block.size(), '.');
            ASSERT_EQ(std::string(block.begin(), block.end()), expected) << length << ", " << room;
            ASSERT_EQ(stream.Enabled(IO::StreamMode::Bad), room < length + 1 || room == 1) << length << ", " << room;
        }
}
