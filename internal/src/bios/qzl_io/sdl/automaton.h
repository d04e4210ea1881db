// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <cstddef>

#include <qzl_io/sdl/token.h>

// The lexer of SDL as an automaton: its states, character classes and transitions, written once. The fast lexer
// (lexer.h) takes runs of characters at a time; for every text it must agree with the plain walk of this table,
// character by character.

namespace xSDL {

enum eLexerState : unsigned char {
    stBetween,   // between tokens
    stComment,   // after ;
    stString,    // after "
    stBackslash, // in a string, after a backslash
    stSign,      // after + or -
    stInteger,   // in the integer part of a number
    stFraction,  // after the point
    stExponent,  // after e or E
    stIdent,     // in an identifier
    stZero,      // after a leading 0 without a sign
    stHex,       // after 0x
    stBrace,     // after {
    stMark,      // in a block mark
    stAccept
};

inline constexpr std::size_t kLexerStates = stAccept;

enum class eAction : unsigned char {
    Skip, // consume the character
    Keep, // consume it as part of the token's text
    Stay  // leave it to the next token
};

// The characters for which a transition is taken.
class eCharClass {
public:
    enum eKind : unsigned char { Exact, Blank, EndOfLine, Letter, Digit, HexLetter, Any };

    constexpr eCharClass(eKind classKind) : kind(classKind) {}
    constexpr eCharClass(char character) : exact(static_cast<unsigned char>(character)) {}

    constexpr bool Has(unsigned char c) const {
        switch (kind) {
        case Exact:
            return c == exact;
        case Blank:
            return c == '\t' || c == '\n' || c == '\r' || c == ' ' || c == '=';
        case EndOfLine:
            return c == '\n' || c == '\r';
        case Letter:
            return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        case Digit:
            return c >= '0' && c <= '9';
        case HexLetter:
            return (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        case Any:
            return true;
        }
        return false;
    }

private:
    eKind kind = Exact;
    unsigned char exact = 0;
};

struct eTransition {
    eLexerState from{};
    eCharClass on;
    eLexerState to{};
    eAction action{};
    eSDLParserLexType type = sdlNone; // of the token, for transitions to stAccept
};

// Of the transitions from one state, the first that contains the character is taken.
inline constexpr eTransition kTransitions[] = {
    {stBetween, eCharClass::Letter, stIdent, eAction::Keep},
    {stBetween, '%', stIdent, eAction::Keep},
    {stBetween, '(', stAccept, eAction::Skip, sdlOpen},
    {stBetween, ')', stAccept, eAction::Skip, sdlClose},
    {stBetween, eCharClass::Blank, stBetween, eAction::Skip},
    {stBetween, '0', stZero, eAction::Keep},
    {stBetween, eCharClass::Digit, stInteger, eAction::Keep},
    {stBetween, '-', stSign, eAction::Keep},
    {stBetween, '+', stSign, eAction::Keep},
    {stBetween, '*', stAccept, eAction::Keep, sdlOperator},
    {stBetween, '/', stAccept, eAction::Keep, sdlOperator},
    {stBetween, '"', stString, eAction::Skip},
    {stBetween, ';', stComment, eAction::Skip},
    {stBetween, '{', stBrace, eAction::Skip},
    {stBetween, '}', stAccept, eAction::Skip, sdlBlockEnd},
    {stBetween, eCharClass::Any, stAccept, eAction::Stay, sdlError},

    {stComment, eCharClass::EndOfLine, stBetween, eAction::Skip},
    {stComment, eCharClass::Any, stComment, eAction::Skip},

    {stString, '"', stAccept, eAction::Skip, sdlString},
    {stString, '\\', stBackslash, eAction::Keep},
    {stString, eCharClass::EndOfLine, stAccept, eAction::Stay, sdlError},
    {stString, eCharClass::Any, stString, eAction::Keep},

    {stBackslash, eCharClass::Any, stString, eAction::Keep},

    {stSign, eCharClass::Digit, stInteger, eAction::Keep},
    {stSign, eCharClass::Any, stAccept, eAction::Stay, sdlOperator},

    {stInteger, eCharClass::Digit, stInteger, eAction::Keep},
    {stInteger, '.', stFraction, eAction::Keep},
    {stInteger, 'e', stExponent, eAction::Keep},
    {stInteger, 'E', stExponent, eAction::Keep},
    {stInteger, eCharClass::Any, stAccept, eAction::Stay, sdlInt},

    {stFraction, eCharClass::Digit, stFraction, eAction::Keep},
    {stFraction, 'e', stExponent, eAction::Keep},
    {stFraction, 'E', stExponent, eAction::Keep},
    {stFraction, eCharClass::Any, stAccept, eAction::Stay, sdlFloat},

    {stExponent, '-', stExponent, eAction::Keep},
    {stExponent, '+', stExponent, eAction::Keep},
    {stExponent, eCharClass::Digit, stExponent, eAction::Keep},
    {stExponent, eCharClass::Any, stAccept, eAction::Stay, sdlFloat},

    {stIdent, eCharClass::Letter, stIdent, eAction::Keep},
    {stIdent, eCharClass::Digit, stIdent, eAction::Keep},
    {stIdent, eCharClass::Any, stAccept, eAction::Stay, sdlIdent},

    {stZero, 'x', stHex, eAction::Skip},
    {stZero, eCharClass::Digit, stInteger, eAction::Keep},
    {stZero, '.', stFraction, eAction::Keep},
    {stZero, eCharClass::Any, stAccept, eAction::Stay, sdlInt},

    {stHex, eCharClass::Digit, stHex, eAction::Keep},
    {stHex, eCharClass::HexLetter, stHex, eAction::Keep},
    {stHex, eCharClass::Any, stAccept, eAction::Stay, sdlHex},

    {stBrace, '#', stMark, eAction::Keep},
    {stBrace, eCharClass::Any, stAccept, eAction::Stay, sdlBlockStart},

    {stMark, '#', stMark, eAction::Keep},
    {stMark, '-', stMark, eAction::Keep},
    {stMark, '+', stMark, eAction::Keep},
    {stMark, eCharClass::Letter, stMark, eAction::Keep},
    {stMark, eCharClass::Digit, stMark, eAction::Keep},
    {stMark, eCharClass::Any, stAccept, eAction::Stay, sdlBlockStart},
};

struct eStep {
    eLexerState to = stAccept;
    eAction action = eAction::Stay;
    eSDLParserLexType type = sdlError;
};

using eStateRow = std::array<eStep, 256>;

constexpr eStep FindStep(eLexerState from, unsigned char c) {
    for (const eTransition& transition : kTransitions)
        if (transition.from == from && transition.on.Has(c))
            return {transition.to, transition.action, transition.type};
    return {};
}

constexpr std::array<eStateRow, kLexerStates> ExpandAutomaton() {
    std::array<eStateRow, kLexerStates> rows{};
    for (std::size_t state = 0; state < kLexerStates; ++state)
        for (std::size_t c = 0; c < 256; ++c)
            rows[state][c] = FindStep(static_cast<eLexerState>(state), static_cast<unsigned char>(c));
    return rows;
}

// The automaton by state and byte.
inline constexpr std::array<eStateRow, kLexerStates> kAutomaton = ExpandAutomaton();

// A token as cut, before keywords are looked up and numbers converted.
struct eLexeme {
    eSDLParserLexType type = sdlNone;
    const char* begin = nullptr; // its text in the source, from the first to the last character kept
    std::size_t length = 0;

    // Set only by lexer.h. For numbers: all digits as one integer, the power of ten to multiply it by, and whether the
    // two give the exact value. For strings: whether there is a backslash.
    unsigned long long digits = 0;
    int exponent = 0;
    bool exact = false;
    bool escaped = false;
};

// Cuts the token at *position by walking the table, and moves position and line past it. False if the text ends first.
inline bool CutByTable(const char** position, int* line, eLexeme* token) {
    const char* at = *position;
    eLexerState state = stBetween;
    token->begin = nullptr;
    token->length = 0;
    for (bool ended = false; !ended && state != stAccept;) {
        const auto c = static_cast<unsigned char>(*at);
        ended = c == 0;
        if (ended && state == stBetween)
            break;
        const eStep step = kAutomaton[state][c];
        if (step.action == eAction::Keep) {
            token->begin = token->begin ? token->begin : at;
            token->length = static_cast<std::size_t>(at + 1 - token->begin);
        }
        if (step.action != eAction::Stay && !ended)
            ++at;
        if (step.action != eAction::Stay && c == '\n')
            *line = static_cast<int>(static_cast<unsigned>(*line) + 1);
        state = step.to;
        token->type = step.type;
    }
    *position = at;
    if (state != stAccept)
        token->type = sdlNone;
    return state == stAccept;
}

} // namespace xSDL
