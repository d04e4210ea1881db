// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/diagnostic.h>
#include <qzl_io/sdl.h>

#include "open_reader.h"
#include "place_text.h"
#include "random_source.h"
#include "sdl/automaton.h"
#include "sdl_source.h"
#include "support/seconds_of.h"
#include "support/temp_folder.h"
#include "turning_cipher.h"

// Where a reader says that tokens and blocks begin.

namespace {

using xError::ePlace;

// The place of an offset in a text, counted character by character.
ePlace PlaceIn(std::string_view text, std::size_t offset, const std::string& name = {}) {
    ePlace place{.source = name, .offset = offset};
    for (std::size_t at = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; at < offset; ++at) {
        ++place.byteColumn;
        if ((text[at] & 0xC0) != 0x80)
            ++place.column;
        if (text[at] != '\n')
            continue;
        ++place.line;
        place.column = place.byteColumn = 1;
    }
    return place;
}

// Reads up to a word, which is the place asked for.
ePlace PlaceOfWord(eSDLReader& reader, const std::string& word) {
    while (reader.GetToken().text != word)
        if (reader.Token().type == sdlNone || reader.Token().type == sdlError)
            return {};
    return reader.Place();
}

// --- The last token ---

TEST(Place, OfEveryKindOfTokenIsItsFirstCharacter) {
    const char* const tokens[] = {"word",       "12",
                                  "-7",         "1.5",
                                  "0x1F",       "\"text\"",
                                  "\"\"",       "{",
                                  "}",          "{#mark",
                                  "{#",         "\"a\\\"b\"",
                                  "+",          "*",
                                  "\"a\\\nb\"", "\"b\\\n\\\nb\"",
                                  "(+ 1 2)",    "(+ 1\n ; (\n 2)",
                                  "$",          "\x80",
                                  "\"ab\n",     "\"\n",
                                  "\"a\\\nb\n", "\u00e4"};
    for (const std::string token : tokens)
        for (const char* before : {"", " ", "\n\n", "; c\n  ", "x ", "\"a\\\n\" ", "{", "\"x\" "}) {
            const std::string text = before + token;
            eOpenReader reader(text);
            const std::size_t offset = text.size() - token.size();
            while (reader.Get() && reader.Place().offset < offset)
                ;
            EXPECT_EQ(reader.Place(), PlaceIn(text, offset)) << text;
        }
}

TEST(Place, CountsLinesByLineFeedsAndColumnsByCharactersAndBytes) {
    const struct {
        const char* what;
        std::string text;
        ePlace place;
    } rows[] = {
        {"first", "x", {"", 0, 1, 1, 1}},
        {"LF", "a\nb\n  x", {"", 6, 3, 3, 3}},
        {"CR LF", "a\r\nb\r\n  x", {"", 8, 3, 3, 3}},
        {"CR", "a\rb\r  x", {"", 6, 1, 7, 7}},
        {"byte-order mark", "\xEF\xBB\xBFx", {"", 3, 1, 1, 1}},
        {"byte-order mark, later line", "\xEF\xBB\xBF\n x", {"", 5, 2, 2, 2}},
        {"UTF-8 in a text", "\"\u00e4\u65e5\U0001f600\" x", {"", 12, 1, 7, 13}},
        {"UTF-8 in a comment of the line before", "; \u00e4\n x", {"", 6, 2, 2, 2}},
        {"combining", "\"e\u0301\" x", {"", 6, 1, 6, 7}},
        {"bytes that are no characters", "\"\xFF\xE2\x82\" x", {"", 6, 1, 7, 7}},
        {"a truncated character, a whole one", "\"\xE2\x82\u00e4\" x", {"", 7, 1, 7, 8}},
        {"tab", "\tx", {"", 1, 1, 2, 2}},
        {"equals sign", "a=x", {"", 2, 1, 3, 3}},
    };
    for (const auto& row : rows) {
        eSDLReader reader = ReaderOf(row.text);
        EXPECT_EQ(PlaceOfWord(reader, "x"), row.place) << row.what;
    }
}

TEST(Place, OfTheEndIsWhereTheTextEndsAndOfTheBeginningWhereItBegins) {
    for (const std::string text : {"", "a ", "a\n; c\n",
                                   "\xEF\xBB\xBF"
                                   "a\n"}) {
        eOpenReader reader(text + std::string("\0 b", 3));
        EXPECT_EQ(reader.Place(), PlaceIn(text, text.starts_with('\xEF') ? 3 : 0)) << text;
        while (reader.Get())
            ;
        EXPECT_EQ(reader.Place(), PlaceIn(text, text.size())) << text;
    }
}

TEST(Place, OfAStringThatDoesNotEndIsItsQuote) {
    for (const std::string text : {"\"b", " \"", "a\n; c\n \"b\\\nc"}) {
        eOpenReader reader(text);
        while (reader.Get())
            ;
        EXPECT_EQ(reader.Place(), PlaceIn(text, text.find('"'))) << text;
    }
}

TEST(Place, IsTheSameInADecipheredText) {
    const std::string text = "{a\n  \"\u00e4\" x }";
    const std::string turned = Turned(text);
    IO::eBufferStream stream(turned);
    eSDLReader reader(&stream, std::make_shared<eTurningCipher>());
    EXPECT_EQ(PlaceOfWord(reader, "x"), PlaceIn(text, text.find('x')));
}

TEST(Place, OfAStreamCountsFromWhereItStood) {
    std::string text = "12345 a\n x";
    IO::eBufferStream stream(text);
    stream.Skip(6);
    eSDLReader reader(&stream, nullptr);
    EXPECT_EQ(PlaceOfWord(reader, "x"), PlaceIn("a\n x", 3));
}

TEST(Place, InADefineAndAfterParametersCountsInTheTextThatIsRead) {
    eOpenReader reader(std::string("a"));
    const std::vector<eSDLKeyword*> tables;
    const std::map<eStringKey, eStringKey> parameters = {{std::string("p"), std::string("1\n2")}};
    reader.PushParser(new eSDLParser(eDefine{"d", "%p x"}, tables, parameters));
    EXPECT_EQ(PlaceOfWord(reader, "x"), PlaceIn("1\n2 x", 4, "define 'd'"));
}

TEST(Place, FollowsBackAndLookingAhead) {
    const std::string text = "a (+ 1 2) \"s\" {#m b }\n$";
    eOpenReader reader(text);
    const std::size_t places[] = {0, 2, 10, 14, 18, 20, 22};
    for (std::size_t i = 0; i < std::size(places); ++i) {
        reader.Get();
        EXPECT_EQ(reader.Place(), PlaceIn(text, places[i])) << i;
        reader.Back();
        EXPECT_EQ(reader.Place().offset, i == 0 ? 0 : places[i - 1]) << i;
        reader.Get();
        EXPECT_EQ(reader.Place(), PlaceIn(text, places[i])) << i;
        reader.Start();
        reader.Test(sdlInt);
        EXPECT_EQ(reader.Place(), PlaceIn(text, places[i])) << i;
    }
}

TEST(Place, NamesTheSourceThatIsRead) {
    const eTempFolder folder;
    const std::string outer = "{a\n 1 2 }";
    const std::string inner = "\n\n  x";
    const eFileName outerName(folder.Write("outer.sdl", outer));
    const eFileName innerName(folder.Write("inner.sdl", inner));
    eSDLReader reader(outerName, "a", nullptr);
    reader.GetInt();
    EXPECT_EQ(reader.Place(), PlaceIn(outer, 4, outerName.str()));
    reader.Include(innerName);
    EXPECT_EQ(reader.Place(), PlaceIn(inner, 0, innerName.str()));
    reader.GetIdent();
    EXPECT_EQ(reader.Place(), PlaceIn(inner, 4, innerName.str()));
    reader.GetInt();
    EXPECT_EQ(reader.Place(), PlaceIn(outer, 6, outerName.str()));
}

TEST(Place, StaysInTheTextWhateverACallerMakesOfTheToken) {
    for (const std::string text : {"a", "{", "$", "\"", "", "1"})
        for (const int type : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}) {
            eOpenReader reader(text);
            reader.Get();
            reader.Parser().Token().type = static_cast<eSDLParserLexType>(type);
            EXPECT_LE(reader.Place().offset, text.size());
            reader.Parser().StatePrev({});
            reader.Parser().StatePrev({{}, 1, reader.Parser().Cptr()});
            reader.Parser().Back();
            EXPECT_LE(reader.Place().offset, text.size());
            EXPECT_LE(reader.BlockPlace().offset, text.size());
        }
}

// --- The current block ---

TEST(Place, OfTheBlockIsTheInnermostOpenBrace) {
    const std::string text = "{a 1 {b {c} 2 (\"}\" {) ) \"}\" ; }\n {#m d 3 } 4 } 5 } 6";
    eSDLReader reader = ReaderOf(text);
    const std::map<std::string, std::size_t> blocks = {{"1", 0}, {"2", 5}, {"3", text.find("{#m")},
                                                       {"4", 5}, {"5", 0}, {"6", 0}};
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(text, 0));
    for (const auto& [number, offset] : blocks) {
        PlaceOfWord(reader, number);
        EXPECT_EQ(reader.BlockPlace(), PlaceIn(text, offset)) << number;
    }
}

TEST(Place, OfTheBlockFollowsBack) {
    const std::string text = "{a {b {c 1 } } }";
    eSDLReader reader = ReaderOf(text);
    const std::size_t places[] = {0, 0, 3, 3, 6, 6, 6, 3, 0};
    for (std::size_t i = 0; i < std::size(places); ++i) {
        reader.GetToken();
        EXPECT_EQ(reader.BlockPlace().offset, places[i]) << i;
        reader.Back();
        EXPECT_EQ(reader.BlockPlace().offset, i == 0 ? 0 : places[i - 1]) << i;
        reader.GetToken();
        EXPECT_EQ(reader.BlockPlace().offset, places[i]) << i;
    }
}

TEST(Place, OfTheBlockIsFoundInWhateverSourceItBegins) {
    const eTempFolder folder;
    const std::string outer = "\xEF\xBB\xBF\n{a {b 1 } 2 } 3";
    const eFileName outerName(folder.Write("outer.sdl", outer));
    const eFileName inner(folder.Write("inner.sdl", "{c 4 } 5 } 6"));
    eSDLReader reader(outerName, nullptr);
    PlaceOfWord(reader, "1");
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(outer, 7, outerName.str()));
    reader.Include(inner);
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(outer, 7, outerName.str()));
    PlaceOfWord(reader, "4");
    EXPECT_EQ(reader.BlockPlace(), PlaceIn("{c", 0, inner.str()));
    PlaceOfWord(reader, "5");
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(outer, 7, outerName.str()));
    PlaceOfWord(reader, "6");
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(outer, 4, outerName.str()));
    PlaceOfWord(reader, "3");
    EXPECT_EQ(reader.BlockPlace(), PlaceIn(outer, 3, outerName.str()));
}

// --- Against a plain model ---

struct eTokens {
    std::map<std::size_t, std::size_t> beginOfEnd;
    std::vector<std::size_t> begins;
    std::vector<eSDLParserLexType> types;
};

eTokens TokensOf(const std::string& text) {
    eTokens tokens;
    const char* const source = text.c_str();
    const char* at = source + (text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    for (;;) {
        while (*at != 0 && std::string_view(" \t\r\n=;").find(*at) != std::string_view::npos)
            if (*at++ == ';')
                while (*at != 0 && *at != '\r' && *at != '\n')
                    ++at;
        const auto begin = static_cast<std::size_t>(at - source);
        int line = 1;
        xSDL::eLexeme token;
        if (!xSDL::CutByTable(&at, &line, &token))
            return tokens;
        if (source + begin == at)
            return tokens; // a character that begins no token
        tokens.beginOfEnd[static_cast<std::size_t>(at - source)] = begin;
        tokens.begins.push_back(begin);
        tokens.types.push_back(token.type);
    }
}

// The block that is open after the tokens that begin before the place.
std::size_t BlockBefore(const eTokens& tokens, std::size_t place, std::size_t sourceBegin) {
    std::vector<std::size_t> open;
    std::size_t control = 0;
    for (std::size_t i = 0; i < tokens.begins.size() && tokens.begins[i] < place; ++i) {
        const eSDLParserLexType type = tokens.types[i];
        if (type == sdlBlockStart || type == sdlOpen)
            open.push_back(tokens.begins[i]);
        if (type == sdlOpen && control == 0)
            control = open.size();
        if ((type == sdlBlockEnd || (type == sdlClose && control > 0)) && !open.empty())
            open.pop_back();
        if (open.size() < control)
            control = 0;
    }
    return open.empty() ? sourceBegin : open.back();
}

TEST(Place, IsThatOfAPlainModelOnRandomTexts) {
    std::mt19937 random(11);
    std::size_t compared = 0;
    for (int round = 0; round < 3000; ++round) {
        const std::string source = RandomSource(random, 40);
        const std::string text = source.substr(0, source.find('\0'));
        const eTokens tokens = TokensOf(text);
        const std::size_t sourceBegin = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
        eOpenReader reader(source);
        const char* const begin = reader.Parser().Cptr() - sourceBegin;
        const auto expectRight = [&] {
            const auto end = static_cast<std::size_t>(reader.Parser().Cptr() - begin);
            const ePlace place = reader.Place();
            const bool isSum = end > 0 && text[place.offset] == '(' && text[end - 1] == ')';
            EXPECT_EQ(place, PlaceIn(text, isSum || end == sourceBegin ? place.offset : tokens.beginOfEnd.at(end)));
            EXPECT_EQ(reader.BlockPlace(), PlaceIn(text, BlockBefore(tokens, end, sourceBegin)));
            ++compared;
        };
        try {
            while (reader.Get() && reader.Token().type != sdlError) {
                expectRight();
                if (random() % 4 > 0)
                    continue;
                reader.Back();
                expectRight();
                reader.Get();
                expectRight();
            }
        } catch (const xError::eException&) {
            ++compared; // a control block that is none
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << text;
    }
    EXPECT_GT(compared, 10'000u);
}

// --- Their cost ---

std::string Repeated(const std::string& unit, std::size_t count) {
    std::string text;
    text.reserve(unit.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text += unit;
    return text;
}

// Sanitizers watch the same work on shorter texts.
#ifdef QZL_SANITIZED
constexpr std::size_t kCount = 2'000;
#else
constexpr std::size_t kCount = 20'000;
#endif

TEST(Place, OfAllTokensAndBlocksTakesTimeLinearInTheText) {
    const struct {
        const char* what;
        std::string text;
    } rows[] = {
        {"one line", Repeated("{a 1} ", kCount)},
        {"many lines", Repeated("{a 1}\n", kCount)},
        {"nested", Repeated("{a ", kCount) + Repeated("} ", kCount)},
        {"sums", Repeated("(+ 1 2) ", kCount)},
        {"in one block of one line", "{a " + Repeated("{b \"\u00e4\"} ", kCount)},
    };
    // If the cost of a place were that of its distance from the beginning, this would take minutes.
    for (const auto& row : rows) {
        eSDLReader reader = ReaderOf(row.text);
        const double seconds = SecondsOf([&] {
            while (reader.GetToken().type != sdlNone) {
                reader.Place();
                reader.BlockPlace();
                reader.End();
                reader.Place();
            }
        });
        EXPECT_LT(seconds, 10) << row.what;
    }
}

} // namespace
