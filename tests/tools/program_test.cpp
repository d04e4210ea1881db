// SPDX-License-Identifier: BSL-1.0
#include "tool.h"

// What all verbs have in common.

class ToolProgram : public Tool {};
class ToolProgramAtLength : public ToolAtLength {};

namespace {

const char* const kVerbs[] = {"check", "diff",    "format", "from-json", "get",   "remove",
                              "set",   "to-json", "show",   "tokens",    "system"};

} // namespace

TEST_F(ToolProgramAtLength, HelpListsEveryVerb) {
    const std::string help = OutputOf({"--help"});
    for (const char* const verb : kVerbs)
        EXPECT_THAT(help, testing::HasSubstr("\n  " + std::string(verb) + " "));
    EXPECT_EQ(OutputOf({"-h"}), help);
}

TEST_F(ToolProgramAtLength, EveryVerbHelpsWithExamples) {
    for (const char* const verb : kVerbs)
        EXPECT_THAT(OutputOf({verb, "--help"}), testing::ContainsRegex("Examples:\n  .*sdl " + std::string(verb)))
            << verb;
}

TEST_F(ToolProgram, TellsItsVersion) {
    EXPECT_THAT(OutputOf({"--version"}), testing::StartsWith("sdl 1."));
}

TEST_F(ToolProgramAtLength, AWrongCommandLineEndsWithTwoAndSaysWhy) {
    Refuses(2, "sdl VERB", {});
    Refuses(2, "there is no verb 'chekc'", {"chekc"});
    Refuses(2, "there is no verb '<U+001B>[2J'", {"\x1b[2J"});
    Refuses(2, "FILE is required", {"show"});
    Refuses(2, "--dept", {"show", "a.sdl", "--dept", "2"});
    Refuses(2, "'sdl to-json --help'", {"to-json", "a.sdl"});
}

TEST_F(ToolProgram, AFileThatIsNotThereIsNamedWithTheReason) {
    Refuses(2, "sdl: none.sdl: The file could not be opened: ", {"show", "none.sdl"});
    if (StartsSlowly())
        return; // the others open files in the same way
    const std::vector<std::string> kTable[] = {
        {"tokens", "none.sdl"}, {"to-json", "none.sdl", "-"}, {"from-json", "none.sdl", "-"}, {"get", "none.sdl", "a"}};
    for (const auto& arguments : kTable)
        Refuses(2, "sdl: none.sdl: The file could not be opened: ", arguments);
}

TEST_F(ToolProgramAtLength, AnOutputThatCannotBeWrittenIsNamedWithTheReason) {
    folder.Write("a.sdl", "{a 1}");
    folder.Write("a.json", "[1]");
    Refuses(2, "sdl: none/b.json: ", {"to-json", "a.sdl", "none/b.json"});
    Refuses(2, "sdl: none/b.sdl: ", {"from-json", "a.json", "none/b.sdl"});
}

TEST_F(ToolProgram, FilesMayHaveAnyName) {
    const char* const kNames[] = {"check", "caf\xc3\xa9 \xe4\xbd\xa0\xe5\xa5\xbd \xf0\x9f\x98\x8b"};
    for (const char* const name : kNames) {
        const std::string output = std::string("out ") + name;
        EXPECT_EQ(OutputOf({"from-json", "-", output}, R"({"a": 5})"), "") << name;
        EXPECT_EQ(OutputOf({"to-json", "--compact", output, "-"}), "{\"a\":5}\n") << name;
    }
}
