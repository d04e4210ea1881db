// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include "open_reader.h"
#include "support/reports.h"
#include "support/temp_folder.h"
#include "turning_cipher.h"

namespace {

using testing::HasSubstr;

constexpr char kSource[] = "Source limit exceeded!";
constexpr char kToken[] = "Token limit exceeded!";
constexpr char kInclude[] = "Include limit exceeded!";

using eParameters = std::map<eStringKey, eStringKey>;

constexpr char kReaderUnit[] = "internal/src/bios/qzl_io/sdl_reader";
constexpr char kParserUnit[] = "internal/src/bios/qzl_io/sdl_parser";

// Reads documents in memory with limits. What it reports is kept, and the reader throws by itself.
class SdlLimits : public testing::Test {
protected:
    template <class eRead>
    void ExpectReport(const eRead& read, const std::string& message, const std::string& unit, int line) {
        reports.Clear();
        EXPECT_THROW(read(), xError::eException);
        ASSERT_EQ(MessagesOf(reports.errors()), std::vector<std::string>{message});
        EXPECT_EQ(reports.errors()[0].file, unit);
        EXPECT_EQ(reports.errors()[0].line, line);
    }

    template <class eRead>
    void ExpectNoReport(const eRead& read) {
        reports.Clear();
        EXPECT_NO_THROW(read());
        EXPECT_TRUE(reports.errors().empty());
    }

    eReports reports;
    const eTempFolder folder;
    eSDLKeyword* words = nullptr;
};

class eLimitedReader : public eOpenReader {
public:
    eLimitedReader(const std::string& text, const eSDLLimits& limits)
        : eOpenReader(std::make_unique<IO::eBufferStream>(text).get(), nullptr, limits) {}

    using eSDLReader::NewParser;
    using eSDLReader::PushParser;
};

} // namespace

TEST_F(SdlLimits, ASourceOfMoreBytesIsReportedAndNotRead) {
    const std::string text = "1 2 3";
    const eFileName file(folder.Write("a.sdl", text));
    const eFileNameW wide(folder.NameW(L"a.sdl"));
    const auto cipher = std::make_shared<eTurningCipher>();
    const std::vector<eSDLKeyword*> tables;
    for (const unsigned long long most : {4ULL, 5ULL}) {
        const eSDLLimits limits{.sourceBytes = most};
        IO::eMemoryStream stream;
        const auto rewind = [&] {
            stream.Clear();
            stream.Write(text.data(), text.size());
            stream.Reset();
        };
        const std::vector<std::function<void()>> openings = {
            [&] { eSDLReader reader(&stream, nullptr, limits); },
            [&] { eSDLReader reader(&stream, cipher, limits); },
            [&] { eSDLReader reader(file, nullptr, limits); },
            [&] { eSDLReader reader(wide, nullptr, limits); },
            [&] { eSDLReader reader(file, words, nullptr, limits); },
            [&] { eSDLParser parser("", stream, tables, {}, nullptr, limits); },
            [&] {
                eSDLParser parser(eDefine{"d", text}, tables, {}, limits);
            },
        };
        for (const auto& open : openings) {
            rewind();
            if (most < text.size())
                ExpectReport(open, kSource, kParserUnit, 130);
            else
                ExpectNoReport(open);
            EXPECT_TRUE(stream.Position() == 0 || most == text.size());
        }
    }
    EXPECT_TRUE(cipher->inputs.size() == 1);
}

TEST_F(SdlLimits, AReaderOfASignatureHasThemToo) {
    const eFileName file(folder.Write("a.sdl", "{scene \"text\"}"));
    const eFileNameW wide(folder.NameW(L"a.sdl"));
    ExpectReport([&] { eSDLReader reader(file, "scene", nullptr, {.sourceBytes = 13}); }, kSource, kParserUnit, 130);
    ExpectReport([&] { eSDLReader reader(wide, "scene", nullptr, {.tokenBytes = 4}); }, kToken, kReaderUnit, 600);
    ExpectNoReport([&] {
        eSDLReader reader(file, "scene", nullptr, {.sourceBytes = 14, .tokenBytes = 5});
        EXPECT_EQ(reader.GetString(), "text");
    });
}

TEST_F(SdlLimits, ParametersMayNotMakeASourceLargerNotEvenForAWhile) {
    const eParameters parameters = {{"a", "12345"}, {"b", ""}};
    const std::vector<eSDLKeyword*> tables;
    const eDefine define{"d", "%a %b %a"};
    for (const unsigned long long most : {13ULL, 14ULL}) {
        const auto open = [&] {
            eSDLParser parser(define, tables, parameters, {.sourceBytes = most});
            EXPECT_EQ(std::string(parser.Cptr()), "12345  12345");
        };
        if (most == 13)
            ExpectReport(open, kSource, kParserUnit, 130);
        else
            ExpectNoReport(open);
    }
}

TEST_F(SdlLimits, ATokenOfAnyKindThatIsLongerIsReportedAndStaysUnread) {
    static eSDLKeyword* table;
    static const eSDLKeyword word(table, "keyword", 7);
    static const eSDLKeyword longWord(table, "a_keyword_of_many_characters", 8);
    struct eRow {
        std::string token;
        std::function<void(eLimitedReader&)> read;
        std::size_t length;
    };
    const eRow rows[] = {
        {"12345678", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 12345678); }, 8},
        {"-1234567", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), -1234567); }, 8},
        {"12345.25", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 12345.25f); }, 8},
        {"1000e-03", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 1); }, 8},
        {"0x001234", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 0x1234); }, 8},
        {"00000001", [](auto& reader) { EXPECT_TRUE(reader.GetBool()); }, 8},
        {"\"12345678\"", [](auto& reader) { EXPECT_EQ(reader.GetString(), "12345678"); }, 8},
        {"\"12345678\"", [](auto& reader) { EXPECT_EQ(reader.GetStringW(), L"12345678"); }, 8},
        {"\"1234\\n78\"", [](auto& reader) { EXPECT_EQ(reader.GetString(), "1234\n78"); }, 8},
        {"\"\\\n2345678\"", [](auto& reader) { reader.GetString(); }, 9},
        {"a2345678", [](auto& reader) { EXPECT_EQ(reader.GetIdent(), "a2345678"); }, 8},
        // Longer than what a reader takes without asking for the limit.
        {"\"123456789012345678901234\"",
         [](auto& reader) { EXPECT_EQ(reader.GetString(), "123456789012345678901234"); }, 24},
        {"\"123456789012345678901234\"",
         [](auto& reader) { EXPECT_EQ(reader.GetStringW(), L"123456789012345678901234"); }, 24},
        {"1 \"123456789012345678901234\"",
         [](auto& reader) {
             EXPECT_EQ(reader.GetInt(), 1);
             EXPECT_EQ(reader.GetString(), "123456789012345678901234");
         },
         24},
        {"000000000000000000000001", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 1); }, 24},
        {"1.0000000000000000000000", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 1); }, 24},
        {"1000000000000.0000e-0012", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 1); }, 24},
        {"0x0000000000000000001234", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 0x1234); }, 24},
        {"a234567890123456", [](auto& reader) { EXPECT_EQ(reader.GetIdent(), "a234567890123456"); }, 16},
        {"a2345678901234567", [](auto& reader) { EXPECT_EQ(reader.GetIdent(), "a2345678901234567"); }, 17},
        {"a23456789012345678901234", [](auto& reader) { EXPECT_EQ(reader.GetIdent(), "a23456789012345678901234"); },
         24},
        {"a_keyword_of_many_characters", [](auto& reader) { EXPECT_EQ(reader.GetKeyword(), 8); }, 28},
        {"{a_keyword_of_many_characters", [](auto& reader) { EXPECT_EQ(reader.GetBlock(8), 8); }, 28},
        {"{#34567890123456789012345678 9}", [](auto& reader) { reader >> begb; }, 26},
        {"a2345678", [](auto& reader) { EXPECT_EQ(reader.GetToken().text, "a2345678"); }, 8},
        {"keyword", [](auto& reader) { EXPECT_EQ(reader.GetKeyword(), 7); }, 7},
        {"{keyword", [](auto& reader) { EXPECT_EQ(reader.GetBlock(7), 7); }, 7},
        {"{#345678 9}", [](auto& reader) { reader >> begb; }, 6},
        {"*", [](auto& reader) { reader.GetToken(sdlOperator); }, 1},
        {"\"12345678\" ",
         [](auto& reader) {
             eStrings texts;
             reader >> texts;
         },
         8},
        {"\"12345678\"",
         [](auto& reader) {
             EXPECT_FALSE(reader.End());
             reader.Get();
         },
         8},
        {"1 12345678",
         [](auto& reader) {
             reader.Get();
             EXPECT_FALSE(reader.Test(sdlString));
             reader.Get();
         },
         8},
        {"(+ 1234567 1)", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 1234568); }, 7},
        {"(+ 1 1234567)", [](auto& reader) { EXPECT_EQ(reader.GetFloat(), 1234568); }, 7},
        {"(include \"a\") 1", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 1); }, 7},
        {"(\"12345678\") 1", [](auto& reader) { EXPECT_EQ(reader.GetInt(), 1); }, 8},
        {"args 12345678)",
         [](auto& reader) {
             eParameters all;
             reader.GetParameters(&all);
         },
         8},
        {"args2345(1))",
         [](auto& reader) {
             eParameters all;
             reader.GetParameters(&all);
         },
         8},
        {"a(1) b2345678(1))",
         [](auto& reader) {
             eParameters all;
             reader.GetParameters(&all);
         },
         8},
    };
    for (const eRow& row : rows)
        for (const std::string before : {"", "; twenty characters \n"}) {
            const std::string text = before + row.token + " next";
            const auto open = [&](unsigned long long most) {
                eLimitedReader reader(text, {.tokenBytes = most});
                reader.PushKeywords(table);
                row.read(reader);
            };
            ExpectNoReport([&] { open(row.length); });
            ExpectReport([&] { open(row.length - 1); }, kToken, kReaderUnit, 600);
            EXPECT_THAT(reports.errors()[0].context, HasSubstr("\xAB")) << text;
        }
}

TEST_F(SdlLimits, AfterTheReportOfATokenTheSamePlaceIsReadAgain) {
    for (const unsigned long long most : {4u, 17u}) {
        eLimitedReader reader("1\n2 \"long text of bytes\" 3", {.tokenBytes = most});
        EXPECT_EQ(reader.GetInt(), 1);
        EXPECT_EQ(reader.GetInt(), 2);
        for (int round = 0; round < 3; ++round)
            ExpectReport([&] { reader.GetString(); }, kToken, kReaderUnit, 600);
        EXPECT_THAT(reports.errors()[0].context, HasSubstr("2: 2 \xAB\"long text of bytes\" 3"));
        EXPECT_FALSE(reader.End());
        reader.Back();
        eSDLParserToken operand;
        ExpectReport([&] { reader.GetOperand(&operand); }, kToken, kReaderUnit, 600);
    }
}

TEST_F(SdlLimits, AParserGivesATokenThatIsTooLongAsAnErrorThatStaysUnread) {
    const std::string text = "ab abc";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("", stream, tables, {}, nullptr, {.tokenBytes = 2});
    EXPECT_TRUE(parser.Get());
    EXPECT_EQ(parser.Token().text, "ab");
    eSDLParser copy(parser);
    for (eSDLParser* each : {&parser, &parser, &copy}) {
        EXPECT_TRUE(each->Get());
        EXPECT_EQ(each->Token().type, sdlError);
        EXPECT_EQ(each->Token().text, "");
        EXPECT_EQ(std::string(each->Cptr()), "abc");
    }
    EXPECT_TRUE(reports.errors().empty());
}

TEST_F(SdlLimits, TheTextOfAParameterCountsAsAToken) {
    const std::string text = "(12 4) (12 45)";
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser("", stream, tables, {}, nullptr, {.tokenBytes = 4});
    EXPECT_EQ(parser.GetParameter(), "12 4");
    eSDLParserState state = parser.StateCurrent();
    ++state.position;
    parser.StatePrev(state);
    parser.Back();
    ExpectReport([&] { parser.GetParameter(); }, kToken, kParserUnit, 311);
}

TEST_F(SdlLimits, TokensOfASkippedBlockDoNotCount) {
    eLimitedReader reader("{a \"long text\" {##b \"long text\"} } 1", {.tokenBytes = 4});
    reader >> begb;
    reader.SkipBlock();
    EXPECT_EQ(reader.GetInt(), 1);
}

TEST_F(SdlLimits, MoreSourcesThanTheDepthAdmitsAreReportedAndNotOpened) {
    const eFileName file(folder.Write("a.sdl", "1 "));
    for (const unsigned long long depth : {0ULL, 1ULL, 3ULL, eSDLLimits::kNone}) {
        eLimitedReader reader("2", {.includeDepth = depth});
        const unsigned long long admitted = depth == eSDLLimits::kNone ? 100 : depth;
        for (unsigned long long level = 0; level < admitted; ++level)
            ExpectNoReport([&] { reader.Include(file); });
        if (depth != eSDLLimits::kNone) {
            ExpectReport([&] { reader.Include(file); }, kInclude, kReaderUnit, 610);
            ExpectReport([&] { reader.Include(eFileName(folder.Name("missing"))); }, kInclude, kReaderUnit, 610);
            ExpectReport([&] { reader.NewParser(file, {}); }, kInclude, kReaderUnit, 610);
            ExpectReport([&] { reader.NewParser(eFileNameW(file.str().empty() ? L"" : L"x")); }, kInclude, kReaderUnit,
                         610);
            const std::vector<eSDLKeyword*> tables;
            ExpectReport(
                [&] {
                    reader.PushParser(new eSDLParser(eDefine{"d", "9"}, tables, {}));
                },
                kInclude, kReaderUnit, 610);
        }
        for (unsigned long long level = 0; level < admitted; ++level)
            EXPECT_EQ(reader.GetInt(), 1);
        EXPECT_EQ(reader.GetInt(), 2);
        if (depth > 0)
            ExpectNoReport([&] { reader.Include(file); });
    }
}

TEST_F(SdlLimits, HoldForIncludedSourcesDefinesAndCopiesOfAReader) {
    const eFileName large(folder.Write("large.sdl", "1 2 3 4 5"));
    const eFileName wordy(folder.Write("wordy.sdl", "longer"));
    eLimitedReader reader("0", {.sourceBytes = 8, .tokenBytes = 5});
    ExpectReport([&] { reader.Include(large); }, kSource, kParserUnit, 130);
    EXPECT_THAT(reports.errors()[0].context, HasSubstr("large.sdl"));
    reader.Include(wordy);
    ExpectReport([&] { reader.GetIdent(); }, kToken, kReaderUnit, 600);
    const std::vector<eSDLKeyword*> tables;
    reader.PushParser(new eSDLParser(eDefine{"d", "longer"}, tables, {}));
    ExpectReport([&] { reader.GetIdent(); }, kToken, kReaderUnit, 600);
    eSDLReader copy(reader);
    ExpectReport([&] { copy.Include(large); }, kSource, kParserUnit, 130);
    eSDLReader assigned(&*std::make_unique<IO::eMemoryStream>(), nullptr);
    assigned = copy;
    ExpectReport([&] { assigned.Include(large); }, kSource, kParserUnit, 130);
    ExpectReport([&] { assigned.GetIdent(); }, kToken, kReaderUnit, 600);
}

TEST_F(SdlLimits, AFileOfASourceThatIsTooLongIsNamedInTheReport) {
    const eFileName file(folder.Write("stranger.sdl", "1 2 3"));
    ExpectReport([&] { eSDLReader reader(file, nullptr, {.sourceBytes = 2}); }, kSource, kParserUnit, 130);
    EXPECT_THAT(reports.errors()[0].context, HasSubstr("stranger.sdl"));
}
