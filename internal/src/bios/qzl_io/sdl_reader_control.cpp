// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/reader.h>

#include <string>
#include <string_view>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/thread_storage.h>

#include "qzl_base/shared/ascii.h"
#include "sdl/calculation.h"
#include "sdl_reader_checks.h"

// Control blocks, which stand in parentheses: calculations are made, others are skipped. And the parameters that one
// may give to an included source.

namespace {

namespace Checks = xSDL::Checks;

using eBefore = xSDL::eCurrentToken::eBefore;

// Each thread's state from before the control block that is being calculated.
eCriticalResource<eBefore> stateBeforeControlBlock;

// Keeps a state there during its lifetime; its text may be a large one.
class eKeptState {
public:
    explicit eKeptState(eBefore state) { stateBeforeControlBlock.Get() = std::move(state); }
    ~eKeptState() { Take(); }
    eKeptState(const eKeptState&) = delete;
    eKeptState& operator=(const eKeptState&) = delete;

    static eBefore Take() { return std::exchange(stateBeforeControlBlock.Get(), {}); }
};

} // namespace

// The state before the ( is saved at once, since the next token displaces it. It is kept per thread: only the
// calculation uses it, and that ends before another control block can begin.
bool eSDLReader::ProcessControlBlock() {
    eSDLParser& parser = Parser();
    eBefore before = parser.current.Before();
    const char* const open = parser.current.Begin();
    Cut();
    const eSDLParserLexType type = parser.current.Type();
    if (type == sdlOperator) {
        eKeptState kept(std::move(before));
        Calculate(open);
        parser.current.SetBefore(eKeptState::Take());
        return false;
    }
    if (type != sdlString)
        CheckControlWord();
    SkipBlock(true);
    return true;
}

void eSDLReader::CheckControlWord() {
    eSDLParser& parser = *parsers.back();
    if (parser.current.Type() != sdlIdent && parser.current.Type() != sdlKeyword)
        Fail(Checks::kIdentifier);
    ascii::LowerCase(&parser.current.OwnString());
    if (const std::string_view word = parser.current.Text(); word != "include" && word != "define" && word != "mod")
        Fail(Checks::kControlBlockWord);
}

// The expression becomes one token, from which Back returns to before its (.
void eSDLReader::Calculate(const char* open) {
    eSDLParser& parser = Parser();
    const char operation = parser.current.Text().front();
    eSDLParserToken operand;
    GetOperand(&operand);
    float result = operand.floatValue;
    while (GetOperandOrEnd(&operand))
        result = xSDL::Combined(operation, result, operand.floatValue);
    parser.current.SetType(sdlFloat);
    parser.current.SetFloat(result);
    parser.current.OwnString() = ToString(result);
    parser.current.StandFor({open, parser.current.Position()});
}

void eSDLReader::GetOperand(eSDLParserToken* token) {
    Cut();
    TakeOperand(token);
}

bool eSDLReader::GetOperandOrEnd(eSDLParserToken* token) {
    Cut();
    if (parsers.back()->current.Type() == sdlClose)
        return false;
    TakeOperand(token);
    return true;
}

void eSDLReader::TakeOperand(eSDLParserToken* token) {
    const eSDLParser& parser = *parsers.back();
    if (parser.current.Type() != sdlInt && parser.current.Type() != sdlFloat)
        Fail(Checks::kNumber);
    RequireFloatFits();
    token->type = sdlFloat;
    token->floatValue = parser.current.Float();
    token->text.assign(parser.current.Text());
}

void eSDLReader::GetParameters(std::map<eStringKey, eStringKey>* parameters) {
    Cut();
    const eSDLParser& parser = *parsers.back();
    if (parser.current.Type() == sdlIdent && parser.current.Text() == "args")
        TakePositional(parameters);
    else
        TakeNamed(parameters);
    if (parser.current.Type() != sdlClose)
        Fail(Checks::kArgumentsEnd);
}

// Read directly from the parser: in an argument list control blocks and escapes are plain text.
void eSDLReader::TakePositional(std::map<eStringKey, eStringKey>* parameters) {
    eSDLParser& parser = Parser();
    for (int index = 0; Cut(); ++index) {
        const eSDLParserLexType type = parser.current.Type();
        if (type == sdlClose || type == sdlError)
            return;
        const std::string_view text = parser.current.Text();
        const std::string_view quote = type == sdlString ? "\"" : "";
        std::string value;
        value.reserve(text.size() + 2 * quote.size());
        (*parameters)[ToString(index, false)] = std::move(value.append(quote).append(text).append(quote));
    }
}

// The value directly follows its name, so the parser reads it as characters before the next token is cut.
void eSDLReader::TakeNamed(std::map<eStringKey, eStringKey>* parameters) {
    eSDLParser& parser = Parser();
    while (parser.current.Type() == sdlIdent || parser.current.Type() == sdlKeyword) {
        const eStringKey key = std::string(parser.current.Text());
        (*parameters)[key] = parser.TakeParameter(EnteringSources(parsers.size() - 1));
        Cut();
    }
}
