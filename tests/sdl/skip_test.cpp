// SPDX-License-Identifier: BSL-1.0
#include "skip_check.h"

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "sdl/hard_pieces.h"
#include "sdl/skim.h"
#include "support/long_tests.h"
#include "support/seconds_of.h"

namespace {

const std::vector<std::string> kPieces = {
    "a",          "word",        "%x",          "12", "0",  "0x1F",  "1.5",  "-2.5e+3", "1e5", ".",   "+",      "-5",
    "*",          "{",           "{",           "}",  "}",  "}",     "(",    ")",       "{#m", "{##", "{#a#1.", "\"s\"",
    "\"\\n\"",    "\"\\\"\"",    "\"",          "\\", ";",  "; c\n", "\r\n", "\n",      " ",   "  ",  "=",      "\t",
    "#",          "$",           "5.",          " ",  "1.", "e",     "e-",   "\xE4",    "'",   ",",   "0x",     "-",
    "\"a\\\nb\"", " 3.25 -1.5 ", "            "};

// Pieces without those that end most texts early.
const std::vector<std::string> kTamePieces = {"a",     "word ", "12 ", "0x1F", " 1.5",   " -2.5e+3 ", "{",
                                              "}",     "(",     ")",   "{#m ", "{##x",   "\"s\"",     "\"\\n}\"",
                                              "; }\n", "\n",    " ",   " = ",  " 7-5.5", "b+1.5"};

std::string RandomText(std::mt19937& random, const std::vector<std::string>& pieces, unsigned most = 60) {
    std::string text;
    for (auto left = random() % most; left > 0; --left)
        text += pieces[random() % pieces.size()];
    return text;
}

// The number of block starts before the end that skipping finds, and the marks of the last two.
struct eMarks {
    std::size_t starts = 0;
    std::string last;
    std::string before;

    bool operator==(const eMarks&) const = default;
};

std::string Mark(std::string_view withHash) {
    return std::string(withHash.empty() ? withHash : withHash.substr(1));
}

eMarks MarksByTokens(const std::string& text) {
    eMarks marks;
    const char* at = text.data();
    int line = 1;
    for (int depth = 0; depth >= 0;) {
        xSDL::eLexeme token;
        if (!xSDL::CutToken(&at, &line, &token) || token.type == sdlError)
            break;
        if (token.type == sdlBlockStart) {
            ++marks.starts;
            marks.before = std::exchange(marks.last, Mark({token.begin, token.length}));
        }
        depth += token.type == sdlBlockStart || token.type == sdlOpen;
        depth -= token.type == sdlBlockEnd || token.type == sdlClose;
    }
    return marks;
}

eMarks MarksAtOnce(const std::string& text) {
    const xSDL::eSkimmed skimmed = xSDL::eSkim(text.data(), 0).Run(xSDL::PassBySse2);
    return {skimmed.starts, std::string(xSDL::MarkOf(skimmed.mark)), std::string(xSDL::MarkOf(skimmed.markBefore))};
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

TEST(SdlSkip, TakesEveryPieceAtEveryPlaceAsTheTokensDo) {
    const std::vector<std::string> tails = {"", "}", " b 1.5 {#c \"}\"} ; \"\n } {#d e}",
                                            std::string(70, ' ') + "} 5 \"" + std::string(70, 'z') + "\"}"};
    const std::size_t tailsAtOnce = LongTests() ? tails.size() : 1;
    std::size_t turn = 0;
    for (const std::string& piece : kHardPieces)
        for (std::size_t place = 0; place < 130; ++place)
            for (const std::string& before :
                 {std::string(place, ' '), std::string(place, 'a'), "{" + std::string(place, '7'),
                  '"' + std::string(place, 's') + '"', "{#" + std::string(place, 'm') + " \"\" -",
                  "; " + std::string(place, '"') + "\n {}"})
                for (std::size_t i = 0; i < tailsAtOnce; ++i) {
                    const std::string text = before + piece + tails[(place + turn++) % tails.size()];
                    ASSERT_EQ(SkipAtOnce(text), SkipPlainly(text)) << text;
                }
}

TEST(SdlSkip, TakesStringsAndNumbersOfEveryLengthAsTheTokensDo) {
    for (std::size_t place = 0; place < 64; place += LongTests() ? 1u : 21u)
        for (std::size_t length = 0; length < 200; ++length)
            for (const std::string& run :
                 {'"' + std::string(length, '}') + '"', '"' + std::string(length, ';') + '"',
                  '"' + std::string(length, ' '), std::string(length, '1') + ".5.",
                  "-" + std::string(length, '1') + ".5", 'e' + std::string(length, '1') + ".5",
                  std::string(length, '-') + "1.5", std::string(length, '{') + std::string(length, '}'),
                  "{#" + std::string(length, '#') + "5.5"})
                for (const char* end : {"}", "\n}", "\\\"\"}"}) {
                    const std::string text = std::string(place, ' ') + run + end;
                    ASSERT_EQ(SkipAtOnce(text), SkipPlainly(text)) << text;
                }
}

TEST(SdlSkip, KnowsTheMarksOfTheLastTwoBlockStarts) {
    std::mt19937 random(9);
    const std::vector<std::string> pieces = {"{#a ",    "{#b}", "{##c#d+ ", "{",     "{}",       "}", "}}", "\"{#s\"",
                                             "; {#c\n", "12 ",  " word ",   " 1.5 ", "\"\\\"\"", "(", ") "};
    for (int round = 0; round < 20'000; ++round) {
        const std::string text = RandomText(random, pieces, 50) + std::string(xSDL::kTextEnd, '\0');
        const eMarks marks = MarksByTokens(text);
        ASSERT_EQ(MarksAtOnce(text), marks) << text;
    }
}

TEST(SdlSkip, LongRunsWithoutBlanksTakeLinearTime) {
    for (const std::string& unit : {std::string("5.5-a."), std::string("5.5-")}) {
        std::string text;
        for (int i = 0; i < 300'000; ++i)
            text += unit;
        text += "}";
        // If the cost were quadratic, this would take minutes.
        eSkipOutcome outcome;
        EXPECT_LT(SecondsOf([&] { outcome = SkipAtOnce(text); }), 10);
        EXPECT_EQ(outcome, SkipPlainly(text));
    }
}
