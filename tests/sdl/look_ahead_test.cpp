// SPDX-License-Identifier: BSL-1.0
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_io/sdl.h>

#include "sdl_source.h"
#include "support/temp_folder.h"

namespace {

using namespace std::string_literals;

eSDLKeyword* words;
eSDLKeyword colorWord(words, "color", 5);

std::string Text(const eSDLParserToken& token) {
    return std::to_string(token.type) + "[" + token.text + "] ";
}

// A reader after the 1 in "1 INCLUDED" that continues with "NEXT" when the included source ends.
class eIncluding : public eSDLReader {
public:
    eIncluding(const std::string& included, const std::string& next) : eSDLReader(ReaderOf("0 " + next)) {
        PushKeywords(words);
        GetInt();
        PushParser(ParserOf("1" + included));
        GetInt();
    }

    // The types and texts of all remaining tokens, or the message that ends them.
    std::string Rest() {
        std::string rest;
        const eFailure failure = FailureOf([&] {
            while (!Check(sdlNone) && Token().type != sdlError)
                rest += Text(Token());
        });
        return rest + failure.message;
    }

private:
    eSDLParser* ParserOf(const std::string& text) {
        IO::eBufferStream stream(text);
        return new eSDLParser("included", stream, tables, {}, nullptr);
    }

    std::vector<eSDLKeyword*> tables{words};
};

// All ways in which an included source can end.
const std::string endings[] = {
    // with nothing, or with characters that are skipped
    "", " ", "=", "\t\r\n", ";", " ; comment", "; comment\r\n", "\0 junk"s, " ; comment\0}"s,
    // with an unfinished string
    "\"", "\"open", " \"open } {", "\"0123456789abcdefghijklmnopqrstuvwxyz", "\"cut short \\", "\"\\\\\\",
    "\"escaped\\\"", "\"a\\\nb", "\"nul \0\""s, "\"nul \\\0\""s,
    // with a token, complete or cut short
    " 7", " 0x", " 1e", " 1e+", " -", " color", " %", "{", "{#", "{#mark", "}", "\"whole\"", " (+ 1 2)",
    " (\"comment\")", " )", ")", "\"broken\n", "$"};

// The text after it in the including source.
const std::string nexts[] = {
    "",       " ",         "}",       "{",        "{#mark",           "{##hidden 1}}", " 1",  " 1.5",          " word",
    " color", " \"text\"", " \"open", " (+ 1 2)", " (\"comment\") }", " (mod x) {",    ") }", " ; comment\n}", "$"};

struct eLookAhead {
    const char* name;
    std::function<bool(eSDLReader&)> look;
    std::function<bool(eSDLParserLexType)> expected;
};

bool IsNumber(eSDLParserLexType type) {
    return type == sdlInt || type == sdlFloat;
}

const eLookAhead lookAheads[] = {
    {"Start", [](eSDLReader& r) { return r.Start(); }, [](auto type) { return type == sdlBlockStart; }},
    {"End", [](eSDLReader& r) { return r.End(); }, [](auto type) { return type == sdlBlockEnd; }},
    {"Test(sdlNumber)", [](eSDLReader& r) { return r.Test(sdlNumber); }, IsNumber},
    {"Test(sdlString)", [](eSDLReader& r) { return r.Test(sdlString); }, [](auto type) { return type == sdlString; }},
    {"Test(sdlNone)", [](eSDLReader& r) { return r.Test(sdlNone); }, [](auto type) { return type == sdlNone; }},
    {"Test(sdlError)", [](eSDLReader& r) { return r.Test(sdlError); }, [](auto type) { return type == sdlError; }},
    {"Test(sdlIdent)", [](eSDLReader& r) { return r.Test(sdlIdent); },
     [](auto type) { return type == sdlIdent || type == sdlKeyword; }},
    {"Test(id)", [](eSDLReader& r) { return r.Test(5); }, [](auto type) { return type == sdlKeyword; }},
    {"Check and Back",
     [](eSDLReader& r) {
         const bool matches = r.Check(sdlBlockEnd);
         r.Back();
         return matches;
     },
     [](auto type) { return type == sdlBlockEnd; }},
};

class LookAhead : public testing::TestWithParam<std::string> {};

TEST_P(LookAhead, AnswersForTheTokenThatIsReadNext) {
    for (const std::string& next : nexts)
        for (const eLookAhead& lookAhead : lookAheads) {
            SCOPED_TRACE(std::string(lookAhead.name) + ", then " + next);
            const std::string rest = eIncluding(GetParam(), next).Rest();
            eIncluding plain(GetParam(), next);
            const eFailure failure = FailureOf([&] { plain.GetToken(); });
            eIncluding looking(GetParam(), next);
            bool seen = false;
            EXPECT_EQ(FailureOf([&] { seen = lookAhead.look(looking); }).message, failure.message);
            if (failure != eFailure())
                continue;
            EXPECT_EQ(seen, lookAhead.expected(plain.Token().type));
            EXPECT_EQ(seen, lookAhead.look(looking));
            EXPECT_EQ(looking.Rest(), rest);
        }
}

TEST_P(LookAhead, OfAFlagAndOfListsTakesWhatIsTheirs) {
    for (const std::string& next : nexts) {
        SCOPED_TRACE(next);
        const std::string rest = eIncluding(GetParam(), next).Rest();
        eIncluding flag(GetParam(), next);
        bool value = false;
        const eFailure failure = FailureOf([&] { value = flag.GetBool(); });
        if (rest.starts_with("10[")) {
            EXPECT_EQ(failure.message, "Integer expected!");
        } else if (failure == eFailure()) {
            const bool isInteger = rest.starts_with("11[");
            EXPECT_EQ(flag.Rest(), isInteger ? rest.substr(rest.find(' ') + 1) : rest);
            EXPECT_EQ(value, !rest.starts_with("11[0]"));
        } else {
            EXPECT_EQ(failure.message, rest);
        }
        for (const bool wide : {false, true}) {
            eIncluding list(GetParam(), next);
            eStrings narrow;
            eStringsW wideList;
            std::string all;
            const eFailure listFailure = FailureOf([&] { wide ? list >> wideList : list >> narrow; });
            for (const auto& text : wideList)
                narrow.Add(ToString(text.str()));
            for (const auto& text : narrow)
                all += "3[" + text.str() + "] ";
            EXPECT_EQ(all + (listFailure == eFailure() ? list.Rest() : listFailure.message), rest);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AtTheEndOfAnIncludedSource, LookAhead, testing::ValuesIn(endings));

TEST(LookAheadInFiles, AnUnterminatedStringEndsAnIncludedFile) {
    const eTempFolder folder;
    const eFileName included(folder.Write("open.sdl", "2 \"not ended"));
    eSDLReader reader = ReaderOf("{a 1 } {b}");
    reader >> begb;
    reader.GetIdent();
    reader.GetInt();
    reader.Include(included);
    EXPECT_EQ(reader.GetInt(), 2);
    EXPECT_FALSE(reader.Start());
    EXPECT_TRUE(reader.End());
    reader >> endb;
    EXPECT_FALSE(reader.End());
    EXPECT_TRUE(reader.Start());
}

} // namespace

// The block continues in the including source.
TEST(LookAheadInFiles, ABlockIsSkippedOverTheEscapesAtTheEndOfAnIncludedFile) {
    const eTempFolder folder;
    const eFileName included(folder.Write("open.sdl", "{ 1 \"a\\tb\""));
    eSDLReader reader = ReaderOf("{a } 7 } 8");
    reader >> begb;
    reader.GetIdent();
    reader.Include(included);
    reader >> begb;
    reader.SkipBlock();
    EXPECT_EQ(reader.GetInt(), 7);
    reader >> endb;
    EXPECT_EQ(reader.GetInt(), 8);
}
