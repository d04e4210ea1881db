// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/diagnostic.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

#include "open_reader.h"
#include "place_text.h"
#include "sdl_source.h"
#include "support/seconds_of.h"
#include "support/temp_folder.h"

// The diagnostic of a report: what a program learns of a mistake in a text.

namespace {

using xError::eDiagnostic;
using xError::eExcerpt;

eSDLKeyword* words;
eSDLKeyword lightWord(words, "light", 1);
eSDLKeyword colorWord(words, "color", 2);
eSDLKeyword sphereWord(words, "sphere", 3);

constexpr eSDLName<int> kShadings[] = {{"flat", 1}, {"smooth", 2}};
constexpr eSDLName<int> kMonths[] = {{"may", 5},    {"june", 6},     {"july", 7},    {"march", 3},   {"april", 4},
                                     {"august", 8}, {"october", 10}, {"january", 1}, {"february", 2}};

xError::eReport ReportOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const xError::eException& exception) {
        return exception.Report();
    }
    return {};
}

eDiagnostic DiagnosticOf(const std::function<void()>& action) {
    const xError::eReport report = ReportOf(action);
    EXPECT_TRUE(report.diagnostic) << report.message;
    const eDiagnostic diagnostic = report.diagnostic ? *report.diagnostic : eDiagnostic();
    EXPECT_EQ(diagnostic.message, report.message);
    EXPECT_EQ(diagnostic.severity, eDiagnostic::eSeverity::Error);
    return diagnostic;
}

// What an excerpt marks, between bars in its line.
std::string MarkedIn(const eExcerpt& excerpt) {
    std::string text = excerpt.text;
    return text.insert(excerpt.markEnd, "|").insert(excerpt.markBegin, "|");
}

// --- Every report ---

using eReading = std::function<void(eOpenReader&)>;

struct eReported {
    const char* message;
    std::string text; // the second line, in which `| |` encloses what is meant
    eReading reading; // the report of its last call
    const char* expected;
    const char* found;
    const char* suggestion = "";
    const char* note = "";
};

std::vector<eReported> ReportedByReaders() {
    const auto skip = [](eSDLReader& reader) {
        reader >> begb;
        reader.SkipBlock();
    };
    const auto parameters = [](eOpenReader& reader) {
        std::map<eStringKey, eStringKey> unused;
        reader.GetParameters(&unused);
    };
    const auto operand = [](eOpenReader& reader) {
        eSDLParserToken token;
        reader.GetOperand(&token);
    };
    const auto get = [](auto function) { return [function](eOpenReader& reader) { (reader.*function)(); }; };
    const auto token = [](eSDLParserLexType type) { return [type](eOpenReader& reader) { reader.GetToken(type); }; };
    const auto block = [](int id) { return [id](eOpenReader& reader) { reader.GetBlock(id); }; };
    const auto ident = [](eSDLReader& reader) { reader.GetIdent(); };
    const auto sign = [](eSDLReader& reader) { reader.GetSignature(); };
    const auto end = [](eSDLReader& reader) { reader >> endb; };
    return {
        {"Not SDL file!", "|7|", sign, "'{'", "the number '7'"},
        {"Not SDL file!", "||", sign, "'{'", "the end of the text"},
        {"Identifier expected!", "{ |1|", sign, "a word", "the number '1'"},
        {"Identifier expected!", "|\"a\"| b", ident, "a word", "the text \"a\""},
        {"Identifier expected!", "(|{| )", get(&eSDLReader::GetInt), "a word", "'{'"},
        {"Invalid control block!", "(|inclde| )", get(&eSDLReader::GetInt), "'include', 'define' or 'mod'",
         "the word 'inclde'", "include"},
        {"Invalid control block!", "(|xyzzy| )", get(&eSDLReader::GetInt), "'include', 'define' or 'mod'",
         "the word 'xyzzy'"},
        {"Invalid block identifier!", "{|lihgt| 1}", block(0), "a block's keyword", "the word 'lihgt'", "light"},
        {"Invalid block identifier!", "{|lihgt| 1}", block(1), "the word 'light'", "the word 'lihgt'", "light"},
        {"Invalid block identifier!", "{|color| 1}", block(1), "the word 'light'", "the word 'color'"},
        {"Invalid block identifier!", "{|1|", block(99), "a block's keyword", "the number '1'"},
        {"Block start expected!", "|}|", block(0), "'{'", "'}'"},
        {"Block start expected!", "|a|", [](eSDLReader& reader) { reader >> begb; }, "'{'", "the word 'a'"},
        {"unexpected token", "|spher| ", [](eSDLReader& reader) { reader.GetKeyword(); }, "a keyword",
         "the word 'spher'", "sphere"},
        {"unexpected token", "|colour| ", token(sdlKeyword), "a keyword", "the word 'colour'", "color"},
        {"unexpected token", "|+| ", token(sdlIdent), "a word", "the operator '+'"},
        {"unexpected token", "|{#mark| ", token(sdlString), "a text in quotes", "'{#mark'"},
        {"unexpected token", "|a|", token(sdlBlockStart), "'{'", "the word 'a'"},
        {"unexpected token", "|a|", token(sdlBlockEnd), "'}'", "the word 'a'"},
        {"unexpected token", "|a|", token(sdlOpen), "'('", "the word 'a'"},
        {"unexpected token", "|a|", token(sdlClose), "')'", "the word 'a'"},
        {"unexpected token", "|a|", token(sdlNumber), "a number", "the word 'a'"},
        {"unexpected token", "|1|", token(sdlFloat), "a number with a fraction", "the number '1'"},
        {"unexpected token", "|1.5|", token(sdlInt), "an integer", "the number '1.5'"},
        {"unexpected token", "|a|", token(sdlOperator), "an operator", "the word 'a'"},
        {"unexpected token", "|a|", token(sdlHex), "", ""},
        {"Block terminator expected!", "{a |12| }",
         [&](eSDLReader& reader) {
             reader.GetSignature();
             reader >> endb;
         },
         "'}'", "the number '12'"},
        {"Block terminator expected!", "|1|", end, "'}'", "the number '1'"},
        {"Block terminator expected!", "||", end, "'}'", "the end of the text"},
        {"Block terminator expected!", "{a {b} ||",
         [](eSDLReader& reader) {
             reader.GetSignature();
             reader.GetSignature();
             reader >> endb >> endb;
         },
         "'}'", "the end of the text", "", "The block that is not closed begins here. |{|a {b} "},
        {"Block terminator expected!", "{a {b ||", skip, "'}'", "the end of the text", "",
         "The block that is not closed begins here. {a |{|b "},
        {"Block terminator expected!", "{a |$|", skip, "'}'", "the character '$'"},
        {"Block terminator expected!", "(mod {b} ||", get(&eSDLReader::GetInt), "'}'", "the end of the text", "",
         "The block that is not closed begins here. |(|mod {b} "},
        {"Number expected!", "|fast|", get(&eSDLReader::GetFloat), "a number", "the word 'fast'"},
        {"Number expected!", "(+ |x| 2)", get(&eSDLReader::GetFloat), "a number", "the word 'x'"},
        {"Number expected!", "|\"1\"|", operand, "a number", "the text \"1\""},
        {"Integer expected!", "|fast|", get(&eSDLReader::GetInt), "an integer", "the word 'fast'"},
        {"Integer expected!", "|3.0|", get(&eSDLReader::GetInt), "an integer", "the number '3.0'"},
        {"Integer expected!", "|1.5|", get(&eSDLReader::GetBool), "an integer", "the number '1.5'"},
        {"Integer expected!", "|(+ 1 2)| 3", get(&eSDLReader::GetInt), "an integer", "the result of '(+ 1 2)'"},
        {"Integer expected!", "|$|1", get(&eSDLReader::GetInt), "an integer", "the character '$'"},
        {"Integer expected!", "|\u00e4|1", get(&eSDLReader::GetInt), "an integer", "the character '\u00e4'"},
        {"Integer expected!", "|\u2713|", get(&eSDLReader::GetInt), "an integer", "the character '\u2713'"},
        {"Integer expected!", "|\"ab|", get(&eSDLReader::GetInt), "an integer", "a text without its closing quote"},
        {"Integer expected!", "|light|", get(&eSDLReader::GetInt), "an integer", "the word 'light'"},
        {"99999999999 is out of range!", "|99999999999| ",
         [](eSDLReader& reader) {
             reader.CheckRange(true);
             reader.GetInt();
         },
         "an integer from -2147483648 to 2147483647", "the number '99999999999'"},
        {"Unknown name 'flta'! Did you mean 'flat'?", "|flta| ", [](eSDLReader& reader) { reader.GetName(kShadings); },
         "'flat', 'smooth'", "the word 'flta'", "flat"},
        {"Unknown name 'x'!", "|x| ", [](eSDLReader& reader) { reader.GetName(std::span(kMonths).first(8)); },
         "'may', 'june', 'july', 'march', 'april', 'august', 'october', 'january'", "the word 'x'"},
        {"Unknown name 'x'!", "|x| ", [](eSDLReader& reader) { reader.GetName(kMonths); },
         "'may', 'june', 'july', 'march', 'april', 'august', 'october', 'january' or another name", "the word 'x'"},
        {"String expected!", "|0x1F| ", [](eSDLReader& reader) { reader.GetString(); }, "a text in quotes",
         "the number '0x1F'"},
        {"String expected!", "|/| ", [](eSDLReader& reader) { reader.GetStringW(); }, "a text in quotes",
         "the operator '/'"},
        {"Control Block start expected!", "|{|", [](eSDLReader& reader) { reader >> begc; }, "'('", "'{'"},
        {"Control Block terminator expected!", "|}|", [](eSDLReader& reader) { reader >> endc; }, "')'", "'}'"},
        {"')' required", "args 1 |$|", parameters, "')'", "the character '$'"},
        {"')' required", "|1|", parameters, "')'", "the number '1'"},
        {"'(' required", "size| |(1)", parameters, "'('", "the character ' '"},
        {"'(' required", "size||", parameters, "'('", "the end of the text"},
        {"')' required", "size|(|1", parameters, "')'", "the end of the text"},
        {"own words", "|light|",
         [](eSDLReader& reader) {
             reader.GetToken();
             reader.Complain("own words");
         },
         "", ""},
        {"Text after the end!", "} |{|a}",
         [](eSDLReader& reader) {
             reader >> endb;
             reader.Finish(eSDLRest::Refuse);
         },
         "the end of the text", "'{'"},
    };
}

TEST(ReportFields, TellWhatWasExpectedAndFoundInEveryReportOfAReader) {
    for (const eReported& row : ReportedByReaders()) {
        std::string line = row.text;
        const std::size_t begin = line.find('|');
        line.erase(begin, 1);
        line.erase(line.find('|'), 1);
        eOpenReader reader("; \u65e5\n" + line);
        reader.PushKeywords(words);
        const eDiagnostic diagnostic = DiagnosticOf([&] { row.reading(reader); });
        EXPECT_EQ(diagnostic.message, row.message) << row.text;
        EXPECT_EQ(MarkedIn(diagnostic.excerpt), row.text) << row.message;
        EXPECT_EQ(diagnostic.excerpt.place,
                  (xError::ePlace{"", 6 + begin, 2, static_cast<int>(begin) + 1, static_cast<int>(begin) + 1}))
            << row.text;
        EXPECT_EQ(diagnostic.expected, row.expected) << row.text;
        EXPECT_EQ(diagnostic.found, row.found) << row.text;
        EXPECT_EQ(diagnostic.suggestion, row.suggestion) << row.text;
        const std::string note = diagnostic.notes.empty() ? ""
                                                          : diagnostic.notes.front().message + ' ' +
                                                                MarkedIn(diagnostic.notes.front().excerpt);
        EXPECT_EQ(note, row.note) << row.text;
        EXPECT_TRUE(diagnostic.includedFrom.empty()) << row.text;
    }
}

class ReportFieldsOfFiles : public testing::Test {
protected:
    eFileName File(const std::string& name, const std::string& text) const {
        return eFileName(folder.Write(name, text));
    }
    const eTempFolder folder;
};

TEST_F(ReportFieldsOfFiles, OfASignatureNameTheNearOne) {
    const eFileName file = File("a.sdl", "{Scne 1}");
    const eDiagnostic diagnostic = DiagnosticOf([&] { eSDLReader(file, "scene", nullptr); });
    EXPECT_EQ(diagnostic.message, "File signature mismatch (read 'scne' instead of 'scene')");
    EXPECT_EQ(diagnostic.excerpt.place, (xError::ePlace{file.str(), 1, 1, 2, 2}));
    EXPECT_EQ(MarkedIn(diagnostic.excerpt), "{|Scne| 1}");
    EXPECT_EQ(diagnostic.expected, "the word 'scene'");
    EXPECT_EQ(diagnostic.found, "the word 'Scne'");
    EXPECT_EQ(diagnostic.suggestion, "scene");
    const eFileName other = File("b.sdl", "1");
    for (const auto& open :
         {std::function<void()>([&] { eSDLReader(other, "scene", nullptr); }),
          std::function<void()>([&] { eSDLReader(eFileNameW(folder.NameW(L"b.sdl")), "scene", nullptr); })}) {
        const eDiagnostic noBlock = DiagnosticOf(open);
        EXPECT_EQ(noBlock.message, "Not SDL file!");
        EXPECT_EQ(noBlock.excerpt.place.source, other.str());
        EXPECT_EQ(noBlock.found, "the number '1'");
    }
}

TEST_F(ReportFieldsOfFiles, TellWhyAFileCouldNotBeOpened) {
    const eFileName missing(folder.Name("none.sdl"));
    const eDiagnostic diagnostic = DiagnosticOf([&] { eSDLReader(missing, "scene", nullptr); });
    ASSERT_EQ(diagnostic.notes.size(), 1u);
    EXPECT_EQ(diagnostic.notes[0].message.find("The file could not be opened: "), 0u);
    EXPECT_EQ(diagnostic.excerpt.place, (xError::ePlace{.source = missing.str()}));
    eSDLReader reader(File("a.sdl", "a 1"), nullptr);
    reader.Include(missing);
    reader.GetIdent();
    const eDiagnostic next = DiagnosticOf([&] { reader.GetString(); });
    ASSERT_EQ(next.notes.size(), 1u);
    EXPECT_EQ(next.notes[0].message.find('"' + missing.str() + "\": The file could not be opened: "), 0u);
    EXPECT_TRUE(DiagnosticOf([&] { reader.GetString(); }).notes.empty());
}

TEST_F(ReportFieldsOfFiles, TellTheChainOfIncludes) {
    const eFileName outer = File("outer.sdl", "{a\n  1 2");
    const eFileName middle = File("middle.sdl", "3\n\n   4 5 6");
    const eFileName inner = File("inner.sdl", "6 x");
    eOpenReader reader(outer, nullptr);
    reader.GetSignature();
    reader.GetInt();
    reader.Include(middle);
    reader.GetInt();
    reader.GetInt();
    reader.Include(inner);
    const std::vector<xError::ePlace> chain = {{middle.str(), 6, 3, 4, 4}, {outer.str(), 5, 2, 3, 3}};
    reader.GetInt();
    EXPECT_EQ(DiagnosticOf([&] { reader.GetInt(); }).includedFrom, chain);
    std::map<eStringKey, eStringKey> parameters;
    reader.Back();
    EXPECT_EQ(DiagnosticOf([&] { reader.GetParameters(&parameters); }).includedFrom, chain);
    reader.GetInt();
    EXPECT_EQ(DiagnosticOf([&] { reader.GetString(); }).includedFrom, std::vector(chain.begin() + 1, chain.end()));
}

TEST_F(ReportFieldsOfFiles, OfLimitsTellThemAndTheSource) {
    const eFileName file = File("a.sdl", "{a 12345678 }");
    const eDiagnostic large = DiagnosticOf([&] { eSDLReader(file, "a", nullptr, {.sourceBytes = 5}); });
    EXPECT_EQ(large.message, "Source limit exceeded!");
    EXPECT_EQ(large.excerpt.place, (xError::ePlace{.source = file.str()}));
    EXPECT_EQ(large.expected, "at most 5 bytes");
    EXPECT_EQ(large.found, "13 bytes");
    eSDLReader reader(file, nullptr, {.sourceBytes = 13, .tokenBytes = 3, .includeDepth = 1});
    reader.GetSignature();
    const eDiagnostic longToken = DiagnosticOf([&] { reader.GetInt(); });
    EXPECT_EQ(longToken.message, "Token limit exceeded!");
    EXPECT_EQ(longToken.excerpt.place.offset, 3u);
    EXPECT_EQ(longToken.expected, "a token within the limit");
    EXPECT_EQ(longToken.found, "a longer one");
    const eDiagnostic largeInclude = DiagnosticOf([&] { reader.Include(File("b.sdl", "12345678901234")); });
    EXPECT_EQ(largeInclude.message, "Source limit exceeded!");
    ASSERT_EQ(largeInclude.includedFrom.size(), 1u);
    EXPECT_EQ(largeInclude.includedFrom[0].source, file.str());
    reader.Include(File("c.sdl", "1 2"));
    reader.GetInt();
    const eDiagnostic deep = DiagnosticOf([&] { reader.Include(file); });
    EXPECT_EQ(deep.message, "Include limit exceeded!");
    EXPECT_EQ(MarkedIn(deep.excerpt), "|1| 2");
    EXPECT_EQ(deep.includedFrom.size(), 1u);
}

TEST(ReportFields, OfAParserAloneTellTheirPlace) {
    const std::string text = "a size(12";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("p.sdl", stream, tables, {}, nullptr);
    parser.Get();
    const eDiagnostic noOpen = DiagnosticOf([&] { parser.GetParameter(); });
    EXPECT_EQ(noOpen.message, "'(' required");
    EXPECT_EQ(noOpen.excerpt.place, (xError::ePlace{"p.sdl", 1, 1, 2, 2}));
    parser.Get();
    const eDiagnostic noClose = DiagnosticOf([&] { parser.GetParameter(); });
    EXPECT_EQ(noClose.message, "')' required");
    EXPECT_EQ(MarkedIn(noClose.excerpt), "a size|(|12");
    const std::string limited = "size(12345)";
    IO::eBufferStream limitedStream(limited);
    eSDLParser limitedParser("p.sdl", limitedStream, tables, {}, nullptr, {.tokenBytes = 4});
    limitedParser.Get();
    const eDiagnostic tooLong = DiagnosticOf([&] { limitedParser.GetParameter(); });
    EXPECT_EQ(tooLong.message, "Token limit exceeded!");
    EXPECT_EQ(MarkedIn(tooLong.excerpt), "size|(|12345)");
    EXPECT_EQ(DiagnosticOf([&] {
                  eSDLParser(eDefine{"d", "12345"}, tables, {}, {.sourceBytes = 4});
              }).excerpt.place,
              (xError::ePlace{.source = "define 'd'"}));
}

TEST(ReportFields, AreThoseOfAMistakeInATextOnly) {
    const eOpenReader reader(std::string("a"));
    const xError::eReport report = ReportOf([] { xError::Error("unit", 1, "message", true); });
    EXPECT_EQ(report.message, "message");
    EXPECT_EQ(report.diagnostic, nullptr);
}

TEST(ReportFields, LeaveTheContextAsItIs) {
    eOpenReader reader(std::string("; a\n{x \"\u00e4\xFF\" 1 }"));
    reader.GetSignature();
    const xError::eReport report = ReportOf([&] { reader.GetInt(); });
    EXPECT_EQ(report.context, ", 2\n2: {x \"\u00e4\xFF\"\xAB 1 }\n");
    EXPECT_EQ(report.message, "Integer expected!");
    ASSERT_TRUE(report.diagnostic);
    EXPECT_EQ(MarkedIn(report.diagnostic->excerpt), "{x |\"\u00e4\ufffd\"| 1 }");
    EXPECT_EQ(report.diagnostic->found, "the text \"\u00e4\ufffd\"");
}

// --- The excerpt ---

TEST(ReportFields, ShowAsMuchOfALineAsIsUseful) {
    const std::string a99(99, 'a');
    const std::string umlauts = [] {
        std::string text;
        for (int i = 0; i < 200; ++i)
            text += "\u00e4";
        return text;
    }();
    const struct {
        const char* what;
        std::string text;
        std::string shown;
        bool beginIsCut = false;
        bool endIsCut = false;
    } rows[] = {
        {"CR LF", "1\r\n|x| 2\r\n3", "|x| 2"},
        {"last line with CR", "|x|\r", "|x|"},
        {"one CR in a line", "a\r|x|\rb", "a\r|x|\rb"},
        {"as much as is shown", a99 + " |x| " + a99.substr(1), a99 + " |x| " + a99.substr(1)},
        {"more before", "a" + a99 + " |x|", a99 + " |x|", true},
        {"more behind", "|x| " + a99, "|x| " + a99.substr(1), false, true},
        {"a long token", "|" + std::string(300, 'x') + "|", "|" + std::string(100, 'x') + "|", false, true},
        {"characters are whole", "\"" + umlauts + "\" |x| \"" + umlauts + "\"",
         umlauts.substr(0, 98) + "\" |x| \"" + umlauts.substr(0, 96), true, true},
        {"a byte-order mark", "\xEF\xBB\xBF|x|", "|x|"},
        {"the text ends at a zero", "|x|" + std::string("\0y", 2), "|x|"},
    };
    for (const auto& row : rows) {
        std::string text = row.text;
        const std::size_t begin = text.find('|');
        text.erase(begin, 1);
        text.erase(text.find('|'), 1);
        eOpenReader reader(text);
        while (reader.Get() && reader.Token().text.find('x') == std::string::npos)
            ;
        reader.Back();
        const eDiagnostic diagnostic = DiagnosticOf([&] { reader.GetInt(); });
        EXPECT_EQ(MarkedIn(diagnostic.excerpt), row.shown) << row.what;
        EXPECT_EQ(diagnostic.excerpt.place.offset, begin) << row.what;
        EXPECT_EQ(diagnostic.excerpt.beginIsCut, row.beginIsCut) << row.what;
        EXPECT_EQ(diagnostic.excerpt.endIsCut, row.endIsCut) << row.what;
    }
}

TEST(ReportFields, AbridgeALongToken) {
    eOpenReader reader(std::string(1000, 'x') + " \"" + std::string(1000, 'y') + "\"");
    EXPECT_EQ(DiagnosticOf([&] { reader.GetInt(); }).found, "the word '" + std::string(60, 'x') + "...'");
    EXPECT_EQ(DiagnosticOf([&] { reader.GetInt(); }).found, "the text \"" + std::string(59, 'y') + "...");
}

// --- Their cost ---

TEST(ReportFields, TakeAsLongInALineOfAnyLengthAndAtTheEndOfAnyText) {
    constexpr int kReports = 10'000;
    std::string line = "{a ";
    for (int i = 0; i < kReports; ++i)
        line += "word {b \"\u00e4\" ";
    eSDLReader reader = ReaderOf(line);
    // If the cost were that of the distance from the line's or the text's beginning, this would take minutes.
    const double seconds = SecondsOf([&] {
        for (int i = 0; i < kReports; ++i)
            ReportOf([&] { reader.GetInt(); });
        while (reader.GetToken().type != sdlNone)
            ;
        for (int i = 0; i < kReports; ++i)
            EXPECT_EQ(DiagnosticOf([&] { reader >> endb; }).notes.size(), 1u);
    });
    EXPECT_LT(seconds, 10);
}

TEST(ReportFields, SuggestAWordOfALargeTableInAMoment) {
    constexpr int kWords = 40'000;
    constexpr int kReports = 20;
    std::vector<std::string> names;
    for (int i = 0; i < kWords; ++i)
        names.push_back("keyword_" + std::to_string(i));
    eSDLKeyword* table = nullptr;
    const auto room = std::make_unique<std::byte[]>(sizeof(eSDLKeyword) * kWords); // zero, as static storage is
    auto* const entries = reinterpret_cast<eSDLKeyword*>(room.get());
    for (int i = 0; i < kWords; ++i)
        new (&entries[i]) eSDLKeyword(table, names[static_cast<std::size_t>(i)].c_str(), i + 1);
    std::string text;
    for (int i = 0; i < kReports; ++i)
        text += "kexword_39998 ";
    eSDLReader reader = ReaderOf(text);
    reader.PushKeywords(table);
    const double seconds = SecondsOf([&] {
        for (int i = 0; i < kReports; ++i)
            EXPECT_EQ(DiagnosticOf([&] { reader.GetKeyword(); }).suggestion, "keyword_39998");
    });
    EXPECT_LT(seconds, 10);
    std::for_each(entries, entries + kWords, [](eSDLKeyword& entry) { std::destroy_at(&entry); });
}

} // namespace
