// SPDX-License-Identifier: BSL-1.0
#include "tool.h"

// show, tokens and system.

class ToolLook : public Tool {};
class ToolLookAtLength : public ToolAtLength {};

TEST_F(ToolLookAtLength, ShowCountsValuesAndListsBlocks) {
    EXPECT_EQ(OutputOf({"show", "-"}, "{scene {light \"sun\" 1.5 3} {light x} {7}} ; end"),
              "  blocks    4, at most 2 deep\n"
              "  strings   1\n"
              "  integers  2\n"
              "  floats    1\n"
              "  words     1\n"
              "outline\n"
              "  scene\n"
              "    light x 2\n"
              "    (no name)\n");
}

TEST_F(ToolLookAtLength, ShowListsAsManyLevelsAndNamesAsAsked) {
    const std::string document = "{a {b {c}} {b {c {d}}}} {e} {f}";
    EXPECT_THAT(OutputOf({"show", "--depth", "2", "-"}, document),
                testing::EndsWith("outline\n  a\n    b x 2\n  e\n  f\n"));
    EXPECT_THAT(OutputOf({"show", "--depth", "1", "--names", "2", "-"}, document),
                testing::EndsWith("outline\n  a\n  e\n  ... and 1 more name\n"));
    EXPECT_THAT(OutputOf({"show", "--depth", "0", "-"}, document), testing::EndsWith("outline\n"));
}

TEST_F(ToolLookAtLength, TokensHavePlaceKindAndText) {
    EXPECT_EQ(OutputOf({"tokens", "-"}, "{#m a = 0x1F\r\n\t\"caf\xc3\xa9\" -1.5 ; no\n(+ 1 x)}"),
              "1:1\tblock\t{#m\n1:5\tword\ta\n1:9\tinteger\t0x1F\n2:2\tstring\t\"caf\xc3\xa9\"\n2:9\tfloat\t-1.5\n"
              "3:1\topen\t(\n3:2\toperator\t+\n3:4\tinteger\t1\n3:6\tword\tx\n3:7\tclose\t)\n3:8\tend\t}\n");
}

TEST_F(ToolLookAtLength, TokensShowsEachErrorAndGoesOn) {
    const eEnded ended = Run({"tokens", "-"}, "a $\xc3\xa9 \"broken\n b \"open");
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.errors, "");
    EXPECT_EQ(ended.output, "1:1\tword\ta\n1:3\terror\t$\n1:4\terror\t\xc3\xa9\n1:6\terror\t\"broken\n2:2\tword\tb\n"
                            "2:4\terror\t\"open\n");
}

TEST_F(ToolLook, NothingThatATerminalObeysIsPrinted) {
    const std::string hostile = "{a \"\x1b]0;x\x07\xc2\x9b\x7f\xe2\x80\xae\" 1} {\x1b}";
    for (const char* const verb : {"tokens", "show"}) {
        const eEnded ended = Run({verb, "-"}, hostile);
        EXPECT_THAT(ended.output + ended.errors,
                    testing::Not(testing::AnyOf(testing::HasSubstr("\x1b"), testing::HasSubstr("\x07"),
                                                testing::HasSubstr("\xc2\x9b"), testing::HasSubstr("\x7f"),
                                                testing::HasSubstr("\xe2\x80\xae"))))
            << verb;
    }
    EXPECT_THAT(Run({"tokens", "-"}, hostile).output,
                testing::HasSubstr("\"<U+001B>]0;x<U+0007><U+009B><U+007F><U+202E>\""));
}

TEST_F(ToolLookAtLength, DepthTakesNoStackAndLengthNoSquare) {
    std::string deep(20000, '{');
    deep.append(20000, '}');
    EXPECT_THAT(OutputOf({"show", "-"}, deep), testing::HasSubstr("20000, at most 20000 deep"));
    EXPECT_LT(OutputOf({"to-json", "-", "-"}, deep).size(), 20000u * 200);
    std::string names;
    for (int index = 0; index < 20000; ++index)
        names += "{n" + std::to_string(index) + " $}";
    EXPECT_EQ(Run({"tokens", "-"}, names).code, 1);
}

TEST_F(ToolLook, SystemTellsOfTheMachine) {
    folder.Write("here.txt", "12345");
    const eEnded ended = Run({"system"});
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(WithoutDiskWarning(ended.errors), "");
    const std::string& output = ended.output;
    EXPECT_THAT(output, testing::HasSubstr("machine\n  computer "));
    EXPECT_THAT(output, testing::HasSubstr("\nsystem\n  name "));
    EXPECT_THAT(output, testing::HasSubstr("\n  processors "));
    EXPECT_THAT(output, testing::HasSubstr("\nfolders of the user\n  settings "));
    EXPECT_THAT(output, testing::HasSubstr(" bytes are free\n"));
    EXPECT_THAT(output, testing::HasSubstr(" 5  here.txt\n"));
}
