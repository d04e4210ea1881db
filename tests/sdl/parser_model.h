// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/sdl/parser.h>

// The format's lexer a second time: a table of states and transitions, one character at a time, without regard to
// speed.
class eModelAutomaton {
public:
    enum eAction { Skip, Keep, Stay };
    struct eTransition {
        std::size_t next;
        eAction action;
        eSDLParserLexType type = sdlNone;
    };
    static constexpr std::size_t kAccept = 13;

    eModelAutomaton() {
        const std::string any;
        const std::string digits = "0123456789";
        const std::string hexLetters = "ABCDEFabcdef";
        const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
        const std::string lineEnds = "\n\r";
        // Among the rows of a state that contain the character, the last one is valid.
        const struct {
            std::size_t state;
            std::string characters;
            eTransition transition;
        } rows[] = {
            {0, any, {kAccept, Stay, sdlError}},
            {0, letters + "%", {8, Keep}},
            {0, "(", {kAccept, Skip, sdlOpen}},
            {0, ")", {kAccept, Skip, sdlClose}},
            {0, "\t\n\r =", {0, Skip}},
            {0, digits, {5, Keep}},
            {0, "0", {9, Keep}},
            {0, "-+", {4, Keep}},
            {0, "*/", {kAccept, Keep, sdlOperator}},
            {0, "\"", {2, Skip}},
            {0, ";", {1, Skip}},
            {0, "{", {11, Skip}},
            {0, "}", {kAccept, Skip, sdlBlockEnd}},
            {1, any, {1, Skip}},
            {1, lineEnds, {0, Skip}},
            {2, any, {2, Keep}},
            {2, "\"", {kAccept, Skip, sdlString}},
            {2, "\\", {3, Keep}},
            {2, lineEnds, {kAccept, Stay, sdlError}},
            {3, any, {2, Keep}},
            {4, any, {kAccept, Stay, sdlOperator}},
            {4, digits, {5, Keep}},
            {5, any, {kAccept, Stay, sdlInt}},
            {5, digits, {5, Keep}},
            {5, ".", {6, Keep}},
            {5, "eE", {7, Keep}},
            {6, any, {kAccept, Stay, sdlFloat}},
            {6, digits, {6, Keep}},
            {6, "eE", {7, Keep}},
            {7, any, {kAccept, Stay, sdlFloat}},
            {7, digits + "-+", {7, Keep}},
            {8, any, {kAccept, Stay, sdlIdent}},
            {8, letters + digits, {8, Keep}},
            {9, any, {kAccept, Stay, sdlInt}},
            {9, "x", {10, Skip}},
            {9, digits, {5, Keep}},
            {9, ".", {6, Keep}},
            {10, any, {kAccept, Stay, sdlHex}},
            {10, digits + hexLetters, {10, Keep}},
            {11, any, {kAccept, Stay, sdlBlockStart}},
            {11, "#", {12, Keep}},
            {12, any, {kAccept, Stay, sdlBlockStart}},
            {12, letters + digits + "#-+", {12, Keep}},
        };
        for (const auto& row : rows) {
            if (row.characters.empty())
                transitions[row.state].fill(row.transition);
            for (const char c : row.characters)
                transitions[row.state][static_cast<unsigned char>(c)] = row.transition;
        }
    }

    const eTransition& At(std::size_t state, char c) const { return transitions[state][static_cast<unsigned char>(c)]; }

private:
    std::array<std::array<eTransition, 256>, kAccept> transitions;
};

// The text of a file or stream: its bytes without a byte-order mark.
inline std::string TextOf(const std::string& bytes) {
    return bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes;
}

// The behaviour expected of eSDLParser, call by call, under the same names.
class eModelParser {
public:
    struct eState {
        eSDLParserToken token;
        int line = 1;
        std::ptrdiff_t position = -1; // in the text; below 0: no state
    };

    // The text ends at its first zero.
    eModelParser(std::string parserName, const std::string& source)
        : name(std::move(parserName)), text(source.c_str()) {
        current.position = 0;
    }

    bool Get() {
        previous = current;
        eSDLParserToken& token = current.token;
        std::ptrdiff_t first = -1;
        std::ptrdiff_t last = -1;
        token.type = Walk(&first, &last);
        if (token.type == sdlNone)
            return false;
        token.text = first < 0 ? "" : text.substr(static_cast<std::size_t>(first), Length(first, last));
        AnalyseToken();
        return true;
    }

    void Back() {
        if (previous.position < 0)
            return;
        current = previous;
        previous.position = -1;
    }

    // Throws the report if there are no parentheses.
    std::string GetParameter() {
        const char c = At(current.position);
        current.position += c != 0;
        if (c != '(')
            Fail(301, "'(' required");
        const std::size_t begin = static_cast<std::size_t>(current.position);
        const std::size_t end = text.find(')', begin);
        if (end == std::string::npos)
            Fail(306, "')' required");
        current.position = static_cast<std::ptrdiff_t>(end) + 1;
        return text.substr(begin, end - begin);
    }

    std::string GetContext() const {
        std::ptrdiff_t at = current.position;
        while (at > 0 && At(at - 1) != '\n')
            --at;
        std::string context;
        for (int line = 0; line < 5 && At(at) != 0; ++line) {
            context += std::to_string(current.line + line) + ": ";
            for (char c = 0; c != '\n' && At(at) != 0; ++at) {
                c = At(at);
                context += at == current.position ? "\xAB" : "";
                context += c == '\r' ? "" : std::string(1, c);
            }
        }
        return context;
    }

    eSDLParserToken& Token() { return current.token; }
    const eState& StateCurrent() const { return current; }
    const eState& StateBefore() const { return previous; }
    void StatePrev(const eState& state) { previous = state; }
    const std::string& Name() const { return name; }
    int Line() const { return current.line; }

    const eSDLKeyword* table = nullptr;

    static std::string Lowered(std::string word) {
        for (char& c : word)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return word;
    }

    static int Truncated(float value) {
        const bool fits = value > -2147483648.0f && value < 2147483648.0f;
        return fits ? static_cast<int>(value) : std::numeric_limits<int>::min();
    }

private:
    // Decimal within an int, or the low 32 bits of hexadecimal digits.
    static int Integer(const std::string& text) {
        if (!text.starts_with("0x"))
            return static_cast<int>(std::clamp<long long>(std::strtoll(text.c_str(), nullptr, 10),
                                                          std::numeric_limits<int>::min(),
                                                          std::numeric_limits<int>::max()));
        unsigned value = 0;
        for (const char digit : Lowered(text.substr(2)))
            value = 16 * value + static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
        return static_cast<int>(value);
    }

    char At(std::ptrdiff_t position) const {
        const auto index = static_cast<std::size_t>(position);
        return index < text.size() ? text[index] : '\0';
    }

    static std::size_t Length(std::ptrdiff_t first, std::ptrdiff_t last) {
        return static_cast<std::size_t>(last - first) + 1;
    }

    // Passes one token and returns the ends of its text, if it has any.
    eSDLParserLexType Walk(std::ptrdiff_t* first, std::ptrdiff_t* last) {
        static const eModelAutomaton automaton;
        for (std::size_t state = 0;;) {
            const char c = At(current.position);
            if (state == 0 && c == 0)
                return sdlNone;
            const eModelAutomaton::eTransition& transition = automaton.At(state, c);
            if (transition.action == eModelAutomaton::Keep) {
                *first = *first < 0 ? current.position : *first;
                *last = current.position;
            }
            if (transition.action != eModelAutomaton::Stay) {
                current.position += c != 0;
                current.line += c == '\n';
            }
            state = transition.next;
            if (state == eModelAutomaton::kAccept)
                return transition.type;
            if (c == 0)
                return sdlNone;
        }
    }

    void AnalyseToken() {
        eSDLParserToken& token = current.token;
        if (token.type == sdlIdent)
            LookUp();
        if (token.type == sdlBlockStart && !token.text.empty())
            token.text.erase(0, 1);
        if (token.type == sdlFloat) {
            token.floatValue = std::strtof(token.text.c_str(), nullptr);
            token.intValue = Truncated(token.floatValue);
        }
        if (token.type == sdlInt || token.type == sdlHex) {
            token.intValue = Integer(token.text);
            token.floatValue = static_cast<float>(token.intValue);
        }
        if (token.type == sdlHex) {
            token.type = sdlInt;
            token.text = std::to_string(token.intValue);
        }
    }

    void LookUp() {
        for (const eSDLKeyword* entry = table; entry; entry = entry->next)
            if (Lowered(entry->name) == Lowered(current.token.text)) {
                current.token.type = sdlKeyword;
                current.token.intValue = entry->id;
                return;
            }
    }

    [[noreturn]] static void Fail(int line, const char* message) {
        throw xError::eException({"internal/src/bios/qzl_io/sdl_parser", line, message, ""});
    }

    std::string name;
    std::string text;
    eState current;
    eState previous;
};

// The text as parsers read it: with the value in each parameter's place.
inline std::string Replaced(std::string text, const std::map<eStringKey, eStringKey>& parameters) {
    for (const auto& [key, value] : parameters) {
        const std::string pattern = "%" + key.str();
        for (std::size_t at = 0; (at = text.find(pattern, at)) != std::string::npos; at += value.size())
            text.replace(at, pattern.size(), value.str());
    }
    return text;
}

// A parser, its model, and a saved state of each to which Back may return.
struct eParserPair {
    std::unique_ptr<eSDLParser> parser;
    eModelParser model;
    std::optional<eSDLParserState> state = {};
    eModelParser::eState modelState = {};

    eParserPair Copy() const { return {std::make_unique<eSDLParser>(*parser), model}; }
};
