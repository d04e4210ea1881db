// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/diagnostic.h>

#include <cstddef>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <qzl_base/error.h>

// How a diagnostic is shown.

namespace {

using xError::eColors;
using xError::eDiagnostic;
using xError::eExcerpt;
using xError::ePlace;
using xError::Render;

ePlace PlaceOf(const std::string& source, int line, int column) {
    return {source, 0, line, column, column};
}

// An excerpt of the third line of a.sdl in which what stands between two bars is meant.
eExcerpt ExcerptOf(std::string text) {
    const std::size_t begin = text.find('|');
    text.erase(begin, 1);
    const std::size_t end = text.find('|', begin);
    text.erase(end, 1);
    return {PlaceOf("a.sdl", 3, 5), text, begin, end};
}

eDiagnostic DiagnosticOf(const eExcerpt& excerpt) {
    eDiagnostic diagnostic;
    diagnostic.message = "Wrong!";
    diagnostic.excerpt = excerpt;
    return diagnostic;
}

// The line and the caret line of an excerpt, without what stands before them.
std::string LinesOf(const eExcerpt& excerpt) {
    const std::string text = Render(DiagnosticOf(excerpt));
    const std::string head = "a.sdl:3:5: error: Wrong!\n  3 | ";
    const std::string gutter = "\n    | ";
    EXPECT_EQ(text.substr(0, head.size()), head);
    const std::size_t caret = text.find(gutter);
    EXPECT_NE(caret, std::string::npos) << text;
    return text.substr(head.size(), caret - head.size()) + '\n' + text.substr(caret + gutter.size());
}

// Of a character that is not ASCII.
std::string Utf8Of(char32_t code) {
    const auto unit = [code](unsigned mark, int shift) { return static_cast<char>(mark | (code >> shift & 0x3f)); };
    if (code < 0x800)
        return {unit(0xc0, 6), unit(0x80, 0)};
    if (code < 0x10000)
        return {unit(0xe0, 12), unit(0x80, 6), unit(0x80, 0)};
    return {unit(0xf0, 18), unit(0x80, 12), unit(0x80, 6), unit(0x80, 0)};
}

TEST(Diagnostic, ShowsItsPartsInOrder) {
    eDiagnostic diagnostic = DiagnosticOf(ExcerptOf("{|lihgt| 1}"));
    diagnostic.expected = "a block's keyword";
    diagnostic.found = "the word 'lihgt'";
    diagnostic.suggestion = "light";
    diagnostic.notes.push_back({"The block begins here.", {PlaceOf("a.sdl", 12, 1), "{scene", 0, 1}});
    diagnostic.notes.push_back({"No such file.", {}});
    diagnostic.includedFrom = {PlaceOf("b.sdl", 4, 12), PlaceOf("", 1, 2)};
    EXPECT_EQ(Render(diagnostic), "a.sdl:3:5: error: Wrong!\n"
                                  "  3 | {lihgt 1}\n"
                                  "    |  ^~~~~\n"
                                  "  expected a block's keyword, found the word 'lihgt'\n"
                                  "  did you mean 'light'?\n"
                                  "a.sdl:12:1: note: The block begins here.\n"
                                  "  12 | {scene\n"
                                  "     | ^\n"
                                  "note: No such file.\n"
                                  "  included from b.sdl:4:12\n"
                                  "  included from <text>:1:2\n");
}

TEST(Diagnostic, LeavesOutWhatIsNotKnown) {
    eDiagnostic diagnostic;
    diagnostic.severity = eDiagnostic::eSeverity::Warning;
    EXPECT_EQ(Render(diagnostic), "warning: \n");
    diagnostic.message = "Odd.";
    diagnostic.excerpt.place = PlaceOf("", 2, 7);
    diagnostic.found = "a word";
    EXPECT_EQ(Render(diagnostic), "<text>:2:7: warning: Odd.\n  found a word\n");
    diagnostic.found.clear();
    diagnostic.expected = "a number";
    EXPECT_EQ(Render(diagnostic), "<text>:2:7: warning: Odd.\n  expected a number\n");
}

TEST(Diagnostic, PutsTheCaretBelowThePlaceAsATerminalShowsIt) {
    const struct {
        const char* what;
        const char* line;
        const char* shown;
    } rows[] = {
        {"plain", "ab |cd| e", "ab cd e\n   ^~\n"},
        {"at the begin", "|a|", "a\n^\n"},
        {"at the end", "ab||", "ab\n  ^\n"},
        {"nothing is meant", "a||b", "ab\n ^\n"},
        {"tab before", "\t|x|", "    x\n    ^\n"},
        {"tab after characters", "ab\tc\t|x|", "ab  c   x\n        ^\n"},
        {"tab within", "|a\tb|", "a   b\n^~~~~\n"},
        {"wide", "\u65e5\u672c|x|", "\u65e5\u672cx\n    ^\n"},
        {"wide is meant", "a|\u65e5|", "a\u65e5\n ^~\n"},
        {"full width", "\uff21|x|", "\uff21x\n  ^\n"},
        {"emoji", "\U0001f600|x|", "\U0001f600x\n  ^\n"},
        {"beyond the second plane", "\U00030001|x|", "\U00030001x\n  ^\n"},
        {"tab after wide", "\u65e5\t|x|", "\u65e5  x\n    ^\n"},
        {"combining", "e\u0301|x|", "e\u0301x\n ^\n"},
        {"several combining", "e\u0301\u0323\u20dd|x|", "e\u0301\u0323\u20ddx\n ^\n"},
        {"zero width joiner", "a\u200d|x|", "a\u200dx\n ^\n"},
        {"Hangul syllable of parts", "\u1100\u1161\u11a8|x|", "\u1100\u1161\u11a8x\n  ^\n"},
        {"soft hyphen", "a\u00ad|x|", "a\u00adx\n  ^\n"},
        {"two bytes", "\u00e4\u00f6|\u00fc|", "\u00e4\u00f6\u00fc\n  ^\n"},
        {"half width", "\uff71|x|", "\uff71x\n ^\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(LinesOf(ExcerptOf(row.line)), row.shown) << row.what;
}

// The sums were computed from the Unicode Character Database; a character that is not assigned counts as those around
// it, and the characters that change the direction of writing are shown as another one.
TEST(Diagnostic, GivesEveryCharacterItsColumns) {
    const struct {
        char32_t first;
        char32_t last;
    } ranges[] = {{0xa1, 0xd7ff}, {0xe000, 0x200ff}, {0x3ff00, 0x400ff}, {0xe0000, 0xe01ff}};
    unsigned long long withoutColumn = 0;
    unsigned long long wide = 0;
    for (const auto& range : ranges) {
        for (char32_t code = range.first; code <= range.last; ++code) {
            const std::string lines = LinesOf(ExcerptOf(Utf8Of(code) + "|x|"));
            const std::size_t columns = lines.size() - lines.find('\n') - 3;
            withoutColumn += columns == 0 ? code : 0;
            wide += columns == 2 ? code : 0;
        }
    }
    EXPECT_EQ(withoutColumn, 1082645270U);
    EXPECT_EQ(wide, 3459658240U);
}

TEST(Diagnostic, ShowsThatALineIsCut) {
    eExcerpt excerpt = ExcerptOf("ab |c| d");
    excerpt.beginIsCut = true;
    EXPECT_EQ(LinesOf(excerpt), "...ab c d\n      ^\n");
    excerpt.endIsCut = true;
    EXPECT_EQ(LinesOf(excerpt), "...ab c d...\n      ^\n");
}

TEST(Diagnostic, KeepsControlCharactersFromTheTerminal) {
    const struct {
        std::string text;
        std::string shown;
    } rows[] = {
        {"\x1B[2J", "<U+001B>[2J"},
        {std::string(1, '\0'), "<U+0000>"},
        {"\r\n", "<U+000D><U+000A>"},
        {"\x7F", "<U+007F>"},
        {"\u0080\u009b", "<U+0080><U+009B>"},
        {"\u202e", "<U+202E>"},
        {"\u2066\u2069\u200f\u061c", "<U+2066><U+2069><U+200F><U+061C>"},
        {"\u2028", "<U+2028>"},
        {"\ufeff", "<U+FEFF>"},
        {"\x9B", "\ufffd"},
        {"\xE2\x82", "\ufffd"},
        {"a\xFFz", "a\ufffdz"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(LinesOf(ExcerptOf(row.text + "|x|")).find(row.shown + "x\n"), 0u) << row.shown;
        eDiagnostic diagnostic;
        diagnostic.message = row.text;
        diagnostic.excerpt.place = PlaceOf(row.text, 1, 1);
        diagnostic.expected = diagnostic.found = diagnostic.suggestion = row.text;
        diagnostic.notes.push_back({row.text, diagnostic.excerpt});
        diagnostic.includedFrom.push_back(diagnostic.excerpt.place);
        EXPECT_EQ(Render(diagnostic), row.shown + ":1:1: error: " + row.shown + "\n  expected " + row.shown +
                                          ", found " + row.shown + "\n  did you mean '" + row.shown + "'?\n" +
                                          row.shown + ":1:1: note: " + row.shown + "\n  included from " + row.shown +
                                          ":1:1\n");
    }
    EXPECT_EQ(LinesOf(ExcerptOf("\x1B|x|")), "<U+001B>x\n        ^\n");
    EXPECT_EQ(LinesOf(ExcerptOf("\xFF|\xFF|")), "\ufffd\ufffd\n ^\n");
}

TEST(Diagnostic, StaysWithinALineShorterThanItsMark) {
    eExcerpt excerpt = ExcerptOf("a|b|");
    excerpt.markEnd = 100;
    EXPECT_EQ(LinesOf(excerpt), "ab\n ^\n");
    excerpt.markBegin = 50;
    EXPECT_EQ(LinesOf(excerpt), "ab\n  ^\n");
    excerpt.markBegin = 1;
    excerpt.markEnd = 0;
    EXPECT_EQ(LinesOf(excerpt), "ab\n ^\n");
}

TEST(Diagnostic, ShowsTheInnermostEightIncludesAndCountsTheRest) {
    eDiagnostic diagnostic;
    for (int line = 1; line <= 10; ++line)
        diagnostic.includedFrom.push_back(PlaceOf("a.sdl", line, 1));
    const std::string text = Render(diagnostic);
    EXPECT_NE(text.find("included from a.sdl:8:1\n  ... and 2 more\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("a.sdl:9:1"), std::string::npos) << text;
}

TEST(Diagnostic, HasColorsOnDemand) {
    eDiagnostic diagnostic = DiagnosticOf(ExcerptOf("{|x|"));
    diagnostic.notes.push_back({"Here.", {}});
    EXPECT_EQ(Render(diagnostic, eColors::With),
              "\x1B[1ma.sdl:3:5: \x1B[0m\x1B[1;31merror: \x1B[0m\x1B[1mWrong!\x1B[0m\n"
              "  3 | {x\n"
              "    |  \x1B[1;32m^\x1B[0m\n"
              "\x1B[1;36mnote: \x1B[0m\x1B[1mHere.\x1B[0m\n");
    EXPECT_EQ(Render(diagnostic).find('\x1B'), std::string::npos);
}

TEST(Diagnostic, OfAReportReachesTheHandlerAndTheException) {
    const auto diagnostic = std::make_shared<const eDiagnostic>(DiagnosticOf(ExcerptOf("|x|")));
    std::shared_ptr<const eDiagnostic> handled;
    const xError::eHandler previous =
        xError::SetErrorHandler([&](const xError::eReport& report) { handled = report.diagnostic; });
    try {
        xError::Fatal("unit", 1, "Wrong!", diagnostic);
    } catch (const xError::eException& exception) {
        EXPECT_EQ(exception.Report().diagnostic, diagnostic);
    }
    EXPECT_EQ(handled, diagnostic);
    handled = diagnostic;
    xError::Error("unit", 1, "No text.", true);
    EXPECT_EQ(handled, nullptr);
    xError::SetErrorHandler(previous);
}

} // namespace
