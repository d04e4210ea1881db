// SPDX-License-Identifier: BSL-1.0
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "sdl/lexer.h"
#include "support/long_tests.h"

namespace {

struct eCut {
    eSDLParserLexType type = sdlNone;
    std::string text;
    int line = 0;
    std::ptrdiff_t position = 0;

    bool operator==(const eCut&) const = default;
};

std::ostream& operator<<(std::ostream& out, const eCut& cut) {
    return out << "type " << cut.type << " [" << cut.text << "] line " << cut.line << " at " << cut.position;
}

using eCutter = bool (*)(const char**, int*, xSDL::eLexeme*);

// Every token of the text, up to its end or to an error that would repeat for ever.
std::vector<eCut> CutAll(const std::string& source, eCutter cutter) {
    const std::string text = source + std::string(xSDL::kTextEnd, '\0');
    std::vector<eCut> cuts;
    const char* position = text.data();
    int line = 1;
    for (bool more = true; more;) {
        xSDL::eLexeme lexeme;
        const char* const before = position;
        more = cutter(&position, &line, &lexeme);
        const std::string kept = more ? std::string(lexeme.begin ? lexeme.begin : "", lexeme.length) : std::string();
        cuts.push_back({lexeme.type, kept, line, position - text.data()});
        if (lexeme.type == sdlError && position == before)
            more = ++position - text.data() < static_cast<std::ptrdiff_t>(source.size());
    }
    return cuts;
}

std::string Printable(const std::string& text) {
    std::string shown;
    for (const char c : text)
        shown += c >= ' ' && c < 127 ? std::string(1, c) : "<" + std::to_string(static_cast<unsigned char>(c)) + ">";
    return shown;
}

// The number of tokens; 0 if the two lexers differ.
std::size_t Agree(const std::string& text) {
    const std::vector<eCut> expected = CutAll(text, xSDL::CutByTable);
    const std::vector<eCut> cut = CutAll(text, xSDL::CutToken);
    if (cut == expected)
        return cut.size();
    EXPECT_EQ(cut, expected) << "for the text " << Printable(text);
    return 0;
}

struct eTransitionRow {
    xSDL::eLexerState from;
    std::string_view on;
    xSDL::eLexerState to;
    xSDL::eAction action;
    eSDLParserLexType type = sdlNone;
};

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNonZero = "123456789";
constexpr std::string_view kBlanks = "\t\n\r =";
constexpr std::string_view kAny = {};
using xSDL::eAction;

// Every row of the automaton; in one state, earlier rows take precedence.
const eTransitionRow kRows[] = {
    {xSDL::stBetween, kLetters, xSDL::stIdent, eAction::Keep},
    {xSDL::stBetween, "%", xSDL::stIdent, eAction::Keep},
    {xSDL::stBetween, "(", xSDL::stAccept, eAction::Skip, sdlOpen},
    {xSDL::stBetween, ")", xSDL::stAccept, eAction::Skip, sdlClose},
    {xSDL::stBetween, kBlanks, xSDL::stBetween, eAction::Skip},
    {xSDL::stBetween, "0", xSDL::stZero, eAction::Keep},
    {xSDL::stBetween, kNonZero, xSDL::stInteger, eAction::Keep},
    {xSDL::stBetween, "-+", xSDL::stSign, eAction::Keep},
    {xSDL::stBetween, "*/", xSDL::stAccept, eAction::Keep, sdlOperator},
    {xSDL::stBetween, "\"", xSDL::stString, eAction::Skip},
    {xSDL::stBetween, ";", xSDL::stComment, eAction::Skip},
    {xSDL::stBetween, "{", xSDL::stBrace, eAction::Skip},
    {xSDL::stBetween, "}", xSDL::stAccept, eAction::Skip, sdlBlockEnd},
    {xSDL::stBetween, kAny, xSDL::stAccept, eAction::Stay, sdlError},
    {xSDL::stComment, "\n\r", xSDL::stBetween, eAction::Skip},
    {xSDL::stComment, kAny, xSDL::stComment, eAction::Skip},
    {xSDL::stString, "\"", xSDL::stAccept, eAction::Skip, sdlString},
    {xSDL::stString, "\\", xSDL::stBackslash, eAction::Keep},
    {xSDL::stString, "\n\r", xSDL::stAccept, eAction::Stay, sdlError},
    {xSDL::stString, kAny, xSDL::stString, eAction::Keep},
    {xSDL::stBackslash, kAny, xSDL::stString, eAction::Keep},
    {xSDL::stSign, kDigits, xSDL::stInteger, eAction::Keep},
    {xSDL::stSign, kAny, xSDL::stAccept, eAction::Stay, sdlOperator},
    {xSDL::stInteger, kDigits, xSDL::stInteger, eAction::Keep},
    {xSDL::stInteger, ".", xSDL::stFraction, eAction::Keep},
    {xSDL::stInteger, "eE", xSDL::stExponent, eAction::Keep},
    {xSDL::stInteger, kAny, xSDL::stAccept, eAction::Stay, sdlInt},
    {xSDL::stFraction, kDigits, xSDL::stFraction, eAction::Keep},
    {xSDL::stFraction, "eE", xSDL::stExponent, eAction::Keep},
    {xSDL::stFraction, kAny, xSDL::stAccept, eAction::Stay, sdlFloat},
    {xSDL::stExponent, "-+", xSDL::stExponent, eAction::Keep},
    {xSDL::stExponent, kDigits, xSDL::stExponent, eAction::Keep},
    {xSDL::stExponent, kAny, xSDL::stAccept, eAction::Stay, sdlFloat},
    {xSDL::stIdent, kLetters, xSDL::stIdent, eAction::Keep},
    {xSDL::stIdent, kDigits, xSDL::stIdent, eAction::Keep},
    {xSDL::stIdent, kAny, xSDL::stAccept, eAction::Stay, sdlIdent},
    {xSDL::stZero, "x", xSDL::stHex, eAction::Skip},
    {xSDL::stZero, kDigits, xSDL::stInteger, eAction::Keep},
    {xSDL::stZero, ".", xSDL::stFraction, eAction::Keep},
    {xSDL::stZero, kAny, xSDL::stAccept, eAction::Stay, sdlInt},
    {xSDL::stHex, kDigits, xSDL::stHex, eAction::Keep},
    {xSDL::stHex, "ABCDEFabcdef", xSDL::stHex, eAction::Keep},
    {xSDL::stHex, kAny, xSDL::stAccept, eAction::Stay, sdlHex},
    {xSDL::stBrace, "#", xSDL::stMark, eAction::Keep},
    {xSDL::stBrace, kAny, xSDL::stAccept, eAction::Stay, sdlBlockStart},
    {xSDL::stMark, "#-+", xSDL::stMark, eAction::Keep},
    {xSDL::stMark, kLetters, xSDL::stMark, eAction::Keep},
    {xSDL::stMark, kDigits, xSDL::stMark, eAction::Keep},
    {xSDL::stMark, kAny, xSDL::stAccept, eAction::Stay, sdlBlockStart},
};

const eTransitionRow* FindRow(std::size_t state, char c) {
    for (const eTransitionRow& row : kRows)
        if (row.from == state && (row.on.empty() || row.on.find(c) != std::string_view::npos))
            return &row;
    return nullptr;
}

} // namespace

TEST(SdlAutomaton, TakesTheStatedTransitionForEveryByteInEveryState) {
    for (std::size_t state = 0; state < xSDL::kLexerStates; ++state)
        for (int byte = 0; byte < 256; ++byte) {
            const eTransitionRow* row = FindRow(state, static_cast<char>(byte));
            ASSERT_NE(row, nullptr);
            const xSDL::eStep step = xSDL::kAutomaton[state][static_cast<std::size_t>(byte)];
            EXPECT_EQ(step.to, row->to) << "state " << state << " byte " << byte;
            EXPECT_EQ(step.action, row->action) << "state " << state << " byte " << byte;
            EXPECT_EQ(step.type, row->type) << "state " << state << " byte " << byte;
        }
}

TEST(SdlLexer, CutsEveryShortTextAsTheAutomatonDoes) {
    const std::string alphabet("a e0x5.-#%{}()\";\\\n\r$\0", 21);
    const std::size_t longest = LongTests() ? 5 : 4;
    for (std::size_t length = 0; length <= longest; ++length) {
        std::vector<std::size_t> digits(length);
        for (bool more = true; more;) {
            std::string text;
            for (const std::size_t digit : digits)
                text += alphabet[digit];
            ASSERT_GT(Agree(text), 0u);
            more = false;
            for (std::size_t& digit : digits) {
                digit = digit + 1 == alphabet.size() ? 0 : digit + 1;
                if ((more = digit != 0))
                    break;
            }
        }
    }
}

TEST(SdlLexer, CutsRandomTextsAsTheAutomatonDoes) {
    const std::string significant = "aZ_ee00xx159..--++#%{}()\"\"\";;\\\n\r\t   ==**//$@\x80\xFF";
    std::mt19937 random(20);
    const auto pick = [&](std::size_t count) { return random() % count; };
    const std::size_t wanted = LongTests() ? 100'000'000 : 1'000'000;
    for (std::size_t tokens = 0; tokens < wanted;) {
        std::string text;
        const bool anyBytes = pick(4) == 0;
        for (std::size_t left = pick(400); left > 0; --left) {
            const char c = anyBytes ? static_cast<char>(pick(256)) : significant[pick(significant.size())];
            text.append(pick(12) == 0 ? pick(40) : 1, c);
        }
        const std::size_t count = Agree(text);
        ASSERT_GT(count, 0u);
        tokens += count;
    }
}

TEST(SdlLexer, CutsLongRunsAsTheAutomatonDoes) {
    for (const char* unit : {"a", "7", " ", "\n", "\r\n", ";c\n", "\"s\"", "\\", "-", "{#a", "0x1", "1.5 ", "1e5", "%"})
        for (std::size_t count = 1; count < 70; ++count)
            for (const char* after : {"", " ", "x", "\"", ".", "\n", "#"}) {
                std::string text;
                for (std::size_t i = 0; i < count; ++i)
                    text += unit;
                ASSERT_GT(Agree(text + after), 0u);
                ASSERT_GT(Agree("\"" + text + after), 0u);
                ASSERT_GT(Agree(";" + text + after), 0u);
            }
}

TEST(SdlLexer, EndsTheTextAtItsFirstZero) {
    const std::vector<eCut> cuts = CutAll(std::string("one\0two", 7), xSDL::CutToken);
    ASSERT_EQ(cuts.size(), 2u);
    EXPECT_EQ(cuts[0], (eCut{sdlIdent, "one", 1, 3}));
    EXPECT_EQ(cuts[1], (eCut{sdlNone, "", 1, 3}));
}
