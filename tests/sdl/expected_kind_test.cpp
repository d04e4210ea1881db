#include <ostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "sdl_lexer.h"
#include "sdl_number.h"
#include "support/long_tests.h"

// What readers and parsers cut with a kind in mind, beside the same text cut without.
namespace {

eSDLKeyword* words;
eSDLKeyword wordItem(words, "item", 1);
eSDLKeyword wordB(words, "b", 2);
eSDLKeyword wordLong(words, "a_long_name", 3);

const std::vector<std::string> kPieces = {"item",
                                          "ITEM",
                                          "b",
                                          "B7",
                                          "a_long_name",
                                          "%x",
                                          "12",
                                          "0",
                                          "-0",
                                          "0x1F",
                                          "0xG",
                                          "-0x1",
                                          "1.5",
                                          "-2.5e+3",
                                          "1e5",
                                          "0e5",
                                          "00e5",
                                          "1E-7",
                                          "5.",
                                          "5.e",
                                          "1.5e",
                                          "1e+",
                                          "1e1-1",
                                          "1e123",
                                          "12345678",
                                          "-",
                                          "123456789",
                                          "+5",
                                          "+",
                                          "-5",
                                          "1e-22",
                                          "9e22",
                                          "9e23",
                                          "0.1e-9",
                                          "1.00000005960464477539",
                                          "16777217.0",
                                          "3.4e38",
                                          "99999999999999999999",
                                          ".",
                                          "*",
                                          "{",
                                          "{",
                                          "{item ",
                                          "{b",
                                          "{ item",
                                          "}",
                                          "}",
                                          "(* 2 3)",
                                          "(\"c\")",
                                          "{#m",
                                          "{##b ",
                                          "\"s\"",
                                          "\"\\n\"",
                                          "\"a longer text than sixteen\"",
                                          "\"",
                                          "; c\n",
                                          "\r\n",
                                          "\n",
                                          " ",
                                          "  ",
                                          "=",
                                          "\t",
                                          "\r\n\t\t",
                                          "$",
                                          " \n ; c\r\n; d\n ",
                                          "\xE4",
                                          std::string(1, '\0')};

std::string RandomText(std::mt19937& random) {
    const bool spaced = random() % 2 != 0;
    std::string text;
    for (auto left = random() % 20; left > 0; --left) {
        text += kPieces[random() % kPieces.size()];
        if (spaced)
            text += ' ';
    }
    return text;
}

std::string Shown(const eSDLParserToken& token) {
    std::ostringstream text;
    text << token.type << " [" << token.text << "] " << std::hexfloat << token.floatValue << " " << token.intValue;
    return text.str();
}

// The token that the automaton and the conversions of whole texts give; values that a token does not have stay.
bool CutPlainly(const char** position, int* line, eSDLParserToken* token) {
    xSDL::eLexeme lexeme;
    const bool found = xSDL::CutByTable(position, line, &lexeme);
    token->type = lexeme.type;
    if (!found)
        return false;
    token->text = lexeme.begin ? std::string(lexeme.begin, lexeme.length) : std::string();
    switch (lexeme.type) {
    case sdlIdent:
        if (const int id = eSDLKeyword::FindIn(words, token->text.c_str())) {
            token->type = sdlKeyword;
            token->intValue = id;
        }
        break;
    case sdlBlockStart:
        token->text.erase(0, 1);
        break;
    case sdlFloat:
        token->floatValue = xSDL::TextToFloat(token->text);
        token->intValue = xSDL::TruncateToInt(token->floatValue);
        break;
    case sdlInt:
    case sdlHex:
        token->intValue = xSDL::TextToInt(token->text);
        token->floatValue = static_cast<float>(token->intValue);
        if (lexeme.type == sdlHex)
            token->text = ToString(token->intValue, false);
        token->type = sdlInt;
        break;
    default:
        break;
    }
    return true;
}

class eOpenReader : public eSDLReader {
public:
    explicit eOpenReader(IO::eStream& stream) : eSDLReader(&stream, nullptr) { PushKeywords(words); }
    using eSDLReader::Parser;
};

// The steps of reading a text, each with the kind in mind or by asking the next token for its kind.
class eSteps {
public:
    eSteps(const std::string& text, bool expects) : stream(text), reader(stream), expecting(expects) {}

    // What the step gives and where it leaves the reader; a step that reports tells no more.
    std::string Take(unsigned step) {
        std::string given;
        try {
            given = expecting ? Expect(step) : Ask(step);
        } catch (const xError::eException&) {
            given = "failed";
        }
        const eSDLParser& parser = reader.Parser();
        return given + " line " + std::to_string(parser.Line()) + " at " + std::to_string(parser.Cptr() - begin);
    }

    std::string Last() { return Shown(reader.Token()); }

    static constexpr unsigned kSteps = 11;

private:
    std::string Expect(unsigned step) {
        switch (step) {
        case 0:
            return Of(reader.GetInt());
        case 1:
            return Of(reader.GetFloat());
        case 2:
            return reader.GetString();
        case 3:
            return reader.GetIdent();
        case 4:
            return Of(reader.GetKeyword());
        case 5:
            return Of(reader.GetBlock());
        case 6:
            return Of(reader.GetBlock(2));
        case 7:
            reader >> endb;
            return "}";
        case 8:
            return Of(reader.End());
        case 9:
            return Of(reader.Start());
        default:
            reader.Back();
            return "back";
        }
    }

    std::string Ask(unsigned step) {
        switch (step) {
        case 0:
            return Of(Asked(sdlInt).intValue);
        case 1:
            return Of(Asked(sdlNumber).floatValue);
        case 2:
            return Asked(sdlString).text;
        case 3:
            return Asked(sdlIdent).text;
        case 4:
            return Of(Asked(sdlKeyword).intValue);
        case 5:
        case 6:
            Asked(sdlBlockStart);
            reader.Parser().Token().type =
                Asked(sdlKeyword, step == 6 ? 2 : 0).type == sdlKeyword ? sdlBlockId : sdlNone;
            return Of(reader.Token().intValue);
        case 7:
            Asked(sdlBlockEnd);
            return "}";
        case 8:
            return Of(reader.Test(sdlBlockEnd));
        case 9:
            return Of(reader.Test(sdlBlockStart));
        default:
            reader.Back();
            return "back";
        }
    }

    const eSDLParserToken& Asked(eSDLParserLexType type, int id = 0) {
        if (!reader.Check(type, id))
            xError::Fatal("test", 0, "another kind");
        return reader.Token();
    }

    template <class T>
    static std::string Of(T value) {
        std::ostringstream text;
        text << std::hexfloat << value;
        return text.str();
    }

    IO::eBufferStream stream;
    eOpenReader reader;
    const char* begin = reader.Parser().Cptr();
    bool expecting;
};

} // namespace

TEST(SdlParser, CutsTheTokensOfTheAutomaton) {
    std::mt19937 random(11);
    const int rounds = LongTests() ? 1'000'000 : 20'000;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = RandomText(random);
        const std::string source = text + std::string(xSDL::kTextEnd, '\0');
        IO::eBufferStream stream(text);
        const std::vector<eSDLKeyword*> tables{words};
        eSDLParser parser({}, stream, tables, {}, nullptr);
        const char* const begin = parser.Cptr();
        const char* position = source.data();
        int line = 1;
        eSDLParserToken token;
        const bool watched = round % 2 != 0;
        for (auto left = random() % 20; left > 0; --left) {
            const bool found = CutPlainly(&position, &line, &token);
            ASSERT_EQ(parser.Get(), found) << text;
            ASSERT_EQ(parser.Cptr() - begin, position - source.data()) << text;
            ASSERT_EQ(parser.Line(), line) << text;
            if (watched || left == 1) {
                ASSERT_EQ(Shown(parser.Token()), Shown(token)) << text;
            }
        }
    }
}

TEST(SdlReader, ReadsAnExpectedKindAsIfItHadAskedForIt) {
    std::mt19937 random(12);
    const int rounds = LongTests() ? 500'000 : 8'000;
    for (int round = 0; round < rounds; ++round) {
        const std::string text = RandomText(random);
        eSteps expecting(text, true);
        eSteps asking(text, false);
        for (auto left = random() % 12; left > 0; --left) {
            const auto step = static_cast<unsigned>(random() % eSteps::kSteps);
            ASSERT_EQ(expecting.Take(step), asking.Take(step)) << "step " << step << " of " << text;
        }
        ASSERT_EQ(expecting.Last(), asking.Last()) << text;
    }
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
        ASSERT_EQ(parser.Token().floatValue, xSDL::TextToFloat(parser.Token().text)) << parser.Token().text;
    }
    EXPECT_EQ(parser.Line(), 20'001);
}
