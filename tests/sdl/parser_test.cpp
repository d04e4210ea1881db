// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/parser.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/streams.h>

#include "sdl_source.h"
#include "support/reports.h"
#include "turning_cipher.h"

namespace {

eSDLKeyword* words;
eSDLKeyword colorWord(words, "color", 5);

using eParameters = std::map<eStringKey, eStringKey>;

class eTextParser : public eSDLParser {
public:
    explicit eTextParser(const std::string& source, const eParameters& parameters = {},
                         std::vector<eSDLKeyword*> keywordTables = {words})
        : eTextParser(source, parameters, std::make_unique<std::vector<eSDLKeyword*>>(std::move(keywordTables)), {}) {}
    eTextParser(const std::string& source, std::shared_ptr<eSDLCipher> cipher)
        : eTextParser(source, {}, std::make_unique<std::vector<eSDLKeyword*>>(), std::move(cipher)) {}

private:
    eTextParser(const std::string& source, const eParameters& parameters,
                std::unique_ptr<std::vector<eSDLKeyword*>> keywordTables, std::shared_ptr<eSDLCipher> cipher)
        : eSDLParser({}, *std::make_unique<IO::eBufferStream>(source), *keywordTables, parameters, std::move(cipher)),
          tables(std::move(keywordTables)) {}

    std::unique_ptr<std::vector<eSDLKeyword*>> tables;
};

std::string Dump(const eSDLParserToken& token) {
    std::string dump = std::to_string(token.type) + "[" + token.text + "]";
    if (token.type == sdlInt || token.type == sdlFloat || token.type == sdlKeyword)
        dump += "=" + std::to_string(token.intValue);
    return dump;
}

// Every token of the text: its type, its text, and its int value if it has one. The last is the end or the first error.
std::string DumpAll(eSDLParser& parser) {
    std::string dump;
    bool more = true;
    while (more) {
        more = parser.Get() && parser.Token().type != sdlError;
        dump += (dump.empty() ? "" : " ") + (more ? Dump(parser.Token()) : std::to_string(parser.Token().type));
    }
    return dump;
}

std::string DumpAll(const std::string& text) {
    eTextParser parser(text);
    return DumpAll(parser);
}

// Replaces each character by the one with the preceding code.
class eShiftCipher : public eSDLCipher {
public:
    explicit eShiftCipher(std::size_t producedLength) : produced(producedLength) {}
    size_t GetEncodedSize(size_t inputSize) override {
        ++sizesAsked;
        return inputSize;
    }
    size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) override {
        capacity = dstCapacity;
        size = srcSize;
        for (std::size_t at = 0; at < srcSize; ++at)
            static_cast<char*>(dst)[at] = static_cast<char>(static_cast<const char*>(src)[at] - 1);
        return produced;
    }

    std::size_t produced;
    std::size_t capacity = 0;
    std::size_t size = 0;
    int sizesAsked = 0;
};

} // namespace

TEST(SdlParser, CutsTextsIntoTheseTokens) {
    const struct {
        const char* text;
        const char* tokens;
    } rows[] = {
        {"", "0"},
        {"name=5", "1[name] 11[5]=5 0"},
        {"-5", "11[-5]=-5 0"},
        {"+5", "11[+5]=5 0"},
        {"- 5", "13[-] 11[5]=5 0"},
        {"-x", "13[-] 1[x] 0"},
        {"* / + -", "13[*] 13[/] 13[+] 13[-] 0"},
        {"0x1F", "11[31]=31 0"},
        {"0xffffffff", "11[-1]=-1 0"},
        {"0x", "11[0]=0 0"},
        {"0xg", "11[0]=0 1[g] 0"},
        {"0X1F", "11[0]=0 1[X1F] 0"},
        {"-0x10", "11[-0]=0 1[x10] 0"},
        {"0e5", "11[0]=0 1[e5] 0"},
        {"007", "11[007]=7 0"},
        {"2147483647 2147483648 -2147483648 -2147483649",
         "11[2147483647]=2147483647 11[2147483648]=2147483647 11[-2147483648]=-2147483648 "
         "11[-2147483649]=-2147483648 0"},
        {"99999999999999999999999 -99999999999999999999999",
         "11[99999999999999999999999]=2147483647 11[-99999999999999999999999]=-2147483648 0"},
        {"00000000000000000000000000012", "11[00000000000000000000000000012]=12 0"},
        {"1e5", "10[1e5]=100000 0"},
        {"0.5e2", "10[0.5e2]=50 0"},
        {"1.", "10[1.]=1 0"},
        {"1.9 -1.9", "10[1.9]=1 10[-1.9]=-1 0"},
        {"1.2.3", "10[1.2]=1 -1"},
        {"1e+-3", "10[1e+-3]=1 0"},
        {"1e9 3e9 -3e9 1e99 -1e99",
         "10[1e9]=1000000000 10[3e9]=-2147483648 10[-3e9]=-2147483648 10[1e99]=-2147483648 10[-1e99]=-2147483648 0"},
        {"2147483648.0 2147483500.0", "10[2147483648.0]=-2147483648 10[2147483500.0]=2147483520 0"},
        {R"("abc\"def")", R"(3[abc\"def] 0)"},
        {R"("")", "3[] 0"},
        {R"("a\)", "0"},
        {R"("a)", "0"},
        {"\"a\n", "-1"},
        {"\"a\r", "-1"},
        {"\"a\\\nb\"", "3[a\\\nb] 0"},
        {"; comment", "0"},
        {"; comment\n1", "11[1]=1 0"},
        {"; comment\r1", "11[1]=1 0"},
        {"a;b\nc", "1[a] 1[c] 0"},
        {"{", "4[] 0"},
        {"{#if-1", "4[if-1] 0"},
        {"{#a#b+_9 x", "4[a#b+_9] 1[x] 0"},
        {"{#", "4[] 0"},
        {"{ #x", "4[] -1"},
        {"{a}", "4[] 1[a] 5[] 0"},
        {"(a)", "7[] 1[a] 8[] 0"},
        {"Color COLOR color colors %color", "2[Color]=5 2[COLOR]=5 2[color]=5 1[colors] 1[%color] 0"},
        {"%a%b _x9", "1[%a] 1[%b] 1[_x9] 0"},
        {"ident", "1[ident] 0"},
        {"12", "11[12]=12 0"},
        {"\t\r\n =a", "1[a] 0"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DumpAll(row.text), row.tokens) << row.text;
}

TEST(SdlParser, AnIllegalCharacterIsAnErrorThatStays) {
    for (int byte = 1; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool alphanumeric = byte < 128 && std::isalnum(byte);
        const bool legal = alphanumeric || std::string_view("\t\n\r =_%(){}-+*/\";").find(c) != std::string_view::npos;
        if (legal)
            continue;
        eTextParser parser(std::string("  ") + c + "x");
        for (int again = 0; again < 3; ++again) {
            EXPECT_TRUE(parser.Get());
            EXPECT_EQ(parser.Token().type, sdlError) << byte;
            EXPECT_EQ(parser.Token().text, "") << byte;
            EXPECT_EQ(*parser.Cptr(), c) << byte;
        }
    }
}

TEST(SdlParser, AStringBrokenByALineEndIsAnErrorAtTheLineEnd) {
    eTextParser parser("1 \"abc\n 2");
    parser.Get();
    EXPECT_TRUE(parser.Get());
    EXPECT_EQ(parser.Token().type, sdlError);
    EXPECT_EQ(parser.Token().text, "abc");
    EXPECT_EQ(*parser.Cptr(), '\n');
    EXPECT_EQ(parser.Line(), 1);
    EXPECT_TRUE(parser.Get());
    EXPECT_EQ(parser.Token().intValue, 2);
    EXPECT_EQ(parser.Line(), 2);
}

TEST(SdlParser, IntegersAlsoHaveAFloatValue) {
    eTextParser parser("16777217 0x10 -7 0xFFFFFFFF");
    for (const float value : {16777216.0f, 16.0f, -7.0f, -1.0f}) {
        parser.Get();
        EXPECT_EQ(parser.Token().floatValue, value);
    }
}

TEST(SdlParser, FloatsAreTheNearestToTheirText) {
    const struct {
        const char* text;
        float value;
    } rows[] = {{"0.1", 0.1f},
                {"16777217.0", 16777216.0f},
                {"16777217.00000001", 16777218.0f},
                {"16777219.0", 16777220.0f},
                {"3.4028235e38", std::numeric_limits<float>::max()},
                {"1e-45", std::numeric_limits<float>::denorm_min()},
                {"0.000000000000000000000000000000000000000000001", std::numeric_limits<float>::denorm_min()},
                {"1e39", std::numeric_limits<float>::infinity()},
                {"1.00000005960464477539062500001", 1.0000001f},
                {"1.000000059604644775390625", 1.0f},
                {"9007199254740993.0", 9007199254740992.0f},
                {"47.11184883117676", 47.11185073852539f},
                {"0.05773230455815792", 0.05773230269551277f},
                {"123456789012345678.5", 123456789012345678.5f},
                {"+2.5", 2.5f},
                {"1e", 1.0f},
                {"1.5e+", 1.5f}};
    for (const auto& row : rows) {
        eTextParser parser(row.text);
        parser.Get();
        EXPECT_EQ(parser.Token().type, sdlFloat) << row.text;
        EXPECT_EQ(parser.Token().floatValue, row.value) << row.text;
    }
    eTextParser parser("-0.0");
    parser.Get();
    EXPECT_TRUE(std::signbit(parser.Token().floatValue));
}

TEST(SdlParser, NumbersWithExponentsAreTheNearestFloats) {
    std::mt19937_64 random(13);
    const std::vector<eSDLKeyword*> tables;
    std::string text;
    for (int i = 0; i < 20'000; ++i) {
        std::string number = std::to_string((random() >> (random() % 64)) | 1);
        if (random() % 2)
            number.insert(1 + random() % number.size(), ".");
        number += std::string(random() % 2 ? "e" : "E") + (random() % 2 ? "-" : "") + std::to_string(random() % 45);
        text += number + "\n";
    }
    IO::eBufferStream stream(text);
    eSDLParser parser({}, stream, tables, {}, nullptr);
    while (parser.Get()) {
        ASSERT_EQ(parser.Token().type, sdlFloat);
        ASSERT_EQ(parser.Token().floatValue, std::strtof(parser.Token().text.c_str(), nullptr)) << parser.Token().text;
    }
    EXPECT_EQ(parser.Line(), 20'001);
}

TEST(SdlParser, CountsLinesByLineFeedsWhereverTheyAre) {
    eTextParser parser("a\r\nb ; comment\n\n\"x\\\ny\" \r c\n");
    for (const int line : {1, 2, 5, 5}) {
        EXPECT_TRUE(parser.Get());
        EXPECT_EQ(parser.Line(), line) << parser.Token().text;
    }
    EXPECT_FALSE(parser.Get());
    EXPECT_EQ(parser.Line(), 6);
}

TEST(SdlParser, BackReturnsOnce) {
    eTextParser parser("one\n 0x2 three");
    parser.Get();
    parser.Get();
    EXPECT_EQ(parser.Token().text, "2");
    parser.Back();
    EXPECT_EQ(parser.Token().text, "one");
    EXPECT_EQ(parser.Token().type, sdlIdent);
    EXPECT_EQ(parser.Line(), 1);
    parser.Back();
    EXPECT_EQ(parser.Token().text, "one");
    parser.Get();
    EXPECT_EQ(Dump(parser.Token()), "11[2]=2");
    EXPECT_EQ(parser.Line(), 2);
    parser.Get();
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "11[2]=2");
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "11[2]=2");
    EXPECT_EQ(parser.Line(), 2);
}

TEST(SdlParser, BackReturnsToWhereItWasAlsoWithoutAnyLookAtTheToken) {
    eTextParser parser("0x10 \"s\" last");
    parser.Get();
    parser.Get();
    parser.Back();
    EXPECT_EQ(Dump(parser.StateCurrent().token), "11[16]=16");
    parser.Get();
    parser.Get();
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "3[s]");
}

TEST(SdlParser, BackFromTheStartAndFromTheEnd) {
    eTextParser parser("a");
    parser.Back();
    EXPECT_TRUE(parser.Get());
    EXPECT_FALSE(parser.Get());
    EXPECT_EQ(parser.Token().type, sdlNone);
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "1[a]");
    EXPECT_FALSE(parser.Get());
    EXPECT_FALSE(parser.Get());
}

TEST(SdlParser, BackReturnsToTheStateThatIsSet) {
    eTextParser parser("a b c");
    parser.Get();
    const eSDLParserState state = parser.StateCurrent();
    parser.Get();
    parser.Get();
    parser.StatePrev(state);
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "1[a]");
    EXPECT_EQ(parser.StateCurrent().position, state.position);
    parser.Get();
    EXPECT_EQ(Dump(parser.Token()), "1[b]");
}

TEST(SdlParser, AHeldTokenFollowsTheText) {
    eTextParser parser("a 0x1f \"s\" {#m");
    const eSDLParserToken& token = parser.Token();
    for (const char* expected : {"1[a]", "11[31]=31", "3[s]", "4[m]"}) {
        parser.Get();
        EXPECT_EQ(Dump(token), expected);
    }
    parser.Back();
    EXPECT_EQ(Dump(token), "3[s]");
}

TEST(SdlParser, ATokenMayBeChangedAndIsKeptSoForBack) {
    eTextParser parser("a b");
    parser.Get();
    parser.Token().text = "changed";
    parser.Token().type = sdlString;
    parser.Get();
    EXPECT_EQ(Dump(parser.Token()), "1[b]");
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "3[changed]");
}

TEST(SdlParser, AChangedTokenIsKeptForBackEvenWhereItsLengthStays) {
    eTextParser parser("one two");
    parser.Get();
    parser.Token().text = "ONE";
    parser.Get();
    EXPECT_EQ(Dump(parser.Token()), "1[two]");
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "1[ONE]");
}

TEST(SdlParser, TokensOfEveryLengthKeepTheirTextsAndTheChangesToThem) {
    const auto word = [](std::size_t length) { return std::string(length, static_cast<char>('a' + length % 26)); };
    for (std::size_t before = 1; before <= 40; ++before)
        for (std::size_t after = 1; after <= 40; ++after) {
            eTextParser parser(word(before) + ' ' + word(after) + " { end");
            for (const bool change : {false, true}) {
                parser.Get();
                ASSERT_EQ(parser.Token().text, word(change ? after : before));
                std::string expected = parser.Token().text;
                if (change)
                    expected.back() = parser.Token().text.back() = '!';
                parser.Get();
                ASSERT_EQ(parser.Token().text, change ? "" : word(after));
                parser.Back();
                ASSERT_EQ(parser.Token().text, expected) << before << " and " << after;
            }
        }
}

TEST(SdlParser, AnalysesTheTokenJustCutOnceMore) {
    class eAnalysing : public eSDLParser {
    public:
        using eSDLParser::AnalyseToken;
        using eSDLParser::eSDLParser;
    };
    const std::string text = "color 0x1F -7 2.5 \"color\"";
    IO::eBufferStream stream(text);
    std::vector<eSDLKeyword*> tables;
    eAnalysing parser("", stream, tables, {}, nullptr);
    parser.Get();
    EXPECT_EQ(Dump(parser.Token()), "1[color]");
    tables.push_back(words);
    parser.AnalyseToken();
    EXPECT_EQ(Dump(parser.Token()), "2[color]=5");
    for (const auto& [expected, value] :
         {std::pair("11[31]=31", 31.0f), std::pair("11[-7]=-7", -7.0f), std::pair("10[2.5]=2", 2.5f)}) {
        parser.Get();
        parser.Token().intValue = 0;
        parser.Token().floatValue = 0;
        parser.AnalyseToken();
        EXPECT_EQ(Dump(parser.Token()), expected);
        EXPECT_EQ(parser.Token().floatValue, value);
    }
    parser.Get();
    parser.AnalyseToken();
    EXPECT_EQ(Dump(parser.Token()), "3[color]");
}

TEST(SdlParser, AnalysesTheTokenAsItIsNow) {
    class eAnalysing : public eSDLParser {
    public:
        using eSDLParser::eSDLParser;

        std::string Analysed(eSDLParserLexType type, const std::string& changed) {
            Token().type = type;
            Token().text = changed;
            Token().intValue = 77;
            Token().floatValue = 77;
            AnalyseToken();
            const eSDLParserToken& token = StateCurrent().token;
            return std::to_string(token.type) + "[" + token.text + "] " + std::to_string(token.intValue) + " " +
                   ToString(token.floatValue);
        }
    };
    const struct {
        eSDLParserLexType type;
        const char* text;
        const char* expected;
    } rows[] = {
        {sdlIdent, "COLOR", "2[COLOR] 5 77"},
        {sdlIdent, "colour", "1[colour] 77 77"},
        {sdlIdent, "a color that is long", "1[a color that is long] 77 77"},
        {sdlBlockStart, "#mark", "4[mark] 77 77"},
        {sdlBlockStart, "##mark of more than fifteen", "4[#mark of more than fifteen] 77 77"},
        {sdlBlockStart, "", "4[] 77 77"},
        {sdlInt, "-12", "11[-12] -12 -12"},
        {sdlInt, "0x10", "11[0x10] 16 16"},
        {sdlInt, "99999999999", "11[99999999999] 2147483647 21474836e2"},
        {sdlFloat, "1.5", "10[1.5] 1 1.5"},
        {sdlFloat, "-3e9", "10[-3e9] -2147483648 -3e9"},
        {sdlFloat, "3e9", "10[3e9] -2147483648 3e9"},
        {sdlHex, "0x1F", "11[31] 31 31"},
        {sdlHex, "0xffffffff", "11[-1] -1 -1"},
        {sdlString, "color\\n", "3[color\\n] 77 77"},
        {sdlKeyword, "color", "2[color] 77 77"},
        {sdlOperator, "+", "13[+] 77 77"},
        {sdlNone, "5", "0[5] 77 77"},
    };
    const std::vector<eSDLKeyword*> tables{words};
    for (const char* source : {"", "word", "0x7F", "\"text of more than fifteen characters\"", "{#mark", "12"})
        for (const auto& row : rows) {
            const std::string text = source + std::string(" next");
            IO::eBufferStream stream(text);
            eAnalysing parser("", stream, tables, {}, nullptr);
            parser.Get();
            EXPECT_EQ(parser.Analysed(row.type, row.text), row.expected) << source;
            EXPECT_EQ(parser.Analysed(row.type, row.text), row.expected) << source;
            const std::string analysed = parser.Token().text;
            parser.Get();
            parser.Back();
            EXPECT_EQ(parser.Token().text, analysed);
        }
}

TEST(SdlParser, StartsWithAnEmptyTokenInLineOne) {
    eTextParser parser("x");
    EXPECT_EQ(Dump(parser.StateCurrent().token), "0[]");
    EXPECT_EQ(parser.Line(), 1);
    EXPECT_EQ(*parser.Cptr(), 'x');
    EXPECT_EQ(eSDLParserState().line, 1);
    EXPECT_EQ(eSDLParserState().position, nullptr);
}

TEST(SdlParser, WithoutATableEveryWordIsAnIdentifier) {
    for (const std::vector<eSDLKeyword*>& tables :
         {std::vector<eSDLKeyword*>{}, std::vector<eSDLKeyword*>{nullptr}, std::vector<eSDLKeyword*>{words, nullptr}}) {
        eTextParser parser("color", {}, tables);
        parser.Get();
        EXPECT_EQ(parser.Token().type, sdlIdent);
    }
}

TEST(SdlParser, ReplacesParametersBeforeCutting) {
    const struct {
        const char* text;
        eParameters parameters;
        const char* tokens;
    } rows[] = {
        {"size %n;", {{"n", "7"}}, "1[size] 11[7]=7 0"},
        {"\"%n\" ;%n", {{"n", "7\n8"}}, "-1"},
        {"\"%n\" ;%n\n", {{"n", "7"}}, "3[7] 0"},
        {";%n\n", {{"n", "c\n8"}}, "11[8]=8 0"},
        {"%ab", {{"a", "1"}, {"ab", "2"}}, "11[1]=1 1[b] 0"},
        {"%10 %1", {{"1", "x"}, {"10", "y"}}, "1[x0] 1[x] 0"},
        {"%a", {{"a", "%b"}, {"b", "9"}}, "11[9]=9 0"},
        {"%b", {{"a", "9"}, {"b", "%a"}}, "1[%a] 0"},
        {"%a", {{"a", "%a%a"}}, "1[%a] 1[%a] 0"},
        {"a%n%n%nb", {{"n", " "}}, "1[a] 1[b] 0"},
        {"%n", {{"n", ""}}, "0"},
        {"%%nn", {{"n", ""}}, "1[%n] 0"},
        {"%n", {}, "1[%n] 0"},
    };
    for (const auto& row : rows) {
        eTextParser parser(row.text, row.parameters);
        EXPECT_EQ(DumpAll(parser), row.tokens) << row.text;
    }
}

TEST(SdlParser, ReadsADefineAsASource) {
    const std::vector<eSDLKeyword*> tables{words};
    eSDLParser parser(eDefine{"box", "color %0"}, tables, {{"0", "3"}});
    EXPECT_EQ(parser.Name(), "define 'box'");
    EXPECT_FALSE(parser.IsFile());
    EXPECT_EQ(DumpAll(parser), "2[color]=5 11[3]=3 0");
}

TEST(SdlParser, IsAFilesWhenItHasAName) {
    const std::string text = "a";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    EXPECT_TRUE(eSDLParser("a.sdl", stream, tables, {}, nullptr).IsFile());
    EXPECT_FALSE(eSDLParser("", stream, tables, {}, nullptr).IsFile());
}

TEST(SdlParser, ReadsFromTheStreamsPositionToItsEnd) {
    const std::string text = "one two";
    IO::eBufferStream stream(text);
    stream.Seek(4, IO::eSeekDir::Begin);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("", stream, tables, {}, nullptr);
    EXPECT_EQ(DumpAll(parser), "1[two] 0");
    EXPECT_EQ(stream.Position(), 7u);
}

TEST(SdlParser, ReadsTextsOfManyPieces) {
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += std::to_string(i) + "\n";
    eTextParser parser(text);
    for (int i = 0; i < 200000; ++i) {
        ASSERT_TRUE(parser.Get());
        ASSERT_EQ(parser.Token().intValue, i);
        ASSERT_EQ(parser.Line(), i + 1);
    }
    EXPECT_FALSE(parser.Get());
}

TEST(SdlParser, AZeroByteEndsTheText) {
    EXPECT_EQ(DumpAll(std::string("a\0b", 3)), "1[a] 0");
    EXPECT_EQ(DumpAll(std::string("\"a\0b\"", 5)), "0");
    EXPECT_EQ(DumpAll(std::string("\0", 1)), "0");
}

TEST(SdlParser, ReadsThroughTheCipher) {
    const auto cipher = std::make_shared<eShiftCipher>(5);
    eTextParser parser("bc!23", cipher);
    EXPECT_EQ(DumpAll(parser), "1[ab] 11[12]=12 0");
    EXPECT_EQ(cipher->capacity, 5u);
    EXPECT_EQ(cipher->size, 5u);
    EXPECT_EQ(cipher->sizesAsked, 0);
    EXPECT_EQ(cipher.use_count(), 1);
}

TEST(SdlParser, CutsTheTextToWhatTheCipherProduced) {
    for (const std::size_t produced : {std::size_t{2}, std::size_t{5}, std::size_t{100}}) {
        eTextParser parser("bc!23", std::make_shared<eShiftCipher>(produced));
        EXPECT_EQ(DumpAll(parser), produced == 2 ? "1[ab] 0" : "1[ab] 11[12]=12 0") << produced;
    }
}

TEST(SdlParser, ReadsAParameterAsItIsWritten) {
    eTextParser parser("size(a \"b\"; (c\\) rest");
    parser.Get();
    EXPECT_EQ(parser.GetParameter(), "a \"b\"; (c\\");
    EXPECT_EQ(DumpAll(parser), "1[rest] 0");
}

TEST(SdlParser, DoesNotCountTheLinesOfAParameter) {
    eTextParser parser("size(\n\n)\nrest");
    parser.Get();
    EXPECT_EQ(parser.GetParameter(), "\n\n");
    EXPECT_EQ(parser.Line(), 1);
    parser.Get();
    EXPECT_EQ(parser.Line(), 2);
}

TEST(SdlParser, ReportsParametersWithoutParentheses) {
    const struct {
        const char* text;
        const char* message;
        std::ptrdiff_t position;
    } rows[] = {{"size (1)", "'(' required", 5}, {"size", "'(' required", 4}, {"size(1", "')' required", 5}};
    for (const auto& row : rows) {
        eTextParser parser(row.text);
        const char* const begin = parser.Cptr();
        parser.Get();
        const eFailure failure = FailureOf([&parser] { parser.GetParameter(); });
        EXPECT_EQ(failure.message, row.message) << row.text;
        EXPECT_EQ(failure.unit, "internal/src/bios/qzl_io/sdl_parser");
        EXPECT_GT(failure.line, 0);
        EXPECT_EQ(parser.Cptr() - begin, row.position) << row.text;
    }
}

TEST(SdlParser, ConsumesTheCharacterThatShouldHaveBeenAParenthesis) {
    eTextParser parser("size:1");
    parser.Get();
    EXPECT_EQ(FailureOf([&parser] { parser.GetParameter(); }).message, "'(' required");
    EXPECT_EQ(DumpAll(parser), "11[1]=1 0");
}

TEST(SdlParser, ShowsItsPlace) {
    const std::string text = "one\r\ntwo three\r\nfour\r\n5\n6\n7\n8\n";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("dir/a.sdl", stream, tables, {}, nullptr);
    EXPECT_EQ(parser.GetContext(), "1: \xABone\n2: two three\n3: four\n4: 5\n5: 6\n");
    parser.Get();
    EXPECT_EQ(parser.GetContext(), "1: one\xAB\n2: two three\n3: four\n4: 5\n5: 6\n");
    parser.Get();
    EXPECT_EQ(parser.DSE_Title(), "\"dir/a.sdl\"");
    EXPECT_EQ(parser.DSE_Brief(), ", 2");
    EXPECT_EQ(parser.DSE_Full(), "2: two\xAB three\n3: four\n4: 5\n5: 6\n6: 7\n");
    for (int i = 0; i < 5; ++i)
        parser.Get();
    EXPECT_EQ(parser.GetContext(), "6: 7\xAB\n7: 8\n");
}

TEST(SdlParser, HasNoPlaceToShowWhileItsTextIsStillBeingRead) {
    const eReports reports;
    const unsigned char bytes[] = {'a', 'b', ' ', 'c'};
    IO::eBufferStream stream(bytes, sizeof bytes, sizeof bytes + 5);
    const std::vector<eSDLKeyword*> tables;
    EXPECT_THROW(eSDLParser("cut.sdl", stream, tables, {}, nullptr), xError::eException);
    ASSERT_EQ(reports.errors().size(), 2u);
    EXPECT_EQ(reports.errors()[0].message, "Attempt to read beyond the stream!");
    EXPECT_EQ(reports.errors()[0].context, "BufferStream(off:0, ptr:4, end:4, eos:9, buff:4)\n\"cut.sdl\", 1\n");
    EXPECT_EQ(reports.errors()[1].message, "cut.sdl - read error!");
}

// An earlier call has asked for too much.
TEST(SdlParser, ReadsAStreamThatWasBadAlready) {
    eTurningCipher cipher;
    const auto notOwned = [](eSDLCipher*) {};
    for (const bool enciphered : {false, true}) {
        std::string text = "1 2 3";
        if (enciphered)
            std::transform(text.begin(), text.end(), text.begin(), [](char byte) { return static_cast<char>(~byte); });
        IO::eBufferStream stream(text);
        stream.Enable(IO::StreamMode::Bad);
        const std::vector<eSDLKeyword*> tables;
        const std::shared_ptr<eSDLCipher> used(enciphered ? &cipher : nullptr, notOwned);
        eSDLParser parser("n", stream, tables, {}, used);
        eTextParser plain("1 2 3");
        EXPECT_EQ(DumpAll(parser), DumpAll(plain));
        EXPECT_TRUE(stream.Enabled(IO::StreamMode::Bad));
    }
}

TEST(SdlParser, DoesNotTakeAStreamForAWholeTextThatEndsEarly) {
    eTurningCipher cipher;
    const auto notOwned = [](eSDLCipher*) {};
    const unsigned char bytes[] = {'1', ' ', '2', ' '};
    for (const bool wasBad : {false, true})
        for (const char* name : {"bad.sdl", ""})
            for (const bool enciphered : {false, true}) {
                IO::eBufferStream stream(bytes, sizeof bytes, sizeof bytes + 5);
                stream.Disable(IO::StreamMode::Errors);
                if (wasBad)
                    stream.Enable(IO::StreamMode::Bad);
                const std::vector<eSDLKeyword*> tables;
                const std::shared_ptr<eSDLCipher> used(enciphered ? &cipher : nullptr, notOwned);
                const auto load = [&] { eSDLParser parser(name, stream, tables, {}, used); };
                EXPECT_EQ(FailureOf(load), (eFailure{"internal/src/bios/qzl_io/sdl_parser", 120,
                                                     (*name ? name : std::string("Stream")) + " - read error!"}));
                stream.Seek(0, IO::eSeekDir::Begin);
                EXPECT_NE(ContextOf(load).find("The source could not be read to its end."), std::string::npos);
            }
}

TEST(SdlParser, ShowsItsPlaceAtTheEdgesOfTheText) {
    const struct {
        const char* text;
        int tokens;
        const char* context;
    } rows[] = {
        {"", 0, ""},
        {"\n", 0, "1: \xAB\n"},
        {"a", 0,
         "1: \xAB"
         "a"},
        {"a", 1, "1: a"},
        {"\n", 1, ""},
        {"a\n", 2, ""},
        {"a\r", 1, "1: a\xAB"},
        {"\"a\nb", 1, "1: \"a\xAB\n2: b"},
        {"a\n\n\n$", 2, "4: \xAB$"},
    };
    for (const auto& row : rows) {
        eTextParser parser(row.text);
        for (int i = 0; i < row.tokens; ++i)
            parser.Get();
        EXPECT_EQ(parser.GetContext(), row.context) << row.text << " after " << row.tokens;
    }
}

TEST(SdlParser, WithoutANameHasNoTitle) {
    EXPECT_EQ(eTextParser("a").DSE_Title(), "");
}

TEST(SdlParser, ACopyGoesOnByItself) {
    const std::vector<eSDLKeyword*> tables{words};
    const std::string text = "0x10 color \"x\" 4";
    IO::eBufferStream stream(text);
    auto parser = std::make_unique<eSDLParser>("n", stream, tables, eParameters{}, nullptr);
    parser->Get();
    parser->Get();
    eSDLParser copy(*parser);
    EXPECT_EQ(DumpAll(*parser), "3[x] 11[4]=4 0");
    parser.reset();
    EXPECT_EQ(copy.Name(), "n");
    EXPECT_TRUE(copy.IsFile());
    EXPECT_EQ(Dump(copy.Token()), "2[color]=5");
    copy.Back();
    EXPECT_EQ(Dump(copy.Token()), "11[16]=16");
    EXPECT_EQ(DumpAll(copy), "2[color]=5 3[x] 11[4]=4 0");
    EXPECT_EQ(copy.DSE_Full(), "1: 0x10 color \"x\" 4");
}

TEST(SdlParser, ACopyMadeBeforeTheFirstTokenStartsAtTheBeginning) {
    const std::string text = "one\ntwo";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    auto parser = std::make_unique<eSDLParser>("", stream, tables, eParameters{}, nullptr);
    eSDLParser copy(*parser);
    parser.reset();
    EXPECT_STREQ(copy.Cptr(), text.c_str());
    copy.Back();
    EXPECT_EQ(Dump(copy.Token()), "0[]");
    EXPECT_EQ(DumpAll(copy), "1[one] 1[two] 0");
    EXPECT_EQ(copy.Line(), 2);
}

TEST(SdlParser, AnEmptyPlaceToReturnToIsIgnored) {
    eTextParser parser("a b");
    parser.Get();
    parser.StatePrev(eSDLParserState());
    parser.Back();
    EXPECT_EQ(Dump(parser.Token()), "1[a]");
}

TEST(SdlParser, TokenTypesHaveTheirNumbers) {
    const std::pair<eSDLParserLexType, int> rows[] = {
        {sdlError, -1},     {sdlNone, 0},     {sdlIdent, 1},   {sdlKeyword, 2}, {sdlString, 3},
        {sdlBlockStart, 4}, {sdlBlockEnd, 5}, {sdlBlockId, 6}, {sdlOpen, 7},    {sdlClose, 8},
        {sdlNumber, 9},     {sdlFloat, 10},   {sdlInt, 11},    {sdlHex, 12},    {sdlOperator, 13}};
    for (const auto& [type, number] : rows)
        EXPECT_EQ(static_cast<int>(type), number);
    EXPECT_EQ(sizeof(eSDLParserLexType), 4u);
}

TEST(SdlParser, TextsOfManyLargePagesAreReadWhole) {
    std::string text;
    for (int i = 0; i < 700'000; ++i)
        text += std::to_string(i) + '\n';
    ASSERT_GT(text.size(), 4u * 1024 * 1024);
    eTextParser parser(text);
    for (int i = 0; i < 700'000; ++i) {
        ASSERT_TRUE(parser.Get());
        ASSERT_EQ(parser.StateCurrent().token.intValue, i);
    }
    EXPECT_FALSE(parser.Get());
    EXPECT_EQ(parser.Line(), 700'001);
}
