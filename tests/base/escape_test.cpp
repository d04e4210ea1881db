// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/convert.h>

#include <cstddef>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "qzl_base/shared/escapes.h"

namespace {

using namespace std::string_literals;

std::string Converted(std::string text, bool escape) {
    ConvertEscSequence(&text, escape);
    return text;
}

std::string Put(const std::string& text) {
    const std::size_t size = EscapedSize(text);
    std::string room(size + 1, '#');
    char* const end = PutEscaped(room.data(), text);
    EXPECT_EQ(size, static_cast<std::size_t>(end - room.data())) << text;
    EXPECT_EQ('#', room[size]) << text;
    return room.substr(0, size);
}

std::string Appended(const std::string& text) {
    std::string target = "\"\n";
    AppendEscaped(&target, text);
    EXPECT_EQ("\"\n", target.substr(0, 2)) << text;
    return target.substr(2);
}

// Whether a quoted SDL string can contain the text: no line end, no quote except after a backslash, no backslash at the
// end.
bool StandsInQuotes(const std::string& text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && ++at == text.size())
            return false;
        else if (text[at] == '"' && (at == 0 || text[at - 1] != '\\'))
            return false;
        if (static_cast<unsigned char>(text[at]) < ' ')
            return false;
    }
    return true;
}

void CheckRoundTrip(const std::string& text) {
    const std::string escaped = Converted(text, true);
    EXPECT_EQ(text, Converted(escaped, false));
    EXPECT_EQ(escaped, Put(text));
    EXPECT_EQ(escaped, Appended(text));
    EXPECT_TRUE(StandsInQuotes(escaped)) << escaped;
}

TEST(Escapes, StandForTheCharactersThatAStringCannotHold) {
    const struct {
        std::string text;
        std::string escaped;
    } rows[] = {
        {"", ""},
        {"plain text", "plain text"},
        {"\"", "\\\""},
        {"\\", "\\\\"},
        {"\n", "\\n"},
        {"\r", "\\r"},
        {"\t", "\\t"},
        {"\r\n", "\\r\\n"},
        {"\x01", "\\x01"},
        {"\x1f", "\\x1f"},
        {"\x7f", "\\x7f"},
        {"\0"s, "\\x00"},
        {"a\bb", "a\\x08b"},
        {"say \"hi\"", "say \\\"hi\\\""},
        {"c:\\new", "c:\\\\new"},
        {"\\n", "\\\\n"},
        {"\\x41", "\\\\x41"},
        {"\x01"
         "1",
         "\\x011"},
        {"\x80\xff\xc3\xa4", "\x80\xff\xc3\xa4"},
        {"'/%;{}()", "'/%;{}()"},
        {"0123456\"", "0123456\\\""},
        {"01234567\"", "01234567\\\""},
        {"\"\"\"\"\"\"\"\"\"", "\\\"\\\"\\\"\\\"\\\"\\\"\\\"\\\"\\\""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.escaped, Converted(row.text, true));
        EXPECT_EQ(row.text, Converted(row.escaped, false));
        EXPECT_EQ(row.escaped.size(), EscapedSize(row.text));
        CheckRoundTrip(row.text);
    }
}

TEST(Escapes, OfOtherKindsAreLeftAsWritten) {
    for (const char* text : {"\\", "a\\", "\\q", "\\N", "\\0", "\\'", "\\x", "\\x4", "\\x4g", "\\xg4", "\\X41",
                             "\\u0041", "\\ n", "c:\\qzl\\io"})
        EXPECT_EQ(text, Converted(text, false));
}

TEST(Escapes, AreReadLeftToRight) {
    const struct {
        std::string written;
        std::string text;
    } rows[] = {
        {"\\\\n", "\\n"},      {"\\\\\\n", "\\\n"},        {"\\\\\\", "\\\\"}, {"\\q\\n", "\\q\n"},
        {"\\q\\", "\\q\\"},    {"\\x41\\x4A\\x4a", "AJJ"}, {"\\x411", "A1"},   {"\\x5cn", "\\n"},
        {"a\\tb\\", "a\tb\\"}, {"\\x4\\n", "\\x4\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text, Converted(row.written, false)) << row.written;
}

TEST(Escapes, KeepEveryByteAtEveryPlace) {
    for (std::size_t size = 1; size <= 20; ++size)
        for (std::size_t at = 0; at < size; ++at)
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(size, 'x');
                text[at] = static_cast<char>(byte);
                ASSERT_EQ(text, Converted(Converted(text, true), false)) << size << ' ' << at << ' ' << byte;
                ASSERT_EQ(text.size() == EscapedSize(text), Converted(text, true) == text)
                    << size << ' ' << at << ' ' << byte;
            }
}

TEST(Escapes, AreNeededByTheSameCharactersOneByOneAndSixteenAtATime) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool stands = byte >= ' ' && byte != 0x7f && c != '"' && c != '\\';
        EXPECT_EQ(escapes::IsNeeded(c), !stands) << byte;
        for (unsigned place = 0; place < 16; ++place) {
            std::string text(16, 'a');
            text[place] = c;
            const __m128i characters = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data()));
            EXPECT_EQ(escapes::AreNeeded(characters), stands ? 0u : 1u << place) << byte << " at " << place;
        }
    }
}

TEST(Escapes, KeepEveryPairOfBytes) {
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second)
            CheckRoundTrip({static_cast<char>(first), static_cast<char>(second)});
}

TEST(Escapes, KeepRandomTexts) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 200, '\0');
        for (char& c : text)
            c = random() % 4 ? static_cast<char>('a' + random() % 26) : static_cast<char>(random() % 256);
        CheckRoundTrip(text);
    }
}

TEST(Escapes, LeaveATextAloneThatNeedsNone) {
    std::string text(1000, 'a');
    const char* const characters = text.data();
    ConvertEscSequence(&text, true);
    ConvertEscSequence(&text, false);
    EXPECT_EQ(std::string(1000, 'a'), text);
    EXPECT_EQ(characters, text.data());
}

} // namespace
