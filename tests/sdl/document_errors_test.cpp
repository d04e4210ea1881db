// SPDX-License-Identifier: BSL-1.0
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl/document.h>

namespace {

struct eExpected {
    const char* text;
    std::vector<std::string> errors; // line:column: message; found
};

std::string Short(const xError::eDiagnostic& diagnostic) {
    const xError::ePlace& place = diagnostic.excerpt.place;
    const bool warning = diagnostic.severity == xError::eDiagnostic::eSeverity::Warning;
    return std::to_string(place.line) + ":" + std::to_string(place.column) + (warning ? ": warning: " : ": ") +
           diagnostic.message + " " + diagnostic.found;
}

std::string ExpectedIn(const char* text) {
    return eSDLDocument(text).Errors().at(0).expected;
}

const eExpected kExpected[] = {
    {"{a 1}", {}},
    {"a $# b\n\xC3\xA9\xC3\xA9 \x80",
     {"1:3: No token begins like this! '$#'", "2:1: No token begins like this! '\xC3\xA9\xC3\xA9'",
      "2:4: No token begins like this! '\xEF\xBF\xBD'"}},
    {"{a \"x\n\"y\r}",
     {"1:4: The string is broken by the end of the line! the string \"x",
      "2:1: The string is broken by the end of the line! the string \"y"}},
    {"1 \"x", {"1:3: warning: The string has no end! the string \"x"}},
    {"1 } )",
     {"1:3: Nothing is open that this } could close! '}'",
      "1:5: warning: Nothing is open that this ) could close! ')'"}},
    {"(foo) (Mod) (+) (+ 1 x y) () ({})",
     {"1:2: Invalid control block! the word 'foo'", "1:15: Number expected! ')'", "1:22: Number expected! the word 'x'",
      "1:28: Identifier expected! ')'", "1:31: Identifier expected! '{'"}},
    {"{a (\"c\" } )", {"1:11: warning: Nothing is open that this ) could close! ')'"}},
    {"{##h (foo) ) 1", {}},
    {"\xEF\xBB\xBF$", {"1:1: No token begins like this! '$'"}},
    {"1\0$", {}},
};

TEST(DocumentErrors, EachIsListedWithItsPlace) {
    for (const eExpected& expected : kExpected) {
        const eSDLDocument document(expected.text);
        std::vector<std::string> errors;
        for (const xError::eDiagnostic& diagnostic : document.Errors())
            errors.push_back(Short(diagnostic));
        EXPECT_EQ(errors, expected.errors) << expected.text;
    }
}

TEST(DocumentErrors, ABlockThatIsNotClosedIsReportedWithWhereItBegins) {
    const eSDLDocument document("{scene\n  {a\n    1\n  {b\n  }\n}\n", "scene.sdl");
    const std::vector<xError::eDiagnostic> errors = document.Errors();
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(Short(errors[0]), "7:1: Block terminator expected! the end of the text");
    EXPECT_EQ(errors[0].excerpt.place.source, "scene.sdl");
    ASSERT_EQ(errors[0].notes.size(), 2U);
    EXPECT_EQ(errors[0].notes[0].message, "The block begins here.");
    EXPECT_EQ(errors[0].notes[0].excerpt.place.line, 1);
    EXPECT_EQ(errors[0].notes[0].excerpt.markBegin, 0U);
    EXPECT_EQ(errors[0].notes[0].excerpt.markEnd, 1U);
    EXPECT_EQ(errors[0].notes[1].message, "Perhaps this block is not closed: the } that it has is indented less.");
    EXPECT_EQ(errors[0].notes[1].excerpt.place.line, 2);
    EXPECT_EQ(errors[0].notes[1].excerpt.markBegin, 2U);
    EXPECT_EQ(errors[0].notes[1].excerpt.markEnd, 3U);
}

TEST(DocumentErrors, SayWhatWasExpected) {
    EXPECT_EQ(ExpectedIn("{a"), "a }");
    EXPECT_EQ(ExpectedIn("(foo)"), "a string, an operator, include, define or mod");
    EXPECT_EQ(ExpectedIn("(+ 1 x)"), "a number");
}

TEST(DocumentErrors, TheNearestRightWordIsSuggested) {
    EXPECT_EQ(eSDLDocument("(inlcude \"a\")").Errors().at(0).suggestion, "include");
    EXPECT_EQ(eSDLDocument("(foo)").Errors().at(0).suggestion, "");
}

TEST(DocumentErrors, OfManyThatAreNotClosedTheInnermostAreNoted) {
    const eSDLDocument document(std::string(1000, '{') + "(\"c\"");
    const std::vector<xError::eDiagnostic> errors = document.Errors();
    ASSERT_EQ(errors.size(), 1U);
    ASSERT_EQ(errors[0].notes.size(), 8U);
    EXPECT_EQ(errors[0].notes[0].message, "The control block begins here.");
    EXPECT_EQ(errors[0].notes[1].excerpt.place.column, 1000);
}

TEST(DocumentErrors, NoMoreAreListedThanAskedFor) {
    std::string text;
    for (int line = 0; line < 1000; ++line)
        text += "$\n";
    const eSDLDocument document(text);
    EXPECT_EQ(document.ErrorCount(), 1000U);
    EXPECT_EQ(document.Errors(7).size(), 7U);
    EXPECT_EQ(document.Errors(0).size(), 0U);
    EXPECT_EQ(document.Errors().back().excerpt.place.line, 1000);
}

TEST(DocumentErrors, PlacesFollowEdits) {
    eSDLDocument document("{a 1}\n$\n");
    EXPECT_EQ(document.Errors().at(0).excerpt.place.line, 2);
    ASSERT_TRUE(document.InsertBefore(document.Find("a"), eSDLItem::Source("; one\n; two")));
    EXPECT_EQ(document.Errors().at(0).excerpt.place.line, 4);
    EXPECT_EQ(document.Find("a").Place().line, 3);
    for (const eSDLPart& part : document.Parts())
        if (part.kind == eSDLKind::Bad) {
            const xError::eExcerpt excerpt = part.node.Excerpt();
            EXPECT_EQ(excerpt.text, "$");
            EXPECT_EQ(excerpt.markEnd - excerpt.markBegin, 1U);
            ASSERT_TRUE(document.Remove(part.node));
            break;
        }
    EXPECT_EQ(document.ErrorCount(), 0U);
}

// Places are found from known ones, so any distance from these must give the same.
TEST(DocumentErrors, PlacesInLongTextsAreThoseOfAPlainCount) {
    std::string text;
    for (int line = 0; text.size() < 30000; ++line)
        text +=
            (line % 7 == 3 ? std::string(5000, 'x') : std::string()) + " \xC3\xA9\x80\xE2\x82 \"\xF0\x9F\x98\x80\"\n";
    const eSDLDocument document(text);
    for (const eSDLPart& part : document.Parts()) {
        if (part.kind != eSDLKind::String && part.kind != eSDLKind::Bad)
            continue;
        const auto offset = static_cast<std::size_t>(part.node.Place().offset);
        const std::string before = text.substr(0, offset);
        const std::size_t line = before.rfind('\n') == std::string::npos ? 0 : before.rfind('\n') + 1;
        // Each line has one character of two bytes before its string, and bytes that are part of none.
        const std::size_t bytes = offset - line;
        const std::size_t characters = part.kind == eSDLKind::Bad ? bytes : bytes - 1;
        ASSERT_EQ(text.substr(offset, part.text.size()), part.text);
        ASSERT_EQ(part.node.Place().byteColumn, static_cast<int>(bytes + 1));
        ASSERT_EQ(part.node.Place().column, static_cast<int>(characters + 1));
        ASSERT_EQ(part.node.Place().line, std::count(before.begin(), before.end(), '\n') + 1);
        const xError::eExcerpt excerpt = part.node.Excerpt();
        ASSERT_LE(excerpt.text.size(), 700U);
        ASSERT_EQ(excerpt.beginIsCut, bytes > 100);
    }
}

} // namespace
