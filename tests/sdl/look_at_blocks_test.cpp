// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <array>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/file_name.h>
#include <qzl_io/streams.h>

#include "sdl_source.h"
#include "support/temp_folder.h"

namespace {

constexpr int kLight = 1;
constexpr int kPower = 2;

eSDLKeyword* LightWords() {
    static eSDLKeyword* words;
    static eSDLKeyword light(words, "light", kLight);
    static eSDLKeyword power(words, "power", kPower);
    return words;
}

eSDLReader LightReader(const std::string& text) {
    eSDLReader reader = ReaderOf(text);
    reader.PushKeywords(LightWords());
    return reader;
}

// What reading tells from here on.
std::vector<std::string> Tokens(eSDLReader& reader) {
    std::vector<std::string> tokens;
    for (;;) {
        const eSDLParserToken& token = reader.GetToken();
        if (token.type == sdlNone || token.type == sdlError)
            return tokens;
        tokens.push_back(std::to_string(token.type) + ":" + token.text);
    }
}

} // namespace

TEST(NextBlock, IsTheNameOfTheBlockThatIsNext) {
    const struct {
        const char* text;
        int id;
        const char* name;
    } rows[] = {
        {"{light 1}", kLight, "light"},
        {" ; a comment\n\t{ ; another\n LIGHT 1}", kLight, "LIGHT"},
        {"{lamp 1}", 0, "lamp"},
        {"{%lamp 1}", 0, "%lamp"},
        {"{#mark light 1}", kLight, "light"},
        {"{##hidden lamp {light}} {light 1}", kLight, "light"},
        {"(\"a comment\" {lamp}) {light 1}", kLight, "light"},
        {"{(\"a comment\") light 1}", kLight, "light"},
        {"{light", kLight, "light"},
        {"{1}", 0, ""},
        {"{(+ 1 2)}", 0, ""},
        {"{{light}}", 0, ""},
        {"{}", 0, ""},
        {"{", 0, ""},
        {"}", 0, ""},
        {"light", 0, ""},
        {"1", 0, ""},
        {"(+ 1 2) {light}", 0, ""},
        {"", 0, ""},
        {"$", 0, ""},
    };
    for (const auto& row : rows) {
        eSDLReader reader = LightReader(row.text);
        EXPECT_EQ(reader.NextBlock(), row.id) << row.text;
        EXPECT_EQ(reader.NextBlockName(), row.name) << row.text;
        eSDLReader untouched = LightReader(row.text);
        EXPECT_EQ(Tokens(reader), Tokens(untouched)) << row.text;
    }
}

TEST(NextBlock, LeavesMarksAndTokensAsTheyWere) {
    eSDLReader reader = LightReader("{#a light {#b power 1} {##c power 2} {#d light}}");
    EXPECT_EQ(reader.NextBlock(), kLight);
    EXPECT_EQ(reader.GetBlock(), kLight);
    EXPECT_EQ(reader.NextBlock(), kPower);
    EXPECT_EQ(reader.Token().text, "light");
    reader.Back();
    EXPECT_EQ(reader.GetIdent(), "light");
    EXPECT_EQ(reader.GetBlock(), kPower);
    EXPECT_EQ(reader.GetInt(), 1);
    reader >> endb;
    EXPECT_EQ(reader.NextBlockName(), "light");
    reader.Grate().push_back(1);
    EXPECT_EQ(reader.NextBlockName(), "power");
}

TEST(NextBlock, SeesABlockWhoseNameStandsInTheIncludingSource) {
    const eTempFolder folder;
    eSDLReader reader = LightReader("light 7} 8");
    reader.Include(folder.Write("part.sdl", "1 {"));
    EXPECT_EQ(reader.NextBlock(), 0);
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_EQ(reader.NextBlock(), kLight);
    EXPECT_EQ(reader.NextBlockName(), "light");
    EXPECT_EQ(reader.GetBlock(), kLight);
    EXPECT_EQ(reader.GetInt(), 7);
    reader >> endb;
    EXPECT_EQ(reader.GetInt(), 8);
}

TEST(NextBlock, ObeysTheLimitOfTokens) {
    IO::eMemoryStream stream;
    stream.Write("{lighthouse 1}", 14).Reset();
    eSDLLimits limits;
    limits.tokenBytes = 5;
    eSDLReader reader(&stream, nullptr, limits);
    EXPECT_EQ(FailureOf([&] { static_cast<void>(reader.NextBlock()); }), ReaderFailure(600, "Token limit exceeded!"));
}

TEST(NextBlock, LetsALoopTakeBlocksInAnyOrderAndNameUnknownOnes) {
    eSDLReader reader = LightReader("{light {colour 1 {deep}} {power 5} {beam} {power 6}}");
    std::vector<std::string> unknown;
    std::vector<int> powers;
    for (reader.GetBlock(kLight); !reader.End();) {
        switch (reader.NextBlock()) {
        case kPower:
            reader.GetBlock();
            powers.push_back(reader.GetInt());
            reader >> endb;
            break;
        default:
            unknown.emplace_back(reader.NextBlockName());
            (reader >> begb).SkipBlock();
        }
    }
    reader >> endb;
    EXPECT_EQ(unknown, (std::vector<std::string>{"colour", "beam"}));
    EXPECT_EQ(powers, (std::vector<int>{5, 6}));
}

TEST(NextBlock, WasNoBlockMakesTheLoopReportTheValue) {
    eSDLReader reader = LightReader("7");
    EXPECT_EQ(reader.NextBlock(), 0);
    EXPECT_EQ(FailureOf([&] { reader >> begb; }), ReaderFailure(569, "Block start expected!"));
}

// --- TryGet ---

namespace {

// Whether a value of the type is taken, as text and position tell.
template <class T>
void ExpectTaken(const std::string& text, const T& expected) {
    eSDLReader reader = LightReader(text + " {light}");
    T value{};
    EXPECT_TRUE(reader.TryGet(value)) << text;
    EXPECT_EQ(value, expected) << text;
    EXPECT_TRUE(reader.Start()) << text;
}

template <class T>
void ExpectLeft(const std::string& text, T value) {
    eSDLReader reader = LightReader(text);
    const T before = value;
    EXPECT_FALSE(reader.TryGet(value)) << text;
    EXPECT_EQ(value, before) << text;
    eSDLReader untouched = LightReader(text);
    EXPECT_EQ(Tokens(reader), Tokens(untouched)) << text;
}

} // namespace

TEST(TryGet, TakesAValueOfItsKind) {
    ExpectTaken<int>("7", 7);
    ExpectTaken<int>("(\"comment\") 0x1F", 31);
    ExpectTaken<short>("-7", -7);
    ExpectTaken<char>("65", 'A');
    ExpectTaken<bool>("0", false);
    ExpectTaken<bool>("2", true);
    ExpectTaken<float>("7", 7.0f);
    ExpectTaken<float>("0.5", 0.5f);
    ExpectTaken<float>("(+ 1 2)", 3.0f);
    ExpectTaken<double>("0.1", 0.1);
    ExpectTaken<long long>("-9223372036854775808", std::numeric_limits<long long>::min());
    ExpectTaken<unsigned long long>("18446744073709551615", std::numeric_limits<unsigned long long>::max());
    ExpectTaken<std::size_t>("18446744073709551615", std::numeric_limits<std::size_t>::max());
    ExpectTaken<std::string>("\"a\\n\"", "a\n");
    ExpectTaken<std::wstring>("\"a\"", L"a");
    ExpectTaken<eFileName>("\"a\\\\b\"", eFileName("a/b"));
}

TEST(TryGet, LeavesWhatIsOfAnotherKindAndReportsNothing) {
    for (const char* text : {"0.5 1", "\"7\" 1", "light 1", "}", "{#mark light} 1", "(+ 1 2) 1", ""})
        ExpectLeft<int>(text, 5);
    ExpectLeft<bool>("1.5 2", true);
    ExpectLeft<float>("light 1", 5.0f);
    ExpectLeft<double>("\"1\"", 5.0);
    ExpectLeft<long long>("1.5", 5);
    ExpectLeft<std::string>("light", "before");
    ExpectLeft<std::string>("7", "before");
    ExpectLeft<eFileName>("7", eFileName("before"));
}

TEST(TryGet, ReportsAValueThatDoesNotFitIfTheReaderChecks) {
    eSDLReader reader = ReaderOf("300");
    reader.CheckRange(true);
    char value = 5;
    EXPECT_EQ(FailureOf([&] { reader.TryGet(value); }), ReaderFailure(620, "300 is out of range!"));
    EXPECT_EQ(value, 5);
}

TEST(TryGet, HasFormsForWordsAndBlocks) {
    eSDLReader reader = LightReader("lamp power 1 {power} {light}");
    std::string word = "before";
    EXPECT_FALSE(reader.TryGetKeyword(kPower));
    EXPECT_FALSE(reader.TryGetBlock(kPower));
    EXPECT_TRUE(reader.TryGetIdent(word));
    EXPECT_EQ(word, "lamp");
    EXPECT_FALSE(reader.TryGetKeyword(kLight));
    EXPECT_TRUE(reader.TryGetKeyword(kPower));
    EXPECT_FALSE(reader.TryGetIdent(word));
    EXPECT_EQ(word, "lamp");
    EXPECT_EQ(reader.GetInt(), 1);
    EXPECT_FALSE(reader.TryGetBlock(kLight));
    EXPECT_FALSE(reader.TryGetBlock(0));
    EXPECT_TRUE(reader.TryGetBlock(kPower));
    reader >> endb;
    EXPECT_TRUE(reader.TryGetBlock(kLight));
    reader >> endb;
    EXPECT_FALSE(reader.TryGetBlock(kLight));
}

// --- Names of an enumeration ---

namespace {

enum class eShading { Flat, Smooth, Wire };

constexpr eSDLName<eShading> kShadings[] = {
    {"flat", eShading::Flat}, {"smooth", eShading::Smooth}, {"round", eShading::Smooth}, {"wire", eShading::Wire}};

} // namespace

TEST(SdlNames, StandForTheirValues) {
    eSDLReader reader = LightReader("flat ROUND Smooth");
    EXPECT_EQ(reader.GetName(kShadings), eShading::Flat);
    EXPECT_EQ(reader.GetName(kShadings), eShading::Smooth);
    EXPECT_EQ(reader.GetName(kShadings), eShading::Smooth);
    EXPECT_STREQ(NameOf(kShadings, eShading::Smooth), "smooth");
    EXPECT_EQ(NameOf(kShadings, static_cast<eShading>(7)), nullptr);
}

TEST(SdlNames, MayBeKeywordsAndAnyRange) {
    const std::vector<eSDLName<int>> names = {{"light", 7}, {"other", 8}};
    eSDLReader reader = LightReader("light");
    EXPECT_EQ(reader.GetName(names), 7);
    constexpr std::array<eSDLName<int>, 1> kOne = {{{"one", 1}}};
    eSDLReader another = LightReader("one");
    EXPECT_EQ(another.GetName(kOne), 1);
}

TEST(SdlNames, AreReportedWithTheNearestIfTheyAreUnknown) {
    const struct {
        const char* text;
        int line;
        const char* message;
    } rows[] = {
        {"smoth", 630, "Unknown name 'smoth'! Did you mean 'smooth'?"},
        {"FLTA", 630, "Unknown name 'FLTA'! Did you mean 'flat'?"},
        {"wires", 630, "Unknown name 'wires'! Did you mean 'wire'?"},
        {"gouraud", 630, "Unknown name 'gouraud'!"},
        {"x", 630, "Unknown name 'x'!"},
        {"\"flat\"", 352, "Identifier expected!"},
        {"1", 352, "Identifier expected!"},
        {"}", 352, "Identifier expected!"},
    };
    for (const auto& row : rows) {
        eSDLReader reader = LightReader(row.text);
        EXPECT_EQ(FailureOf([&] { static_cast<void>(reader.GetName(kShadings)); }),
                  ReaderFailure(row.line, row.message));
    }
}

TEST(SdlNames, OfAnySizeAreComparedAndShownInBoundedTime) {
    const std::string word(1u << 20, 'a');
    const std::string longName(1000, 'a');
    const eSDLName<int> names[] = {{longName.c_str(), 1}};
    eSDLReader reader = LightReader(word);
    const eFailure failure = FailureOf([&] { static_cast<void>(reader.GetName(names)); });
    EXPECT_EQ(failure.message, "Unknown name '" + word.substr(0, 100) + "...'!");
}

TEST(SdlNames, ThatAreNotNextAreLeftUnread) {
    eSDLReader reader = LightReader("gouraud 1");
    eShading shading = eShading::Wire;
    EXPECT_FALSE(reader.TryGetName(kShadings, shading));
    EXPECT_EQ(reader.GetIdent(), "gouraud");
    EXPECT_FALSE(reader.TryGetName(kShadings, shading));
    EXPECT_EQ(shading, eShading::Wire);
    EXPECT_EQ(reader.GetInt(), 1);
    eSDLReader another = LightReader("flat");
    EXPECT_TRUE(another.TryGetName(kShadings, shading));
    EXPECT_EQ(shading, eShading::Flat);
}
