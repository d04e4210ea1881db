// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl/parser.h>
#include <qzl_io/streams.h>

#include "open_reader.h"
#include "sdl/skim.h"
#include "support/processor.h"

// The state after skipping the rest of a block: the token at the end with its place, and the token that Back returns
// to.
struct eSkipOutcome {
    bool failed = false;
    bool masksAgree = true; // of every width
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
               << outcome.textBefore << "] line " << outcome.lineBefore << ", " << outcome.positionBefore
               << (outcome.masksAgree ? "" : ", but not by masks of every width");
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

// What skimming finds, with the last two tokens as they are cut from the place that it tells.
inline std::string Skim(std::string text, xSDL::eMaskPasser passByMasks) {
    text.append(xSDL::kTextEnd, '\0');
    const xSDL::eSkimmed skimmed = xSDL::eSkim(text.data(), 0).Run(passByMasks);
    std::string last;
    const char* at = skimmed.anchor;
    for (int line = xSDL::LinesOn(1, LinesBefore(at, skimmed)); at <= skimmed.stop;) {
        xSDL::eLexeme token;
        const bool more = CutToken(&at, &line, &token) && token.type != sdlError;
        const std::size_t before = last.rfind(';', last.size() - 1);
        last = last.substr(before == std::string::npos ? 0 : before) + ';' + std::to_string(token.type) + ' ' +
               std::to_string(at - text.data()) + ' ' + std::to_string(line);
        if (!more)
            break;
    }
    std::ostringstream found;
    found << static_cast<int>(skimmed.end) << " at " << skimmed.stop - text.data() << " depth " << skimmed.depth
          << " starts " << skimmed.starts << " marks " << xSDL::MarkOf(skimmed.mark) << ' '
          << xSDL::MarkOf(skimmed.markBefore) << " lines " << LinesBefore(skimmed.stop, skimmed) << last;
    return found.str();
}

// Skips by the reader's own function, which uses the widest masks that the processor has.
inline eSkipOutcome SkipAtOnce(const std::string& text) {
    eOpenReader reader(text);
    const char* const begin = reader.Parser().Cptr();
    bool failed = false;
    try {
        reader.SkipBlock();
    } catch (const xError::eException&) {
        failed = true;
    }
    eSkipOutcome outcome = OutcomeAt(reader.Parser(), begin, failed);
    outcome.masksAgree = !HasAvx2() || Skim(text, xSDL::PassBySse2) == Skim(text, xSDL::PassByAvx2);
    return outcome;
}
