// SPDX-License-Identifier: BSL-1.0
#include <climits>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "sdl/lexer.h"
#include "sdl/skim.h"

// Counts that exceed an int; the tests begin just below the limit.

namespace {

std::string Padded(const std::string& text) {
    return text + std::string(xSDL::kTextEnd, '\0');
}

TEST(LargeCounts, LineNumbersGoOnFromTheSmallest) {
    EXPECT_EQ(xSDL::LinesOn(7, 5), 12);
    EXPECT_EQ(xSDL::LinesOn(INT_MAX, 1), INT_MIN);
    EXPECT_EQ(xSDL::LinesOn(1, std::size_t{1} << 31), INT_MIN + 1);
    for (const char* source : {"\n\n x", ";\n\n x", "\"\\\n\\\n\" x"})
        for (const auto cut : {xSDL::CutByTable, xSDL::CutToken}) {
            const std::string text = Padded(source);
            const char* position = text.data();
            int line = INT_MAX;
            for (xSDL::eLexeme token; token.type != sdlIdent; cut(&position, &line, &token))
                token = {};
            EXPECT_EQ(line, INT_MIN + 1) << source;
        }
}

TEST(LargeCounts, AParserShowsSuchLines) {
    const std::string text = "1 \n2 } \n3\n4";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("", stream, tables, {}, nullptr);
    eSDLParserState state = parser.StateCurrent();
    state.line = INT_MAX;
    parser.StatePrev(state);
    parser.Back();
    EXPECT_EQ(parser.GetContext().substr(0, 31), "2147483647: \xAB"
                                                 "1 \n-2147483648: 2 ");
    parser.Get();
    parser.Get();
    EXPECT_EQ(parser.Line(), INT_MIN);
}

TEST(LargeCounts, ABlockMayHoldMoreBlocksThanAnIntCounts) {
    const std::string text = Padded("{{{ } {{ } \n { }}} ");
    for (const long long depth : {static_cast<long long>(INT_MAX) - 2, 1LL << 32}) {
        const xSDL::eSkimmed skimmed = xSDL::eSkim(text.data(), depth).Run(xSDL::PassBySse2);
        EXPECT_EQ(skimmed.end, xSDL::eSkimEnd::EndOfText);
        EXPECT_EQ(skimmed.depth, depth + 1);
        EXPECT_EQ(skimmed.starts, 6u);
    }
}

TEST(LargeCounts, LineFeedsOfASkippedBlockAreCountedAsSizes) {
    xSDL::eSkimmed skimmed;
    const std::string text = Padded("\n\n\n");
    skimmed.counted = text.data() + 1;
    skimmed.lines = std::size_t{3} << 31;
    EXPECT_EQ(xSDL::LinesBefore(text.data() + 3, skimmed), (std::size_t{3} << 31) + 2);
    EXPECT_EQ(xSDL::LinesBefore(text.data(), skimmed), (std::size_t{3} << 31) - 1);
}

} // namespace
