// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl/writer.h>

#include "open_reader.h"
#include "sdl_source.h"
#include "support/reports.h"
#include "support/temp_folder.h"
#include "turning_cipher.h"

namespace {

eSDLKeyword* words;
eSDLKeyword sceneWord(words, "scene", 3);
eSDLKeyword lightWord(words, "light", 5);
eSDLKeyword colorWord(words, "color", 7);

eSDLKeyword* otherWords;
eSDLKeyword otherLight(otherWords, "light", 50);

eSDLReader WordReaderOf(const std::string& text) {
    IO::eBufferStream stream(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(words);
    return reader;
}

// The types and texts of all tokens from a reader, up to the end or the first error.
std::string Tokens(eSDLReader& reader) {
    std::string tokens;
    for (;;) {
        const eSDLParserToken& token = reader.GetToken();
        tokens += (tokens.empty() ? "" : " ") + std::to_string(token.type);
        if (token.type == sdlNone || token.type == sdlError)
            return tokens;
        tokens += "[" + token.text + "]";
    }
}

std::string Tokens(const std::string& text) {
    eSDLReader reader = WordReaderOf(text);
    return Tokens(reader);
}

} // namespace

TEST(SdlReader, ReadsValuesOfEveryKind) {
    eSDLReader reader = WordReaderOf(R"({light "lamp \"1\"" 1.5 3 -7 300 70000 1 word Color "w\n" 2})");
    EXPECT_EQ(reader.GetBlock(5), 5);
    EXPECT_EQ(reader.GetString(), "lamp \"1\"");
    EXPECT_EQ(reader.GetFloat(), 1.5f);
    EXPECT_EQ(reader.GetFloat(), 3.0f);
    int integer = 0;
    char character = 0;
    short number = 0;
    bool flag = false;
    reader >> integer >> character >> number >> flag;
    EXPECT_EQ(integer, -7);
    EXPECT_EQ(character, 44);
    EXPECT_EQ(number, static_cast<short>(70000));
    EXPECT_TRUE(flag);
    EXPECT_EQ(reader.GetIdent(), "word");
    EXPECT_EQ(reader.GetKeyword(), 7);
    std::string text;
    float real = 0;
    reader >> text >> real >> endb;
    EXPECT_EQ(text, "w\n");
    EXPECT_EQ(real, 2.0f);
    EXPECT_EQ(reader.Token().type, sdlBlockEnd);
}

TEST(SdlReader, ReadsWideTextsFromUtf8) {
    eSDLReader reader = ReaderOf("\"\xC3\xA4\\n\" \"\xE2\x82\xAC\"");
    std::wstring wide;
    reader >> wide;
    EXPECT_EQ(wide, L"\u00E4\n");
    EXPECT_EQ(reader.GetStringW(), L"\u20AC");
}

TEST(SdlReader, ReadsAFileNameInItsNormalForm) {
    eSDLReader reader = ReaderOf(R"("dir\\sub\\a.txt" 5)");
    eFileName name;
    reader >> name;
    EXPECT_EQ(name.str(), "dir/sub/a.txt");
    EXPECT_EQ(FailureOf([&] { reader >> name; }), ReaderFailure(336, "String expected!"));
}

TEST(SdlReader, ReadsListsUpToTheFirstTokenThatIsNoString) {
    eSDLReader reader = ReaderOf("\"a\" ; c\n\"b\\t\" 1 \"\xC3\xA4\" \"d\" }");
    eStrings narrow;
    narrow.Add("first");
    reader >> narrow;
    ASSERT_EQ(narrow.size(), 3u);
    EXPECT_EQ(narrow[1].str(), "a");
    EXPECT_EQ(narrow[2].str(), "b\t");
    EXPECT_EQ(reader.GetInt(), 1);
    eStringsW wide;
    reader >> wide;
    ASSERT_EQ(wide.size(), 2u);
    EXPECT_EQ(wide[0].str(), L"\u00E4");
    reader >> wide >> narrow;
    EXPECT_EQ(wide.size(), 2u);
    EXPECT_EQ(narrow.size(), 3u);
    EXPECT_TRUE(reader.End());
}

TEST(SdlReader, ReadsAFlagAsABareWord) {
    const struct {
        const char* text;
        bool value;
        const char* rest;
    } rows[] = {{"}", true, "5[] 0"},  {"0 x", false, "1[x] 0"}, {"1 x", true, "1[x] 0"},  {"-2", true, "0"},
                {"x", true, "1[x] 0"}, {"", true, "0"},          {"\"0\"", true, "3[0] 0"}};
    for (const auto& row : rows) {
        eSDLReader reader = ReaderOf(row.text);
        EXPECT_EQ(reader.GetBool(), row.value) << row.text;
        EXPECT_EQ(Tokens(reader), row.rest) << row.text;
    }
}

TEST(SdlReader, ReportsEveryWrongToken) {
    const struct {
        const char* text;
        void (*read)(eSDLReader&);
        int line;
        const char* message;
    } rows[] = {
        {"3.0", [](eSDLReader& r) { r.GetInt(); }, 317, "Integer expected!"},
        {"x", [](eSDLReader& r) { r.GetInt(); }, 317, "Integer expected!"},
        {"", [](eSDLReader& r) { r.GetInt(); }, 317, "Integer expected!"},
        {"x",
         [](eSDLReader& r) {
             int v;
             r >> v;
         },
         317, "Integer expected!"},
        {"x",
         [](eSDLReader& r) {
             short v;
             r >> v;
         },
         317, "Integer expected!"},
        {"x",
         [](eSDLReader& r) {
             char v;
             r >> v;
         },
         317, "Integer expected!"},
        {"1.5", [](eSDLReader& r) { r.GetBool(); }, 317, "Integer expected!"},
        {"1.5",
         [](eSDLReader& r) {
             bool v;
             r >> v;
         },
         317, "Integer expected!"},
        {"\"1\"", [](eSDLReader& r) { r.GetFloat(); }, 308, "Number expected!"},
        {"}",
         [](eSDLReader& r) {
             float v;
             r >> v;
         },
         308, "Number expected!"},
        {"1", [](eSDLReader& r) { r.GetString(); }, 336, "String expected!"},
        {"x",
         [](eSDLReader& r) {
             std::string v;
             r >> v;
         },
         336, "String expected!"},
        {"\"x", [](eSDLReader& r) { r.GetString(); }, 336, "String expected!"},
        {"\"x\n\"", [](eSDLReader& r) { r.GetString(); }, 336, "String expected!"},
        {"1", [](eSDLReader& r) { r.GetStringW(); }, 344, "String expected!"},
        {"x",
         [](eSDLReader& r) {
             std::wstring v;
             r >> v;
         },
         344, "String expected!"},
        {"\"x\"", [](eSDLReader& r) { r.GetIdent(false); }, 352, "Identifier expected!"},
        {"1", [](eSDLReader& r) { r.GetIdent(true); }, 352, "Identifier expected!"},
        {"unknown", [](eSDLReader& r) { r.GetKeyword(); }, 266, "unexpected token"},
        {"1", [](eSDLReader& r) { r.GetToken(sdlString); }, 537, "unexpected token"},
        {"$", [](eSDLReader& r) { r.GetToken(sdlNumber); }, 537, "unexpected token"},
        {"light", [](eSDLReader& r) { r.GetBlock(0); }, 569, "Block start expected!"},
        {"", [](eSDLReader& r) { r.GetBlock(5); }, 569, "Block start expected!"},
        {"{unknown}", [](eSDLReader& r) { r.GetBlock(0); }, 257, "Invalid block identifier!"},
        {"{color}", [](eSDLReader& r) { r.GetBlock(5); }, 257, "Invalid block identifier!"},
        {"x", [](eSDLReader& r) { r.GetSignature(); }, 526, "Not SDL file!"},
        {"{5}", [](eSDLReader& r) { r.GetSignature(); }, 352, "Identifier expected!"},
        {"x", [](eSDLReader& r) { r >> begb; }, 569, "Block start expected!"},
        {"x", [](eSDLReader& r) { r >> endb; }, 553, "Block terminator expected!"},
        {"x", [](eSDLReader& r) { r >> begc; }, 577, "Control Block start expected!"},
        {"x", [](eSDLReader& r) { r >> endc; }, 561, "Control Block terminator expected!"},
        {") }", [](eSDLReader& r) { r >> endc; }, 561, "Control Block terminator expected!"},
        {"a {b", [](eSDLReader& r) { r.SkipBlock(); }, 292, "Block terminator expected!"},
        {"a $ }", [](eSDLReader& r) { r.SkipBlock(); }, 292, "Block terminator expected!"},
        {"(foo)", [](eSDLReader& r) { r.GetInt(); }, 466, "Invalid control block!"},
        {"(model x)", [](eSDLReader& r) { r.GetInt(); }, 466, "Invalid control block!"},
        {"(includes x)", [](eSDLReader& r) { r.GetInt(); }, 466, "Invalid control block!"},
        {"(light)", [](eSDLReader& r) { r.GetInt(); }, 466, "Invalid control block!"},
        {"(5)", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"(", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"()", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"((+ 1 2))", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"({a})", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"($)", [](eSDLReader& r) { r.GetInt(); }, 352, "Identifier expected!"},
        {"(+)", [](eSDLReader& r) { r.GetFloat(); }, 308, "Number expected!"},
        {"(+ x)", [](eSDLReader& r) { r.GetFloat(); }, 308, "Number expected!"},
        {"(+ 1 (+ 1 2))", [](eSDLReader& r) { r.GetFloat(); }, 308, "Number expected!"},
        {"(+ 1", [](eSDLReader& r) { r.GetFloat(); }, 308, "Number expected!"},
        {"(+ 1 2)", [](eSDLReader& r) { r.GetInt(); }, 317, "Integer expected!"},
        {"(\"note\" x", [](eSDLReader& r) { r.GetInt(); }, 292, "Block terminator expected!"},
        {"(mod $)", [](eSDLReader& r) { r.GetInt(); }, 292, "Block terminator expected!"},
    };
    for (const auto& row : rows) {
        eSDLReader reader = WordReaderOf(row.text);
        EXPECT_EQ(FailureOf([&] { row.read(reader); }), ReaderFailure(row.line, row.message)) << row.text;
    }
}

TEST(SdlReader, ThrowsTheReportWhenTheHandlerReturns) {
    eReports reports;
    eSDLReader reader = ReaderOf("a\nb");
    reader.GetIdent();
    const eFailure expected = ReaderFailure(317, "Integer expected!");
    EXPECT_EQ(FailureOf([&] { reader.GetInt(); }), expected);
    ASSERT_EQ(reports.errors().size(), 1u);
    EXPECT_EQ(reports.errors()[0].message, expected.message);
    reader.Back();
    EXPECT_NE(ContextOf([&] { reader.GetInt(); }).find("2: b"), std::string::npos);
}

TEST(SdlReader, ReportsShowThePlace) {
    const eTempFolder folder;
    const std::string name = folder.Write("a.sdl", "{scene\r\n  1 x 3\r\n}\r\n");
    eSDLReader reader(eFileName(name), "scene", nullptr);
    reader.GetInt();
    const std::string context = ContextOf([&] { reader.GetInt(); });
    EXPECT_EQ(context, "\"" + name + "\", 2\n2:   1 x\xAB 3\n3: }\n");
    EXPECT_EQ(reader.GetInt(), 3);
}

TEST(SdlReader, ReportsShowTheInnermostSourceFirst) {
    const eTempFolder folder;
    const std::string inner = folder.Write("inner.sdl", "$");
    const std::string outer = folder.Write("outer.sdl", "1\n");
    eSDLReader reader(eFileName(outer), nullptr);
    reader.GetInt();
    reader.Include(eFileName(inner));
    const std::string context = ContextOf([&] { reader.GetInt(); });
    EXPECT_EQ(context, "\"" + inner + "\", 1\n1: \xAB$\n\"" + outer + "\", 1\n1: 1\xAB\n");
}

TEST(SdlReader, ChecksTheSignature) {
    const struct {
        const char* text;
        const char* signature;
        eFailure failure;
    } rows[] = {
        {"{scene}", "scene", {}},
        {"{ Scene}", "scene", {}},
        {" ; c\r\n{sCENE }", "Scene", {}},
        {"{#mark scene}", "scene", {}},
        {"scene", "scene", ReaderFailure(17, "Not SDL file!")},
        {"", "scene", ReaderFailure(17, "Not SDL file!")},
        {"MZ\x90", "scene", ReaderFailure(17, "Not SDL file!")},
        {"{5}", "scene", ReaderFailure(352, "Identifier expected!")},
        {"{", "scene", ReaderFailure(352, "Identifier expected!")},
        {"{Other}", "Scene", ReaderFailure(20, "File signature mismatch (read 'other' instead of 'Scene')")},
        {"{scene}", nullptr, ReaderFailure(20, "File signature mismatch (read 'scene' instead of '')")},
        {"{scenes}", "scene", ReaderFailure(20, "File signature mismatch (read 'scenes' instead of 'scene')")},
    };
    const eTempFolder folder;
    for (const auto& row : rows) {
        const eFileName name(folder.Write("a.sdl", row.text));
        EXPECT_EQ(FailureOf([&] { eSDLReader reader(name, row.signature, nullptr); }), row.failure) << row.text;
        eFailure wide = row.failure;
        wide.line = wide.line == 17 ? 31 : wide.line;
        const eFileNameW wideName(folder.NameW(L"a.sdl"));
        EXPECT_EQ(FailureOf([&] { eSDLReader reader(wideName, row.signature, nullptr); }), wide) << row.text;
    }
}

TEST(SdlReader, AMissingFileIsNamedByTheReport) {
    const eTempFolder folder;
    const eFileName name(folder.Name("no.sdl"));
    const auto open = [&] { eSDLReader reader(name, "scene", nullptr); };
    EXPECT_EQ(FailureOf(open), ReaderFailure(17, "Not SDL file!"));
    EXPECT_NE(ContextOf(open).find("\"" + name.str() + "\""), std::string::npos);
    EXPECT_NE(ContextOf(open).find("could not be opened"), std::string::npos);
    eSDLReader reader(name, nullptr);
    EXPECT_EQ(Tokens(reader), "0");
}

TEST(SdlReader, AConstructorThatFailsExpectsNoTerminator) {
    const eTempFolder folder;
    const eFileName name(folder.Write("a.sdl", "{other 1 2"));
    eReports reports;
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(name, "scene", nullptr); }).line, 20);
    EXPECT_EQ(reports.errors().size(), 1u);
    EXPECT_NE(reports.errors()[0].context.find("1: {other\xAB 1 2"), std::string::npos);
}

TEST(SdlReader, ExpectsTheSignatureBlocksEnd) {
    const eTempFolder folder;
    const eFileName name(folder.Write("a.sdl", "{scene 1 2"));
    const eFailure failure = ReaderFailure(553, "Block terminator expected!");
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(name, "scene", nullptr); }), failure);
    const eFileNameW wideName(folder.NameW(L"a.sdl"));
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(wideName, "scene", nullptr); }), failure);
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(wideName, nullptr); }), eFailure());
    EXPECT_EQ(FailureOf([&] {
                  eSDLReader reader(name, "scene", nullptr);
                  EXPECT_TRUE(reader.CheckEOF());
                  reader.CheckEOF(false);
                  EXPECT_FALSE(reader.CheckEOF());
              }),
              eFailure());
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(name, nullptr); }), eFailure());
    EXPECT_EQ(FailureOf([&] { eSDLReader reader(name, words, nullptr); }), eFailure());
}

TEST(SdlReader, IsSilentWhileAnotherExceptionIsOnItsWay) {
    const eTempFolder folder;
    const eFileName name(folder.Write("a.sdl", "{scene 1 2"));
    eReports reports;
    EXPECT_THROW(
        {
            eSDLReader reader(name, "scene", nullptr);
            throw std::out_of_range("mine");
        },
        std::out_of_range);
    EXPECT_TRUE(reports.errors().empty());
}

TEST(SdlReader, ChecksItsEndAlsoWhenMadeWhileAnExceptionIsOnItsWay) {
    const eTempFolder folder;
    const eFileName name(folder.Write("a.sdl", "{scene 1 2"));
    eFailure failure;
    struct eReadsOnItsWayOut {
        eReadsOnItsWayOut(const eFileName& file, eFailure& found) : name(file), failure(found) {}
        ~eReadsOnItsWayOut() {
            failure = FailureOf([this] { eSDLReader reader(name, "scene", nullptr); });
        }
        const eFileName& name;
        eFailure& failure;
    };
    EXPECT_THROW(
        {
            const eReadsOnItsWayOut onItsWayOut(name, failure);
            throw std::out_of_range("mine");
        },
        std::out_of_range);
    EXPECT_EQ(failure, ReaderFailure(553, "Block terminator expected!"));
}

TEST(SdlReader, ReadsASignatureWithoutComparing) {
    eSDLReader reader = ReaderOf("{Any 1}");
    EXPECT_EQ(reader.GetSignature(), "Any");
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST(SdlReader, TestsTokensByType) {
    const struct {
        const char* text;
        eSDLParserLexType type;
        int id;
        bool matches;
    } rows[] = {{"x", sdlIdent, 0, true},       {"light", sdlIdent, 0, true},    {"light", sdlKeyword, 0, true},
                {"LIGHT", sdlKeyword, 5, true}, {"light", sdlKeyword, 7, false}, {"x", sdlKeyword, 0, false},
                {"1", sdlNumber, 0, true},      {"1.0", sdlNumber, 0, true},     {"x", sdlNumber, 0, false},
                {"1", sdlInt, 0, true},         {"1.0", sdlInt, 0, false},       {"1", sdlFloat, 0, false},
                {"0x1", sdlInt, 0, true},       {"0x1", sdlHex, 0, false},       {"\"\"", sdlString, 0, true},
                {"{", sdlBlockStart, 0, true},  {"}", sdlBlockEnd, 0, true},     {"*", sdlOperator, 0, true},
                {"", sdlNone, 0, true},         {"x", sdlNone, 0, false},        {"$", sdlError, 0, true},
                {"light", sdlBlockId, 0, false}};
    for (const auto& row : rows) {
        eSDLReader reader = WordReaderOf(row.text);
        EXPECT_EQ(reader.Test(row.type, row.id), row.matches) << row.text << " as " << row.type;
        EXPECT_EQ(reader.Test(row.type, row.id), row.matches) << row.text << " as " << row.type;
        EXPECT_EQ(reader.Check(row.type, row.id), row.matches) << row.text << " as " << row.type;
    }
}

TEST(SdlReader, TestsForAKeywordByItsIdentity) {
    eSDLReader reader = WordReaderOf("light");
    EXPECT_TRUE(reader.Test(5));
    EXPECT_FALSE(reader.Test(7));
    EXPECT_TRUE(reader.Test(0));
    EXPECT_EQ(reader.GetKeyword(), 5);
}

TEST(SdlReader, TakesTokensByType) {
    eSDLReader reader = WordReaderOf("1 1.5 light x } \"s\"");
    EXPECT_EQ(reader.GetToken(sdlNumber).intValue, 1);
    EXPECT_EQ(reader.GetToken(sdlNumber).floatValue, 1.5f);
    EXPECT_EQ(reader.GetToken(sdlIdent).text, "light");
    EXPECT_EQ(reader.GetToken(sdlIdent).text, "x");
    EXPECT_EQ(reader.GetToken(sdlNone).type, sdlBlockEnd);
    EXPECT_EQ(reader.GetToken().text, "s");
    EXPECT_EQ(reader.GetToken().type, sdlNone);
}

TEST(SdlReader, StartAndEndReadNothing) {
    eSDLReader reader = ReaderOf("{a}1");
    EXPECT_TRUE(reader.Start());
    EXPECT_FALSE(reader.End());
    EXPECT_TRUE(reader.Start());
    reader >> begb;
    EXPECT_FALSE(reader.Start());
    EXPECT_EQ(reader.GetIdent(), "a");
    EXPECT_TRUE(reader.End());
    reader >> endb;
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST(SdlReader, LowersAnIdentifierOnDemand) {
    eSDLReader reader = WordReaderOf("MiXed_09AZ\xC4 MiXed");
    EXPECT_EQ(reader.GetIdent(true), "mixed_09az");
    EXPECT_EQ(reader.Token().text, "mixed_09az");
    reader = WordReaderOf("LIGHT MiXed");
    EXPECT_EQ(reader.GetIdent(false), "LIGHT");
    EXPECT_EQ(reader.GetIdent(true), "mixed");
    reader.Back();
    EXPECT_EQ(reader.Token().text, "LIGHT");
}

TEST(SdlReader, BlockIdentifiersBecomeTheirOwnType) {
    eSDLReader reader = WordReaderOf("{light 1}{color}");
    EXPECT_EQ(reader.GetBlock(0), 5);
    EXPECT_EQ(reader.Token().type, sdlBlockId);
    EXPECT_EQ(reader.Token().intValue, 5);
    reader.SkipBlock();
    EXPECT_EQ(reader.GetBlock(7), 7);
}

TEST(SdlReader, BackFromABlockIdentifierReturnsToTheBlocksStart) {
    eSDLReader reader = WordReaderOf("{#a light 1}");
    EXPECT_EQ(reader.GetBlock(5), 5);
    reader.Back();
    EXPECT_EQ(reader.Token().type, sdlBlockStart);
    EXPECT_EQ(reader.Token().text, "a");
    EXPECT_EQ(reader.GetKeyword(), 5);
    EXPECT_EQ(reader.Token().type, sdlKeyword);
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST(SdlReader, LooksWordsUpInTheLastTableOnly) {
    eSDLReader reader = WordReaderOf("light color light light");
    EXPECT_EQ(reader.Keywords(), words);
    reader.PushKeywords(otherWords);
    EXPECT_EQ(reader.Keywords(), otherWords);
    EXPECT_EQ(reader.GetKeyword(), 50);
    EXPECT_FALSE(reader.Test(sdlKeyword));
    EXPECT_EQ(reader.GetIdent(), "color");
    reader.PopKeywords();
    EXPECT_EQ(reader.GetKeyword(), 5);
    reader.PopKeywords();
    EXPECT_EQ(reader.Keywords(), nullptr);
    EXPECT_EQ(FailureOf([&] { reader.GetKeyword(); }).line, 266);
    reader.PopKeywords();
}

TEST(SdlReader, BackReturnsOneToken) {
    eSDLReader reader = ReaderOf("1 2 \"a\\tb\" 3");
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_EQ(reader.GetInt(), 2);
    reader.Back();
    EXPECT_EQ(reader.GetInt(), 2);
    EXPECT_EQ(reader.GetString(), "a\tb");
    EXPECT_EQ(reader.GetInt(), 3);
    reader.Back();
    EXPECT_EQ(reader.Token().text, "a\tb");
    EXPECT_EQ(reader.GetInt(), 3);
    reader.Back();
    reader.Back();
    EXPECT_EQ(reader.GetInt(), 3);
}

TEST(SdlReader, HidesMarkedBlocksUnlessTheGrateIsOpen) {
    const struct {
        const char* text;
        eSDLReader::eGrate grate;
        const char* tokens;
    } rows[] = {
        {"1 {##x 2 {y} (foo) \"}\" ; }\n} 3", {}, "11[1] 11[3] 0"},
        {"{#a#b 2} 3", {}, "11[3] 0"},
        {"{#a#b 2} 3", {1, 0}, "11[3] 0"},
        {"{#a#b 2} 3", {0, 1}, "4[a#b] 11[2] 5[] 11[3] 0"},
        {"{##x 2} 3", {-1}, "4[#x] 11[2] 5[] 11[3] 0"},
        {"{#x 2}", {}, "4[x] 11[2] 5[] 0"},
        {"{# 2}", {}, "4[] 11[2] 5[] 0"},
        {"{## 2} 4", {}, "11[4] 0"},
        {"{##a {##b {##c}}}{##d} 1", {}, "11[1] 0"},
    };
    for (const auto& row : rows) {
        eSDLReader reader = ReaderOf(row.text);
        reader.Grate() = row.grate;
        EXPECT_EQ(Tokens(reader), row.tokens) << row.text;
    }
}

TEST(SdlReader, AHiddenBlockMustEnd) {
    eSDLReader reader = ReaderOf("1 {##x 2");
    reader.GetInt();
    EXPECT_EQ(FailureOf([&] { reader.GetInt(); }), ReaderFailure(292, "Block terminator expected!"));
}

TEST(SdlReader, EvaluatesArithmetic) {
    const struct {
        const char* text;
        float value;
    } rows[] = {
        {"(+ 1 2 3)", 6},
        {"(- 1 2 3)", -4},
        {"(* 2 3 4)", 24},
        {"(/ 1 4)", 0.25f},
        {"(/ 8 2 2)", 2},
        {"(- 5)", 5},
        {"(+ 0.1 0.2)", 0.1f + 0.2f},
        {"(+ 16777216 1)", 16777216},
        {"(+ 16777216 1 1)", 16777216},
        {"(* 1e30 1e30)", std::numeric_limits<float>::infinity()},
        {"(/ 1 0)", std::numeric_limits<float>::infinity()},
        {"(/ -1 0)", -std::numeric_limits<float>::infinity()},
        {"(+\n1 ; c\n 0x10)", 17},
        {"( + 1 -2)", -1},
    };
    for (const auto& row : rows) {
        eSDLReader reader = ReaderOf(std::string(row.text) + " 9");
        EXPECT_EQ(reader.GetFloat(), row.value) << row.text;
        EXPECT_EQ(reader.GetInt(), 9) << row.text;
    }
    eSDLReader reader = ReaderOf("(/ 0 0) 9");
    EXPECT_TRUE(std::isnan(reader.GetFloat()));
    EXPECT_EQ(reader.GetInt(), 9);
}

TEST(SdlReader, BackReturnsBeforeAnExpression) {
    eSDLReader reader = ReaderOf("7\n(+ 1\n 2) 3");
    reader.GetInt();
    EXPECT_TRUE(reader.Test(sdlFloat));
    EXPECT_EQ(reader.Token().intValue, 7);
    EXPECT_EQ(reader.GetFloat(), 3.0f);
    EXPECT_EQ(reader.Token().type, sdlFloat);
    EXPECT_EQ(reader.Token().text, "3");
    EXPECT_EQ(reader.Token().intValue, 3);
    EXPECT_EQ(reader.GetInt(), 3);
}

TEST(SdlReader, PassesControlBlocksWithoutEffect) {
    for (const char* block : {"(include \"a.sdl\")", "(Include \"a.sdl\")", "(define x 1)", "(mod fast)", "(MOD)",
                              "(\"note\")", "(\"note\" anything {at (all)} 5)", "(\"a)\" \")\" ;)\n)", ")", "))"})
        EXPECT_EQ(Tokens(std::string("1 ") + block + " 2"), "11[1] 11[2] 0") << block;
}

TEST(SdlReader, ABraceMayEndAControlBlockAndIsLeft) {
    EXPECT_EQ(Tokens("(\"note\" } 2"), "5[] 11[2] 0");
}

TEST(SdlReader, SkipsToTheEndOfTheBlock) {
    const char* const rest = "a 1.5 -2.5e+3 {b {c} ( d ) } \"}\" ; }\n {##m (foo} } 0x1F%x*/+ } ";
    eSDLReader reader = ReaderOf(std::string("{") + rest + "7");
    reader >> begb;
    reader.SkipBlock();
    EXPECT_EQ(reader.Token().type, sdlBlockEnd);
    EXPECT_EQ(reader.GetInt(), 7);
}

TEST(SdlReader, SkippingCountsLinesHoweverManyThereAre) {
    for (const int lines : {1, 15, 16, 4080, 4096, 5000, 70000}) {
        eOpenReader reader("{" + std::string(static_cast<std::size_t>(lines), '\n') + "last } 1");
        reader >> begb;
        reader.SkipBlock();
        EXPECT_EQ(reader.Parser().Line(), lines + 1);
    }
}

TEST(SdlReader, SkippingMayLeaveTheTerminator) {
    eSDLReader reader = ReaderOf("{a 1 \"x\\t\"\n ; c\n } 7");
    reader >> begb;
    reader.SkipBlock(true);
    EXPECT_EQ(reader.Token().type, sdlString);
    EXPECT_EQ(reader.Token().text, "x\t");
    reader >> endb;
    EXPECT_EQ(reader.GetInt(), 7);
}

TEST(SdlReader, IncludesAnotherFile) {
    const eTempFolder folder;
    folder.Write("b.sdl", "2 ; no line end");
    folder.Write("c.sdl", "");
    folder.Write("d.sdl", "4 \"never ended } 5");
    eSDLReader reader(eFileName(folder.Write("a.sdl", "1\n6")), nullptr);
    EXPECT_EQ(reader.GetInt(), 1);
    reader.Include(eFileName(folder.Name("b.sdl")));
    reader.Include(eFileName(folder.Name("c.sdl")));
    reader.Include(eFileName(folder.Name("d.sdl")));
    reader.Include(eFileName(folder.Name("missing.sdl")));
    EXPECT_EQ(Tokens(reader), "11[4] 11[2] 11[6] 0");
}

TEST(SdlReader, IncludedFilesKnowTheTablesOfTheMoment) {
    const eTempFolder folder;
    eSDLReader reader = WordReaderOf("light");
    reader.Include(eFileName(folder.Write("a.sdl", "light light light")));
    EXPECT_EQ(reader.GetKeyword(), 5);
    reader.PushKeywords(otherWords);
    EXPECT_EQ(reader.GetKeyword(), 50);
    reader.PopKeywords();
    EXPECT_EQ(reader.GetKeyword(), 5);
    EXPECT_EQ(reader.GetKeyword(), 5);
}

TEST(SdlReader, WhatAnIncludedFileBeginsTheIncludingOneMayEnd) {
    const struct {
        const char* included;
        const char* including;
        void (*read)(eSDLReader&);
    } rows[] = {
        {"{", "light 1}", [](eSDLReader& r) { EXPECT_EQ(r.GetBlock(5), 5); }},
        {"{ ; c", "scene 1}", [](eSDLReader& r) { EXPECT_EQ(r.GetSignature(), "scene"); }},
        {"\"a\" \"b\"", "\"c\" 1",
         [](eSDLReader& r) {
             eStrings strings;
             r >> strings;
             EXPECT_EQ(strings.size(), 3u);
         }},
        {"(\"note\" x", "y) 1", [](eSDLReader&) {}},
        {"(mod {x", "} ) 1", [](eSDLReader&) {}},
        {"{##m {x", "} } 1", [](eSDLReader&) {}},
        {"7", "1", [](eSDLReader& r) { EXPECT_TRUE(r.GetInt() == 7 && r.Test(sdlInt)); }},
        {"{x", "} 1",
         [](eSDLReader& r) { EXPECT_TRUE((r >> begb).Check(sdlIdent) && r.End() && r.Check(sdlBlockEnd)); }},
    };
    const eTempFolder folder;
    for (const auto& row : rows) {
        eSDLReader reader = WordReaderOf(row.including);
        reader.Include(eFileName(folder.Write("a.sdl", row.included)));
        row.read(reader);
        EXPECT_EQ(reader.GetInt(), 1) << row.included;
    }
}

TEST(SdlReader, AnExpressionEndsInItsSource) {
    const eTempFolder folder;
    for (const char* included : {"(+ 1 2", "(+", "(+ 1 \"open"}) {
        eSDLReader reader = ReaderOf("3) 4");
        reader.Include(eFileName(folder.Write("a.sdl", included)));
        EXPECT_EQ(FailureOf([&] { reader.GetFloat(); }), ReaderFailure(308, "Number expected!")) << included;
    }
    eSDLReader reader = ReaderOf("+ 1 2)");
    reader.Include(eFileName(folder.Write("a.sdl", "(")));
    EXPECT_EQ(FailureOf([&] { reader.GetFloat(); }), ReaderFailure(352, "Identifier expected!"));
}

TEST(SdlReader, IncludedFilesAreClosedAtOnce) {
    const eTempFolder folder;
    const std::string name = folder.Write("a.sdl", "1 2");
    eSDLReader reader(eFileName(name), nullptr);
    std::filesystem::remove(name);
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_EQ(reader.GetInt(), 2);
}

TEST(SdlReader, ABlockMayGoOnInTheIncludingFile) {
    const eTempFolder folder;
    folder.Write("b.sdl", "{x {y");
    for (const bool keep : {false, true}) {
        eSDLReader reader(eFileName(folder.Write("a.sdl", "1 z} w} 6")), nullptr);
        EXPECT_EQ(reader.GetInt(), 1);
        reader.Include(eFileName(folder.Name("b.sdl")));
        reader >> begb;
        reader.SkipBlock(keep);
        if (keep)
            reader >> endb;
        EXPECT_EQ(reader.GetInt(), 6);
    }
}

TEST(SdlReader, OpenedWithATableLooksWordsUpInIt) {
    const eTempFolder folder;
    const eFileName plain(folder.Write("a.sdl", "Light light"));
    const eFileName turned(folder.Write("b.sdl", Turned("Light light")));
    for (const auto& cipher : {std::shared_ptr<eTurningCipher>(), std::make_shared<eTurningCipher>()}) {
        eSDLReader reader(cipher ? turned : plain, words, cipher);
        EXPECT_EQ(reader.Keywords(), words);
        EXPECT_EQ(reader.GetKeyword(), 5);
        reader.PopKeywords();
        EXPECT_EQ(reader.Keywords(), nullptr);
        EXPECT_EQ(reader.GetToken().type, sdlIdent);
    }
    eSDLReader reader(plain, static_cast<eSDLKeyword*>(nullptr), nullptr);
    EXPECT_EQ(reader.Keywords(), nullptr);
    EXPECT_EQ(reader.GetIdent(), "Light");
}

TEST(SdlReader, ASourceThatWasSkippedToItsEndIsReadForItsCopiesToo) {
    const eTempFolder folder;
    const eFileName inner(folder.Write("b.sdl", "{x a b"));
    const eFileName outer(folder.Write("a.sdl", "c} 7 8"));
    eSDLReader reader(outer, nullptr);
    reader.Include(inner);
    eSDLReader copy(reader);
    reader >> begb;
    reader.SkipBlock();
    EXPECT_EQ(reader.GetInt(), 7);
    EXPECT_EQ(copy.GetInt(), 8);
}

TEST(SdlReader, ReadsThroughTheCipherOfEverySource) {
    const eTempFolder folder;
    const auto cipher = std::make_shared<eTurningCipher>();
    folder.Write("b.sdl", Turned("\"inner\""));
    {
        eSDLReader reader(eFileName(folder.Write("a.sdl", Turned("{scene 1}"))), "scene", cipher);
        reader.Include(eFileName(folder.Name("b.sdl")));
        EXPECT_EQ(reader.GetString(), "inner");
        EXPECT_EQ(reader.GetInt(), 1);
        EXPECT_GT(cipher.use_count(), 1);
        eSDLReader assigned = ReaderOf("");
        assigned = reader;
        reader.CheckEOF(false);
        assigned.Include(eFileName(folder.Name("b.sdl")));
        EXPECT_EQ(assigned.GetString(), "inner");
    }
    EXPECT_EQ(cipher.use_count(), 1);
    eOpenReader wide(eFileNameW(folder.NameW(L"b.sdl")), cipher);
    EXPECT_EQ(wide.GetString(), "inner");
    EXPECT_TRUE(wide.Parser().IsFile());
    EXPECT_EQ(wide.Parser().Name(), folder.Name("b.sdl"));
}

TEST(SdlReader, ReadsFromAStreamThatMayGo) {
    auto stream = std::make_unique<IO::eMemoryStream>();
    stream->Write("skipped 1 2", 11);
    stream->Seek(8, IO::eSeekDir::Begin);
    eSDLReader reader(stream.get(), nullptr);
    stream.reset();
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_EQ(reader.GetInt(), 2);
}

TEST(SdlReader, ArgumentListsGiveTheseParameters) {
    using eParameters = std::map<eStringKey, eStringKey>;
    const struct {
        const char* text;
        eParameters parameters;
    } rows[] = {
        {"args 7 \"x\" y) 9", {{"0", "7"}, {"1", "\"x\""}, {"2", "y"}}},
        {"args 0x1F 1.50 \"a\\n\" -3) 9", {{"0", "31"}, {"1", "1.50"}, {"2", "\"a\\n\""}, {"3", "-3"}}},
        {"args) 9", {}},
        {"args a b c d e f g h i j k) 9",
         {{"0", "a"},
          {"1", "b"},
          {"2", "c"},
          {"3", "d"},
          {"4", "e"},
          {"5", "f"},
          {"6", "g"},
          {"7", "h"},
          {"8", "i"},
          {"9", "j"},
          {"10", "k"}}},
        {"size(12) name(a b)) 9", {{"size", "12"}, {"name", "a b"}}},
        {"Args(1)) 9", {{"Args", "1"}}},
        {"argsx(1)) 9", {{"argsx", "1"}}},
        {"light(1) light(2)) 9", {{"light", "2"}}},
        {") 9", {}},
    };
    for (const auto& row : rows) {
        eOpenReader reader(row.text);
        reader.PushKeywords(words);
        eParameters parameters;
        reader.GetParameters(&parameters);
        EXPECT_EQ(parameters, row.parameters) << row.text;
        EXPECT_EQ(reader.GetInt(), 9) << row.text;
    }
}

// Only an identifier begins the list by place; a keyword is a name like others.
TEST(SdlReader, AnArgumentListMayBeginWithTheKeywordArgs) {
    static eSDLKeyword* table = nullptr;
    static const eSDLKeyword args(table, "args", 1);
    eOpenReader reader("args(1) size(2)) 9");
    reader.PushKeywords(table);
    std::map<eStringKey, eStringKey> parameters;
    reader.GetParameters(&parameters);
    EXPECT_EQ(parameters, (std::map<eStringKey, eStringKey>{{"args", "1"}, {"size", "2"}}));
    EXPECT_EQ(reader.GetInt(), 9);
}

TEST(SdlReader, AnArgumentListMustEnd) {
    const eFailure unclosed = ReaderFailure(510, "')' required");
    for (const char* text : {"args 1 2", "args 1 $)", "args \"x\n)", "size(1) 5)", "5)", "", "size(1)", "}"}) {
        eOpenReader reader(text);
        std::map<eStringKey, eStringKey> parameters;
        EXPECT_EQ(FailureOf([&] { reader.GetParameters(&parameters); }), unclosed) << text;
    }
    eOpenReader reader("size (12))");
    std::map<eStringKey, eStringKey> parameters;
    EXPECT_EQ(FailureOf([&] { reader.GetParameters(&parameters); }).message, "'(' required");
    eOpenReader open("size(12");
    EXPECT_EQ(FailureOf([&] { open.GetParameters(&parameters); }).message, "')' required");
}

TEST(SdlReader, ReadsAnOperand) {
    eOpenReader reader("0x10 2.50 x");
    eSDLParserToken token;
    reader.GetOperand(&token);
    EXPECT_EQ(token.type, sdlFloat);
    EXPECT_EQ(token.floatValue, 16.0f);
    EXPECT_EQ(token.text, "16");
    reader.GetOperand(&token);
    EXPECT_EQ(token.floatValue, 2.5f);
    EXPECT_EQ(token.text, "2.50");
    EXPECT_EQ(FailureOf([&] { reader.GetOperand(&token); }), ReaderFailure(308, "Number expected!"));
}

TEST(SdlReader, TellsTheEndOfTheLastSource) {
    eOpenReader reader("1");
    EXPECT_TRUE(reader.Get());
    EXPECT_FALSE(reader.Get());
    EXPECT_FALSE(reader.Get());
}

TEST(SdlReader, LoadingModesBelongToTheThread) {
    eStrings& mine = eSDLReader::LoadingModes();
    EXPECT_EQ(&mine, &eSDLReader::LoadingModes());
    mine.Clear();
    mine.Add("fast");
    eStrings* others = nullptr;
    bool empty = false;
    std::thread([&] {
        others = &eSDLReader::LoadingModes();
        empty = others->empty();
    }).join();
    EXPECT_NE(others, &mine);
    EXPECT_TRUE(empty);
    mine.Clear();
}

TEST(SdlReader, ThreadsEvaluateApart) {
    std::vector<std::thread> threads;
    std::vector<float> sums(4);
    for (std::size_t thread = 0; thread < sums.size(); ++thread)
        threads.emplace_back([&sums, thread] {
            std::string text;
            for (int i = 0; i < 500; ++i)
                text += "(+ 1 " + std::to_string(thread) + ") ";
            eSDLReader reader = WordReaderOf(text);
            for (int i = 0; i < 500; ++i)
                if (reader.Test(sdlFloat))
                    sums[thread] += reader.GetFloat();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(sums, (std::vector<float>{500, 1000, 1500, 2000}));
}

TEST(SdlReader, CopiesReadFromTheSameSources) {
    auto first = std::make_unique<eSDLReader>(WordReaderOf("1 light 3 4 light"));
    EXPECT_EQ(first->GetInt(), 1);
    eSDLReader second(*first);
    EXPECT_EQ(second.GetKeyword(), 5);
    EXPECT_EQ(first->GetInt(), 3);
    first.reset();
    EXPECT_EQ(second.GetInt(), 4);
    second.PushKeywords(otherWords);
    EXPECT_EQ(second.GetKeyword(), 50);
}

TEST(SdlReader, TheLastCopyChecksTheEnd) {
    const eTempFolder folder;
    const eFileName whole(folder.Write("a.sdl", "{scene 1}"));
    const eFileName open(folder.Write("b.sdl", "{scene 1"));
    const auto readTwice = [](const eFileName& name) {
        eSDLReader first(name, "scene", nullptr);
        eSDLReader second(first);
        EXPECT_EQ(second.GetInt(), 1);
    };
    eReports reports(eReports::Throws);
    EXPECT_EQ(FailureOf([&] { readTwice(whole); }), eFailure());
    EXPECT_EQ(FailureOf([&] { readTwice(open); }), ReaderFailure(553, "Block terminator expected!"));
    EXPECT_EQ(reports.errors().size(), 1u);
}

TEST(SdlReader, AssigningTakesOverTheOthersState) {
    eSDLReader reader = WordReaderOf("1 2");
    eSDLReader other = WordReaderOf("{##x 3} 4");
    other.Grate().push_back(1);
    other.CheckEOF(false);
    reader = other;
    EXPECT_FALSE(reader.CheckEOF());
    EXPECT_EQ(reader.Grate(), eSDLReader::eGrate{1});
    EXPECT_TRUE(reader.Start());
    const eSDLReader& itself = reader;
    reader = itself;
    reader >> begb;
    EXPECT_EQ(reader.GetInt(), 3);
}

TEST(SdlReader, MillionsOfOpenBracketsAreNoDanger) {
    constexpr std::size_t kMany = 1'000'000;
    const std::string open(kMany, '{');
    std::string hidden;
    for (std::size_t i = 0; i < kMany; ++i)
        hidden += "{##";
    const eFailure unterminated = ReaderFailure(292, "Block terminator expected!");
    for (const std::string& text : {open, std::string(kMany, '('), hidden}) {
        eSDLReader reader = ReaderOf(text);
        EXPECT_EQ(FailureOf([&] { reader.SkipBlock(); }), unterminated);
    }
    eSDLReader closed = ReaderOf(std::string(kMany, ')') + "5");
    EXPECT_EQ(closed.GetInt(), 5);
    eSDLReader controls = ReaderOf(std::string(kMany, '('));
    EXPECT_EQ(FailureOf([&] { controls.GetInt(); }), ReaderFailure(352, "Identifier expected!"));
    eSDLReader hides = ReaderOf(hidden);
    EXPECT_EQ(FailureOf([&] { hides.GetInt(); }), unterminated);
    eSDLReader reader = ReaderOf("{" + open + std::string(kMany, '}') + "} 5");
    reader >> begb;
    reader.SkipBlock();
    EXPECT_EQ(reader.GetInt(), 5);
}

TEST(SdlReader, HugeTokensAreRead) {
    const std::string name(3'000'000, 'n');
    const std::string digits(3'000'000, '7');
    eSDLReader reader =
        ReaderOf(name + " \"" + name + "\" " + digits + " 0." + digits + " {#" + name + " ;" + name + "\n 1");
    EXPECT_EQ(reader.GetIdent(), name);
    EXPECT_EQ(reader.GetString(), name);
    EXPECT_EQ(reader.GetInt(), std::numeric_limits<int>::max());
    EXPECT_NEAR(reader.GetFloat(), 0.7777f, 0.001f);
    EXPECT_EQ(reader.GetToken(sdlBlockStart).text, name);
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST(SdlReader, TheDefaultErrorIsAnUnexpectedToken) {
    EXPECT_STREQ(eSDLReader::defaultError, "unexpected token");
}
