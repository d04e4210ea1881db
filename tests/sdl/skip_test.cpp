#include "skip_check.h"

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/long_tests.h"

namespace {

const std::vector<std::string> kPieces = {
    "a",          "word",        "%x",          "12", "0",  "0x1F",  "1.5",  "-2.5e+3", "1e5", ".",   "+",      "-5",
    "*",          "{",           "{",           "}",  "}",  "}",     "(",    ")",       "{#m", "{##", "{#a#1.", "\"s\"",
    "\"\\n\"",    "\"\\\"\"",    "\"",          "\\", ";",  "; c\n", "\r\n", "\n",      " ",   "  ",  "=",      "\t",
    "#",          "$",           "5.",          " ",  "1.", "e",     "e-",   "\xE4",    "'",   ",",   "0x",     "-",
    "\"a\\\nb\"", " 3.25 -1.5 ", "            "};

// Without what ends most texts early.
const std::vector<std::string> kTamePieces = {"a",     "word ", "12 ", "0x1F", " 1.5",   " -2.5e+3 ", "{",
                                              "}",     "(",     ")",   "{#m ", "{##x",   "\"s\"",     "\"\\n}\"",
                                              "; }\n", "\n",    " ",   " = ",  " 7-5.5", "b+1.5"};

std::string RandomText(std::mt19937& random, const std::vector<std::string>& pieces, unsigned most = 60) {
    std::string text;
    for (auto left = random() % most; left > 0; --left)
        text += pieces[random() % pieces.size()];
    return text;
}

} // namespace

TEST(SdlSkip, LeavesTheReaderAsIfEveryTokenHadBeenCut) {
    std::mt19937 random(7);
    const int rounds = LongTests() ? 2'000'000 : 40'000;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = RandomText(random, round % 2 ? kPieces : kTamePieces);
        ASSERT_EQ(SkipAtOnce(text), SkipPlainly(text)) << text;
    }
}

TEST(SdlSkip, CountsTheLinesOfLongBlocks) {
    std::mt19937 random(8);
    for (int round = 0; round < 200; ++round) {
        std::string text = "{";
        while (text.size() < 20'000) {
            text +=
                RandomText(random, {"a", "12 ", "\n", "\r\n\t\t", " 1.5", "{m\n}", "\"s\\\nt\"", "; c\n", "{#x }"}, 40);
            text.append(random() % 8 == 0 ? random() % 6000 : 0, random() % 2 == 0 ? '\n' : 'b');
        }
        ASSERT_EQ(SkipAtOnce(text + "}}"), SkipPlainly(text + "}}"));
        ASSERT_EQ(SkipAtOnce(text + "}"), SkipPlainly(text + "}"));
    }
}

TEST(SdlSkip, TakesEveryShortTextAsTheTokensDo) {
    const std::string alphabet("a1.-{})\";\n #e", 13);
    std::vector<std::size_t> digits(LongTests() ? 6 : 4);
    for (bool more = true; more;) {
        std::string text;
        for (const std::size_t digit : digits)
            text += alphabet[digit];
        ASSERT_EQ(SkipAtOnce(text), SkipPlainly(text)) << text;
        more = false;
        for (std::size_t& digit : digits) {
            digit = digit + 1 == alphabet.size() ? 0 : digit + 1;
            if ((more = digit != 0))
                break;
        }
    }
}

TEST(SdlSkip, LongRunsWithoutBlanksTakeLinearTime) {
    std::string text;
    for (int i = 0; i < 300'000; ++i)
        text += "5.5-a.";
    EXPECT_EQ(SkipAtOnce(text), SkipPlainly(text));
    text.clear();
    for (int i = 0; i < 300'000; ++i)
        text += "5.5-";
    EXPECT_EQ(SkipAtOnce(text + "}"), SkipPlainly(text + "}"));
}
