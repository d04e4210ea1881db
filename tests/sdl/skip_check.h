// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/streams.h>

#include "open_reader.h"

// The state after skipping the rest of a block: the token at the end with its place, and the token that Back returns
// to.
struct eSkipOutcome {
    bool failed = false;
    eSDLParserLexType type = sdlNone;
    std::string text;
    int line = 0;
    std::ptrdiff_t position = 0;
    eSDLParserLexType typeBefore = sdlNone;
    std::string textBefore;
    int lineBefore = 0;
    std::ptrdiff_t positionBefore = 0;

    bool operator==(const eSkipOutcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const eSkipOutcome& outcome) {
    return out << (outcome.failed ? "fails at " : "ends at ") << outcome.type << " [" << outcome.text << "] line "
               << outcome.line << ", " << outcome.position << " after " << outcome.typeBefore << " ["
               << outcome.textBefore << "] line " << outcome.lineBefore << ", " << outcome.positionBefore;
}

inline eSkipOutcome OutcomeAt(eSDLParser& parser, const char* begin, bool failed) {
    eSkipOutcome outcome;
    outcome.failed = failed;
    outcome.type = parser.Token().type;
    outcome.text = outcome.type == sdlNone ? "" : parser.Token().text;
    outcome.line = parser.Line();
    outcome.position = parser.Cptr() - begin;
    parser.Back();
    outcome.typeBefore = parser.Token().type;
    outcome.textBefore = parser.Token().text;
    outcome.lineBefore = parser.Line();
    outcome.positionBefore = parser.Cptr() - begin;
    return outcome;
}

// Skips token by token.
inline eSkipOutcome SkipPlainly(const std::string& text) {
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables;
    eSDLParser parser({}, stream, tables, {}, nullptr);
    const char* const begin = parser.Cptr();
    for (int depth = 0;;) {
        parser.Get();
        eSDLParserToken& token = parser.Token();
        if (token.type == sdlString)
            ConvertEscSequence(&token.text, false);
        if (token.type == sdlNone || token.type == sdlError)
            return OutcomeAt(parser, begin, true);
        if (token.type == sdlBlockStart || token.type == sdlOpen)
            ++depth;
        if ((token.type == sdlBlockEnd || token.type == sdlClose) && depth-- == 0)
            return OutcomeAt(parser, begin, false);
    }
}

// Skips by the reader's own function.
inline eSkipOutcome SkipAtOnce(const std::string& text) {
    eOpenReader reader(text);
    const char* const begin = reader.Parser().Cptr();
    bool failed = false;
    try {
        reader.SkipBlock();
    } catch (const xError::eException&) {
        failed = true;
    }
    return OutcomeAt(reader.Parser(), begin, failed);
}
