// SPDX-License-Identifier: BSL-1.0
#include "sdl/mask_pass.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "sdl/automaton.h"
#include "support/processor.h"

namespace {

using namespace xSDL;

// Whether the bits of a mask are set, all of them or none, for a text of 64 equal characters.
bool Holds(std::uint64_t mask) {
    EXPECT_TRUE(mask == 0 || mask == ~std::uint64_t{0});
    return mask != 0;
}

eStep StepFrom(eLexerState state, char c) {
    return kAutomaton[state][static_cast<unsigned char>(c)];
}

struct eSse2 {
    static eMasks FindMasks(const char* at) { return sse2::FindMasks(at); }
    static std::uint64_t InsideQuotes(std::uint64_t quotes) { return sse2::InsideQuotes(quotes); }
    static int CountBits(std::uint64_t word) { return xSDL::CountBits(word); }
};

struct eAvx2 {
    QZL_IO_AVX2 static eMasks FindMasks(const char* at) { return avx2::FindMasks(at); }
    QZL_IO_AVX2 static std::uint64_t InsideQuotes(std::uint64_t quotes) { return avx2::InsideQuotes(quotes); }
    QZL_IO_AVX2 static int CountBits(std::uint64_t word) { return avx2::CountBits(word); }
};

template <class Width>
class SdlMasks : public testing::Test {
    void SetUp() override {
        if (std::is_same_v<Width, eAvx2> && !HasAvx2())
            GTEST_SKIP() << "the processor lacks AVX2, BMI1, PCLMUL or POPCNT";
    }
};

using Widths = testing::Types<eSse2, eAvx2>;
TYPED_TEST_SUITE(SdlMasks, Widths);

} // namespace

TYPED_TEST(SdlMasks, TellTheKindsAsTheLexerDoes) {
    for (int code = 0; code < 256; ++code) {
        const char c = static_cast<char>(code);
        const std::string text(64, c);
        const eMasks masks = TypeParam::FindMasks(text.data());
        const eStep step = StepFrom(stBetween, c);
        const bool blank = step.to == stBetween;
        const bool brace = c == '{' || c == '}';
        const bool digit = c >= '0' && c <= '9';
        const bool number = digit || c == '*' || c == '+' || c == '-';
        const bool point = c == '.' || c == '/';
        const bool word = StepFrom(stIdent, c).to == stIdent;
        EXPECT_EQ(Holds(masks.Quotes()), c == '"') << code;
        EXPECT_EQ(Holds(masks.Starts()), c == '{') << code;
        EXPECT_EQ(Holds(masks.Ends()), c == '}') << code;
        EXPECT_EQ(Holds(masks.Between()), blank || brace || c == '"') << code;
        EXPECT_EQ(Holds(masks.Numbers()), number) << code;
        EXPECT_EQ(Holds(masks.Digits()), digit) << code;
        EXPECT_EQ(Holds(masks.Points()), point) << code;
        EXPECT_EQ(Holds(masks.Stops(0)), !(blank || brace || c == '"' || number || point || word)) << code;
        const bool plainInString = c != 0 && StepFrom(stString, c).to == stString;
        EXPECT_TRUE(Holds(masks.Stops(~std::uint64_t{0})) || plainInString || c == '"') << code;
        EXPECT_TRUE(!Holds(masks.Stops(~std::uint64_t{0})) || !plainInString || c == '\t') << code;
        EXPECT_EQ(masks.lineFeeds, c == '\n' ? 64u : 0u) << code;
    }
}

TYPED_TEST(SdlMasks, HoldEachCharacterAtItsPlace) {
    for (std::size_t place = 0; place < 64; ++place) {
        std::string text(64, ' ');
        text[place] = '{';
        EXPECT_EQ(TypeParam::FindMasks(text.data()).Starts(), std::uint64_t{1} << place);
        text[place] = '5';
        EXPECT_EQ(TypeParam::FindMasks(text.data()).Digits(), std::uint64_t{1} << place);
        EXPECT_EQ(TypeParam::FindMasks(text.data()).Between(), ~(std::uint64_t{1} << place));
        text[place] = '#';
        EXPECT_EQ(TypeParam::FindMasks(text.data()).Stops(0), std::uint64_t{1} << place);
    }
}

TYPED_TEST(SdlMasks, InsideQuotesReachesFromEachOpeningQuoteToItsClosingOne) {
    std::uint64_t random = 12345;
    for (int round = 0; round < 1000; ++round) {
        random = random * 6364136223846793005u + 1442695040888963407u;
        const std::uint64_t quotes = random & (random >> 17) & (random << 9);
        std::uint64_t expected = 0;
        bool inside = false;
        for (int place = 0; place < 64; ++place) {
            inside ^= ((quotes >> place) & 1) != 0;
            expected |= std::uint64_t{inside} << place;
        }
        EXPECT_EQ(TypeParam::InsideQuotes(quotes), expected);
        EXPECT_EQ(TypeParam::CountBits(quotes), std::popcount(quotes));
        EXPECT_EQ(TypeParam::CountBits(random), std::popcount(random));
    }
}
