// SPDX-License-Identifier: BSL-1.0
#include "sdl/plain.h"

#include <cstddef>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "random_source.h"

// The most frequent forms compared with the general lexer, at every place of random sources.

namespace {

constexpr std::size_t kReadBefore = 16; // characters that the functions for numbers read before the place

struct ePlain {
    const char* end = nullptr; // of the text; null if the place has no such form
    eSDLParserLexType type = sdlNone;
    unsigned long long digits = 0;
    int exponent = 0;
};

ePlain IntAt(const char* at, const char* source) {
    ePlain plain{.type = sdlInt};
    plain.end = xSDL::PassPlainInt(at, source, &plain.digits);
    return plain;
}

ePlain NumberAt(const char* at, const char* source) {
    xSDL::eLexeme number;
    const char* const end = xSDL::PassPlainNumber(at, source, &number);
    return {end, number.type, number.digits, number.exponent};
}

// What a reader takes without a look at an exponent.
ePlain DecimalAt(const char* at, const char* source) {
    xSDL::eLexeme number;
    const char* const end = xSDL::PassPlainDecimal(at, source, &number);
    if (!end || xSDL::ContinuesNumber(*end))
        return {};
    return {end, number.type, number.digits, number.exponent};
}

class PlainForms : public testing::Test {
protected:
    // The number of forms found, which all agree with the lexer.
    int found = 0;

    void Compare(const ePlain& plain, const char* at) {
        if (!plain.end)
            return;
        ++found;
        int line = 1;
        xSDL::eLexeme lexeme{.begin = at};
        xSDL::CutAt(at, &line, &lexeme);
        ASSERT_EQ(plain.type, lexeme.type) << at;
        const char* const begin = at + (plain.type == sdlString);
        ASSERT_EQ(std::string(begin, plain.end), std::string(lexeme.begin, lexeme.length)) << at;
        if (plain.type == sdlInt || plain.type == sdlFloat) {
            ASSERT_TRUE(lexeme.exact);
            ASSERT_EQ(plain.digits, lexeme.digits) << at;
            ASSERT_EQ(plain.exponent, lexeme.exponent) << at;
        }
    }

    void CompareAll(const char* at, const char* source) {
        Compare(IntAt(at, source), at);
        Compare(NumberAt(at, source), at);
        Compare(DecimalAt(at, source), at);
        Compare({.end = xSDL::PassPlainString(at), .type = sdlString}, at);
        Compare({.end = xSDL::PassWord(at), .type = sdlIdent}, at);
        Compare({.end = xSDL::PassShortWord(at), .type = sdlIdent}, at);
        Compare({.end = xSDL::PassPlainBlockStart(at), .type = sdlBlockStart}, at);
        Compare({.end = xSDL::PassBlockEnd(at), .type = sdlBlockEnd}, at);
    }
};

TEST_F(PlainForms, EndWhereTheLexerEndsThem) {
    for (unsigned seed = 0; seed < 2'000; ++seed) {
        std::mt19937 random(seed);
        const std::string source = RandomSource(random, 25) + std::string(xSDL::kTextEnd, '\0');
        for (std::size_t at = 0; at + xSDL::kTextEnd <= source.size(); ++at)
            ASSERT_NO_FATAL_FAILURE(CompareAll(source.data() + at, source.data())) << "seed " << seed << " at " << at;
    }
    EXPECT_GT(found, 10'000);
}

TEST_F(PlainForms, AreTheUsualOnes) {
    const struct {
        const char* text;
        bool isInt;
        bool isNumber;
        bool isDecimal;
    } rows[] = {
        {"7", true, true, true},
        {"-7 ", true, true, true},
        {"0", true, true, true},
        {"123456789012345", true, true, true},
        {"1.5", false, true, true},
        {"-0.25", false, true, true},
        {"123456.12345678", false, true, true},
        {"1.", false, true, true},
        {"1e5", false, true, false},
        {"12.5e-3", false, true, false},
        {"0x1F", false, false, false},
        {"+5", false, false, false},
        {"-", false, false, false},
        {"1e+", false, false, false},
        {"1e100", false, false, false},
        {"0e5", false, true, false},
        {"word", false, false, false},
        {"1234567890123456", false, false, false},
        {"1234567.12345678", false, false, false},
    };
    for (const auto& row : rows) {
        const std::string source = std::string(kReadBefore, ' ') + row.text + std::string(xSDL::kTextEnd, '\0');
        const char* const at = source.data() + kReadBefore;
        EXPECT_EQ(IntAt(at, source.data()).end != nullptr, row.isInt) << row.text;
        EXPECT_EQ(NumberAt(at, source.data()).end != nullptr, row.isNumber) << row.text;
        EXPECT_EQ(DecimalAt(at, source.data()).end != nullptr, row.isDecimal) << row.text;
        EXPECT_EQ(NumberAt(at, at).end, nullptr) << row.text << " at the beginning of a source";
    }
}

TEST_F(PlainForms, WordsOfUpTo16CharactersAreShort) {
    for (std::size_t size = 1; size <= 20; ++size) {
        const std::string source = std::string(size, 'w') + std::string(xSDL::kTextEnd, '\0');
        const char* const end = xSDL::PassShortWord(source.data());
        EXPECT_EQ(end, size <= 16 ? source.data() + size : nullptr) << size;
    }
}

} // namespace
