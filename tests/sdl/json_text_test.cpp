// SPDX-License-Identifier: BSL-1.0
#include "json/text.h"

#include <cstddef>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "qzl_base/shared/unicode.h"

namespace {

struct eTextCase {
    const char* text;
    bool expected;
};

TEST(JsonText, KnowsWellFormedUtf8) {
    const eTextCase rows[] = {
        {"", true},
        {"plain ASCII, longer than one word", true},
        {"\xC3\xA9", true},
        {"12345678\xE2\x82\xAC 12345678", true},
        {"\xF0\x9F\x8C\x85", true},
        {"\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF", true},
        {"\xC2\x80\xDF\xBF\xE0\xA0\x80\xF0\x90\x80\x80", true},
        {"\x80", false},
        {"12345678\xBF", false},
        {"\xC0\x80", false},
        {"\xC1\xBF", false},
        {"\xE0\x9F\xBF", false},
        {"\xED\xA0\x80", false},
        {"\xF0\x8F\xBF\xBF", false},
        {"\xF4\x90\x80\x80", false},
        {"\xF5\x80\x80\x80", false},
        {"\xFF", false},
        {"\xC3", false},
        {"\xE2\x82", false},
        {"\xF0\x9F\x8C", false},
        {"\xE2\x82\x28", false},
        {"\xF0\x9F\x28\x85", false},
        {"a\xC3(b", false},
    };
    for (const eTextCase& row : rows)
        EXPECT_EQ(json_text::IsUtf8(row.text), row.expected) << testing::PrintToString(row.text);
}

// A text of mostly plain characters, with backslashes and with well-formed and ill-formed sequences at any place.
std::string RandomText(std::mt19937* random) {
    static constexpr const char* kPieces[] = {"\\",   "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8C\x85",
                                              "\xC3", "\x80",     "\xFF"};
    std::string text;
    for (auto parts = (*random)() % 4; parts > 0; --parts) {
        text.append((*random)() % 40, 'x');
        text += kPieces[(*random)() % std::size(kPieces)];
    }
    return text.append((*random)() % 40, 'x');
}

bool IsUtf8BySequences(std::string_view text) {
    while (!text.empty()) {
        const unicode::eCharacter first = unicode::FirstOf(text);
        if (!first.wellFormed)
            return false;
        text.remove_prefix(first.units);
    }
    return true;
}

std::size_t PlainBlocksByBytes(std::string_view text) {
    std::size_t plain = 0;
    while (plain < text.size() && text[plain] != '\\' && static_cast<unsigned char>(text[plain]) < 0x80)
        ++plain;
    return plain / 16 * 16;
}

TEST(JsonText, IsJudgedInBlocksAsByteByByte) {
    std::mt19937 random(11);
    for (int round = 0; round < 50'000; ++round) {
        const std::string text = RandomText(&random);
        ASSERT_EQ(json_text::IsUtf8(text), IsUtf8BySequences(text)) << testing::PrintToString(text);
        ASSERT_EQ(json_text::PlainBlocks(text), PlainBlocksByBytes(text)) << testing::PrintToString(text);
    }
}

TEST(JsonText, KnowsEscapedSurrogatesWithoutTheirOtherHalf) {
    const eTextCase rows[] = {
        {"", false},
        {R"("\ud83c\udf05")", false},
        {R"("\uD83C\uDF05\ud83c\udf05")", false},
        {R"("\u0041\ud7ff\ue000\n")", false},
        {R"("\\ud83c")", false},
        {R"("\\\\udf05")", false},
        {R"("\ud83c")", true},
        {R"("\ud83c\)", true},
        {R"("\ud83c\u0041")", true},
        {R"("\ud83c\ud83c\udf05")", true},
        {R"("\udf05")", true},
        {R"("\ud83c\udf05\udf05")", true},
        {R"("\\\udf05")", true},
        {R"("\u12)", false},
        {R"("\uzzzz")", false},
        {R"("\u00/0")", false},
        {R"("\u00@0")", false},
        {R"("\ud83c\udf0/")", true},
        {"\\", false},
        {"\\u", false},
    };
    for (const eTextCase& row : rows)
        EXPECT_EQ(json_text::HasLoneSurrogate(row.text), row.expected) << row.text;
}

} // namespace
