// SPDX-License-Identifier: BSL-1.0
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <qzl_io/sdl.h>

#include "sdl_source.h"

// The statements of docs/sdl-format.md for people who write files by hand.

namespace {

std::string Read(const std::string& text) {
    eSDLReader reader = ReaderOf(text);
    std::string tokens;
    const eFailure failure = FailureOf([&] {
        while (!reader.Check(sdlNone)) {
            tokens += std::to_string(reader.Token().type) + "[" + reader.Token().text + "] ";
            if (reader.Token().type == sdlError)
                return;
        }
    });
    return tokens + failure.message;
}

TEST(FormatPage, TellsHowTextsAreRead) {
    const struct {
        std::string text;
        std::string tokens;
    } rows[] = {
        {"; comment\rafter", "1[after] "},
        {"\"a\\\nb\"", "3[a\\\nb] "},
        {"\"a\nb\"", "-1[a] "},
        {"\"a\rb\"", "-1[a] "},
        {"%name %0", "1[%name] 1[%0] "},
        {"{#a-b+c_d9", "4[a-b+c_d9] "},
        {"{#a.b", "4[a] -1[] "},
        {"(\"price in $\") 1", "11[1] "},
        {"(\"price\" $) 1", "Block terminator expected!"},
        {"(+ 1 2 3)", "10[6] "},
        {"(+ 1 word)", "Number expected!"},
        {"(+ 1 (+ 2 3))", "Number expected!"},
        {"(+ )", "Number expected!"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Read(row.text), row.tokens) << row.text;
    EXPECT_EQ(FailureOf([] { ReaderOf("(+ 1 2)").GetInt(); }).message, "Integer expected!");
    EXPECT_EQ(ReaderOf("0xFFFFFFFF").GetInt(), -1);
    EXPECT_EQ(ReaderOf("0x1FFFFFFFF").GetInt(), -1);
    EXPECT_EQ(ReaderOf("99999999999").GetInt(), 2147483647);
    EXPECT_EQ(ReaderOf("1e99").GetFloat(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(ReaderOf("1e-99").GetFloat(), 0.0f);
    EXPECT_TRUE(ReaderOf("word").GetBool());
    EXPECT_TRUE(ReaderOf("-3").GetBool());
    EXPECT_FALSE(ReaderOf("0").GetBool());
    eSDLReader lines = ReaderOf("a\rb $");
    lines.GetIdent();
    lines.GetIdent();
    EXPECT_NE(ContextOf([&] { lines.GetInt(); }).find(", 1\n"), std::string::npos);
}

} // namespace
