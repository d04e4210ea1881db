// SPDX-License-Identifier: BSL-1.0
#include "tool.h"

// check, diff, format and get.

class ToolDocument : public Tool {};
class ToolDocumentAtLength : public ToolAtLength {};

using testing::HasSubstr;

namespace {

constexpr const char* kScene = "{scene\n  {light \"sun\" 1.5 power = 3}\n  {light \"lamp\" {color 1 0 0}}\n}\n";

struct eEdit {
    std::vector<std::string> arguments; // before the file
    const char* from;
    const char* to;
};

} // namespace

TEST_F(ToolDocumentAtLength, CheckIsSilentAboutGoodDocuments) {
    folder.Write("a.sdl", kScene);
    folder.Write("b.sdl", "{SCENE}");
    EXPECT_EQ(OutputOf({"check", "--signature", "scene", "a.sdl", "b.sdl"}), "");
    EXPECT_EQ(OutputOf({"check", "-"}, kScene), "");
}

TEST_F(ToolDocument, CheckShowsAllMistakesAsACompilerDoes) {
    folder.Write("bad.sdl", "{scene\n\t{light \"sun}\n\t$ 1}\n(+ 1 x)\n{open ) ");
    const eEnded ended = Run({"check", "bad.sdl"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.errors, "");
    for (const char* const place : {"bad.sdl:2:9: error: ", "bad.sdl:3:2: error: ", "bad.sdl:4:6: error: ",
                                    "bad.sdl:5:7: warning: ", "bad.sdl:5:9: error: ", "bad.sdl:5:1: note: "})
        EXPECT_THAT(ended.output, HasSubstr(place));
    EXPECT_THAT(ended.output, HasSubstr("  4 | (+ 1 x)\n    |      ^\n"));
    EXPECT_THAT(ended.output, testing::Not(HasSubstr("\x1b")));
}

TEST_F(ToolDocumentAtLength, CheckTellsAWrongSignature) {
    folder.Write("a.sdl", "; first\n{light}");
    folder.Write("empty.sdl", "");
    const eEnded ended = Run({"check", "--signature", "scene", "a.sdl", "empty.sdl"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.output, HasSubstr("a.sdl:2:1: error: The document does not begin with its signature!\n"));
    EXPECT_THAT(ended.output, HasSubstr("expected {scene"));
    EXPECT_THAT(ended.output, HasSubstr("empty.sdl:1:1: error: "));
}

TEST_F(ToolDocument, CheckFindsTheSchemaOfADocument) {
    const std::string schema = "{schema {block scene {block light {count 0 many}}}}";
    const std::string mistake = "scene.sdl:1:9: error: ";
    folder.Write("above/in/scene.sdl", "{scene {lihgt}}");
    folder.Write("above/in/other.sdl", "{other {lihgt}}");
    folder.Write("strict.sdls", "{schema {block other}}");
    const auto check = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "check");
        return Run(arguments);
    };
    EXPECT_EQ(check({"above/in/scene.sdl"}).code, 0);
    folder.Write("above/scene.sdls", schema);
    const eEnded ended = check({"above/in/scene.sdl", "above/in/other.sdl"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.output, HasSubstr(mistake));
    EXPECT_THAT(ended.output, HasSubstr("did you mean 'light'?"));
    EXPECT_THAT(ended.output, testing::Not(HasSubstr("other.sdl")));
    EXPECT_EQ(check({"--no-schema", "above/in/scene.sdl"}).code, 0);
    EXPECT_EQ(check({"--schema", "strict.sdls", "above/in/other.sdl"}).code, 1);
    EXPECT_EQ(check({"--schema", "above/scene.sdls", "--most", "0", "above/in/scene.sdl"}).code, 1);
    EXPECT_EQ(check({"above/scene.sdls", "strict.sdls"}).code, 0);
    folder.Write("above/scene.sdls", "{schema {blok scene}}");
    Refuses(2, "scene.sdls: 1 mistake in the schema", {"check", "above/in/scene.sdl"});
    EXPECT_EQ(check({"above/scene.sdls"}).code, 1);
    Refuses(2, "none.sdls", {"check", "--schema", "none.sdls", "above/in/scene.sdl"});
}

TEST_F(ToolDocument, ADraftedSchemaAcceptsItsDocuments) {
    folder.Write("a.sdl", kScene);
    folder.Write("b.sdl", "{scene {camera 1 2 3}}");
    folder.Write("draft.sdls", OutputOf({"schema", "draft", "a.sdl", "b.sdl"}));
    EXPECT_EQ(OutputOf({"check", "--schema", "draft.sdls", "a.sdl", "b.sdl"}), "");
    EXPECT_EQ(OutputOf({"check", "draft.sdls"}), "");
    folder.Write("c.sdl", "{scene {sound 1}}");
    EXPECT_EQ(Run({"check", "--schema", "draft.sdls", "c.sdl"}).code, 1);
    Refuses(2, "subcommand", {"schema"});
    Refuses(2, "a.sdl: ", {"schema", "draft", "none/a.sdl"});
}

TEST_F(ToolDocumentAtLength, CheckGoesOnAfterAFileThatCannotBeRead) {
    folder.Write("bad.sdl", "}");
    const eEnded ended = Run({"check", "none.sdl", "bad.sdl"});
    EXPECT_EQ(ended.code, 2);
    EXPECT_THAT(ended.errors, HasSubstr("sdl: none.sdl: "));
    EXPECT_THAT(ended.output, HasSubstr("bad.sdl:1:1: error: "));
}

TEST_F(ToolDocumentAtLength, CheckShowsAFewOfManyMistakesAndCountsTheRest) {
    const eEnded ended = Run({"check", "--most", "2", "-"}, std::string(100000, '}'));
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.output, testing::EndsWith("-: 99998 more errors\n"));
    EXPECT_LT(ended.output.size(), 2000u);
}

TEST_F(ToolDocumentAtLength, CheckPrintsJsonAndSarif) {
    folder.Write("a b.sdl", "{open \"\xc3\xa9\" $");
    const std::string file = "a b.sdl";
    EXPECT_EQ(
        Run({"check", "--json", file}).output,
        "[\n{\"file\":\"a b.sdl\",\"line\":1,\"column\":11,\"byteColumn\":12,\"offset\":11,\"severity\":\"error\","
        "\"message\":\"No token begins like this!\",\"found\":\"'$'\"},\n"
        "{\"file\":\"a b.sdl\",\"line\":1,\"column\":12,\"byteColumn\":13,\"offset\":12,\"severity\":\"error\","
        "\"message\":\"Block terminator expected!\",\"expected\":\"a }\",\"found\":\"the end of the text\",\"notes\":[{"
        "\"file\":\"a b.sdl\",\"line\":1,\"column\":1,\"byteColumn\":1,\"offset\":0,"
        "\"message\":\"The block begins here.\"}]}\n]\n");
    EXPECT_EQ(OutputOf({"check", "--json", "-"}, "{a}"), "[]\n");
    const std::string sarif = Run({"check", "--sarif", file}).output;
    EXPECT_THAT(sarif, testing::StartsWith(
                           "{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\""));
    EXPECT_THAT(sarif,
                HasSubstr("{\"level\":\"error\",\"message\":{\"text\":\"No token begins like this!\"},\"locations\":[{"
                          "\"physicalLocation\":{\"artifactLocation\":{\"uri\":\"a%20b.sdl\"},"
                          "\"region\":{\"startLine\":1,\"startColumn\":11,\"byteOffset\":11}}}]}"));
    EXPECT_THAT(sarif, testing::EndsWith("]}]}\n"));
    Refuses(2, "excludes", {"check", "--json", "--sarif", "-"});
}

TEST_F(ToolDocumentAtLength, GetPrintsValuesOrTheSource) {
    folder.Write("a.sdl", kScene);
    const struct {
        std::vector<std::string> arguments;
        const char* output;
    } kTable[] = {
        {{"a.sdl", "scene/light/power"}, "3\n"},
        {{"a.sdl", "scene/light[name=lamp]/color"}, nullptr},
        {{"a.sdl", "scene/light[1]/color"}, "1\n0\n0\n"},
        {{"a.sdl", "scene/light[1]/color/0"}, "1\n"},
        {{"a.sdl", "scene/light/0"}, "sun\n"},
        {{"--all", "a.sdl", "scene/light/0"}, "sun\nlamp\n"},
        {{"--source", "a.sdl", "scene/light/0"}, "\"sun\"\n"},
        {{"a.sdl", "scene/light[1]"}, "{light \"lamp\" {color 1 0 0}}\n"},
    };
    for (const auto& row : kTable) {
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.begin(), "get");
        const eEnded ended = Run(arguments);
        EXPECT_EQ(ended.code, row.output ? 0 : 1);
        EXPECT_EQ(ended.output, row.output ? row.output : "");
    }
    Refuses(2, "scene[: ", {"get", "a.sdl", "scene["});
}

TEST_F(ToolDocument, FormatPrintsOrReplacesOrChecks) {
    const std::string formatted = "{a\r\n\t1\r\n}\r\n";
    folder.Write("a.sdl", "{a\n1\n}");
    EXPECT_EQ(OutputOf({"format", "a.sdl"}), formatted);
    EXPECT_EQ(OutputOf({"format", "--lf", "--indent", "2", "-"}, "{a\n1\n}"), "{a\n  1\n}\n");
    const eEnded checked = Run({"format", "--check", "a.sdl"});
    EXPECT_EQ(checked.code, 1);
    EXPECT_EQ(checked.output, "a.sdl\n");
    EXPECT_EQ(folder.Read("a.sdl"), "{a\n1\n}");
    EXPECT_EQ(OutputOf({"format", "-i", "a.sdl"}), "");
    EXPECT_EQ(folder.Read("a.sdl"), formatted);
    EXPECT_EQ(OutputOf({"format", "--check", "a.sdl"}), "");
}

TEST_F(ToolDocumentAtLength, FormatLeavesADocumentWithMistakesAlone) {
    folder.Write("bad.sdl", "{a  $}");
    folder.Write("good.sdl", "a  b");
    Refuses(2, "bad.sdl:1:5: error: ", {"format", "-i", "bad.sdl", "good.sdl"});
    EXPECT_EQ(folder.Read("bad.sdl"), "{a  $}");
    EXPECT_EQ(folder.Read("good.sdl"), "a b\r\n");
}

TEST_F(ToolDocumentAtLength, FormatFollowsTheNearestConfiguration) {
    folder.Write(".sdlformat", "{indent 2} {lines lf}");
    folder.Write("sub/.sdlformat", "{indent tab} ; and CR LF");
    folder.Write("sub/below/a.sdl", "{a\n1}");
    folder.Write("a.sdl", "{a\n1}");
    EXPECT_EQ(OutputOf({"format", "a.sdl"}), "{a\n  1}\n");
    EXPECT_EQ(OutputOf({"format", "sub/below/a.sdl"}), "{a\r\n\t1}\r\n");
    EXPECT_EQ(OutputOf({"format", "--crlf", "--tabs", "a.sdl"}), "{a\r\n\t1}\r\n");
    folder.Write(".sdlformat", "{indent 2}\n{width 80}");
    Refuses(2, ".sdlformat:2:1: error: This is no setting of sdl format!", {"format", "a.sdl"});
}

TEST_F(ToolDocument, DiffIgnoresLayoutAndTellsEachDifference) {
    folder.Write("a.sdl", "{scene {light \"sun\" 2 color=3} {light x} {sky {blue 1 1.} {z} {a}}}");
    folder.Write("same.sdl",
                 "{scene ; one\n{light = \"\\x73un\" 0x2\n color 3}{light x}\n{sky{blue 1 (+ 1)}{z}{##h}{a}}\n}");
    folder.Write("b.sdl", "{scene\n{light \"sun\" 2.5 color=3}\n{new {2 3}} {light x}\n{sky {blue 1 1} {a}}}");
    EXPECT_EQ(OutputOf({"diff", "a.sdl", "same.sdl"}), "");
    const eEnded ended = Run({"diff", "a.sdl", "b.sdl"});
    EXPECT_EQ(ended.code, 1);
    EXPECT_EQ(ended.output, "+ 3\tscene\t{new {2 3}}\n"
                            "- 1\tscene/light[0]\t2\n"
                            "+ 2\tscene/light[0]\t2.5\n"
                            "- 1\tscene/sky\t{z}\n"
                            "- 1\tscene/sky/blue\t1.\n"
                            "+ 4\tscene/sky/blue\t1\n");
    const eEnded quiet = Run({"diff", "-q", "a.sdl", "b.sdl"});
    EXPECT_EQ(quiet.code, 1);
    EXPECT_EQ(quiet.output, "");
    Refuses(2, "none.sdl", {"diff", "a.sdl", "none.sdl"});
    Refuses(2, "-:1:3: error: Block terminator expected!", {"diff", "a.sdl", "-"}, "{a");
}

TEST_F(ToolDocumentAtLength, DiffOfHostileDocumentsTakesNoStackAndNoSquare) {
    std::string deep(50000, '{');
    std::string wide;
    for (int index = 0; index < 20000; ++index)
        wide += "{n" + std::to_string(index % 3) + " " + std::to_string(index) + "}";
    folder.Write("deep1", deep + "1" + std::string(50000, '}'));
    folder.Write("deep2", deep + "2" + std::string(50000, '}'));
    EXPECT_THAT(Run({"diff", "deep1", "deep2"}).output, testing::StartsWith("- 1\t.../*/*"));
    folder.Write("wide1", wide);
    folder.Write("wide2", "{x}" + wide.substr(wide.find('{', wide.size() / 2)));
    EXPECT_EQ(Run({"diff", "wide1", "wide2"}).code, 1);
}

TEST_F(ToolDocumentAtLength, SetChangesTheValueAndNothingElse) {
    const eEdit kTable[] = {
        {{"a/power", "2.5"}, "{a ; one\n\tpower =  1 ; two\n}", "{a ; one\n\tpower =  2.5 ; two\n}"},
        {{"a/b", "-5"}, "{a {b 1} {b 2}}", "{a {b -5} {b 2}}"},
        {{"--all", "a/b", "7"}, "{a {b 1} {b 2}}", "{a {b 7} {b 7}}"},
        {{"a/0", "two words"}, "{a \"x\"}", "{a \"two words\"}"},
        {{"a/0", "\"5\""}, "{a 1}", "{a \"5\"}"},
        {{"--string", "a/0", "5"}, "{a 1}", "{a \"5\"}"},
        {{"--word", "a/0", "five"}, "{a 1}", "{a five}"},
        {{"a/0", "linear"}, "{a 1}", "{a \"linear\"}"},
        {{"filter/0", "linear"}, "{filter none}", "{filter linear}"},
        {{"a", "3"}, "{a}", "{a 3}"},
        {{"a", "2.50"}, "{a 1}", "{a 2.50}"},
        {{"a", "1e3"}, "{a 1}", "{a 1e3}"},
        {{"a", "0x0F"}, "{a 1}", "{a 0x0F}"},
        {{"a", "-.5"}, "{a 1}", "{a -0.5}"},
        {{"a", "+7"}, "{a 1}", "{a +7}"},
    };
    for (const eEdit& edit : kTable) {
        folder.Write("a.sdl", edit.from);
        std::vector<std::string> arguments = edit.arguments;
        arguments.insert(arguments.end() - 2, "a.sdl");
        arguments.insert(arguments.begin(), "set");
        EXPECT_EQ(OutputOf(arguments), "");
        EXPECT_EQ(folder.Read("a.sdl"), edit.to) << edit.from;
    }
    EXPECT_EQ(OutputOf({"set", "-", "a", "2"}, "{a 1}"), "{a 2}");
}

TEST_F(ToolDocument, WhatCannotBeSetOrRemovedLeavesTheFileAlone) {
    folder.Write("a.sdl", "{a 1");
    Refuses(1, "sdl: a/b: there is nothing at this path", {"set", "a.sdl", "a/b", "2"});
    Refuses(2, "it cannot be removed", {"remove", "a.sdl", "a"});
    if (!StartsSlowly()) {
        Refuses(1, "sdl: b: there is nothing at this path", {"remove", "a.sdl", "b"});
        Refuses(1, "sdl: b: there is nothing at this path", {"get", "a.sdl", "b"});
        Refuses(2, "'no word' is no word", {"set", "--word", "a.sdl", "a", "no word"});
        Refuses(2, "'1e999' is beyond the range of numbers", {"set", "a.sdl", "a", "1e999"});
        Refuses(2, "a//b: ", {"set", "a.sdl", "a//b", "1"});
    }
    EXPECT_EQ(folder.Read("a.sdl"), "{a 1");
}

TEST_F(ToolDocumentAtLength, RemoveTakesThePartAndItsLine) {
    const eEdit kTable[] = {
        {{"a/b"}, "{a\r\n\t{b 1} ; gone\r\n\t{c} ; stays\r\n}", "{a\r\n\t{c} ; stays\r\n}"},
        {{"--all", "a/b"}, "{a {b 1} {c} {b {b}}}", "{a {c}}"},
        {{"a/1"}, "{a 1 2 3}", "{a 1 3}"},
    };
    for (const eEdit& edit : kTable) {
        folder.Write("a.sdl", edit.from);
        std::vector<std::string> arguments = edit.arguments;
        arguments.insert(arguments.end() - 1, "a.sdl");
        arguments.insert(arguments.begin(), "remove");
        EXPECT_EQ(OutputOf(arguments), "");
        EXPECT_EQ(folder.Read("a.sdl"), edit.to) << edit.from;
    }
}
