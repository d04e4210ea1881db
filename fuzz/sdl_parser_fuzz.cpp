// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_io/sdl/parser.h>
#include <qzl_io/streams.h>

#include "sdl/parser_model.h"
#include "sdl/sdl_source.h"

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are calls of parsers and their copies, and the text that they cut: every call gives what the model gives,
// which walks the table of the automaton one character at a time.

namespace {

eSDLKeyword* words;
eSDLKeyword lightWord(words, "light", 5);
eSDLKeyword aWord(words, "a", 3);
eSDLKeyword itemWord(words, "item", -4);

constexpr std::size_t kMostParsers = 4;

using eParameters = std::map<eStringKey, eStringKey>;

eParameters ParametersIn(eScript& script) {
    const char* const keys[] = {"p", "x", "px", "0", "1", "10", ""};
    const char* const values[] = {"7", "%p", "\"q\"", "", "%px%0", "a_value_longer_than_sixteen", "a\nb"};
    eParameters parameters;
    for (unsigned left = script.Below(4); left > 0; --left)
        parameters[keys[script.Below(7)]] = values[script.Below(7)];
    return parameters;
}

eParserPair PairOf(bool isDefine, const std::string& text, const std::vector<eSDLKeyword*>& tables,
                   const eParameters& parameters) {
    IO::eBufferStream stream(text);
    eParserPair pair = isDefine ? eParserPair{std::make_unique<eSDLParser>(eDefine{"box", text}, tables, parameters),
                                              eModelParser("define 'box'", Replaced(text, parameters))}
                                : eParserPair{std::make_unique<eSDLParser>("", stream, tables, parameters, nullptr),
                                              eModelParser("", Replaced(TextOf(text), parameters))};
    pair.model.table = tables.empty() ? nullptr : tables.back();
    return pair;
}

template <class eParser>
std::string Parameter(eParser& parser) {
    std::string parameter;
    const eFailure failure = FailureOf([&] { parameter = parser.GetParameter(); });
    return failure == eFailure() ? parameter : std::to_string(failure.line) + failure.message;
}

template <class eParser>
void ChangeToken(eParser& parser, bool wholly) {
    eSDLParserToken& token = parser.Token();
    if (wholly)
        token = {sdlBlockId, token.text, 2.5f, 9};
    else
        token.text = "changed";
}

void Call(unsigned call, eParserPair& pair) {
    switch (call % 12) {
    case 0:
    case 1:
        pair.parser->Back();
        pair.model.Back();
        break;
    case 2:
        pair.state = pair.parser->StateCurrent();
        pair.modelState = pair.model.StateCurrent();
        break;
    case 3:
        if (pair.state) {
            pair.parser->StatePrev(*pair.state);
            pair.model.StatePrev(pair.modelState);
        }
        break;
    case 4:
        RequireEqual(Parameter(*pair.parser), Parameter(pair.model), "the parameter");
        break;
    case 5:
        ChangeToken(*pair.parser, call > 127);
        ChangeToken(pair.model, call > 127);
        break;
    default:
        Require(pair.parser->Get() == pair.model.Get(), "the end differs");
        break;
    }
}

void CheckToken(eSDLParserToken& token, eSDLParserToken& expected) {
    Require(token.type == expected.type, "the type differs");
    if (token.type != sdlNone)
        RequireEqual(token.text, expected.text, "the token");
    const bool number = token.type == sdlInt || token.type == sdlFloat;
    Require(!number || token.floatValue == expected.floatValue, "the float differs");
    const bool valued = number || token.type == sdlKeyword || token.type == sdlBlockId;
    Require(!valued || token.intValue == expected.intValue, "the integer differs");
}

void CheckPlace(eParserPair& pair, bool watched) {
    Require(pair.parser->Line() == pair.model.Line(), "the line differs");
    RequireEqual(pair.parser->Name(), pair.model.Name(), "the name");
    if (!watched)
        return;
    RequireEqual(pair.parser->GetContext(), pair.model.GetContext(), "the context");
    CheckToken(pair.parser->Token(), pair.model.Token());
}

} // namespace

void Check(std::string_view input) {
    eScript script(input);
    const std::vector<eSDLKeyword*> allTables[] = {{}, {words}, {words, nullptr}};
    const std::vector<eSDLKeyword*>& tables = allTables[script.Below(3)];
    const bool isDefine = script.Flag();
    const eParameters parameters = ParametersIn(script);
    eScript calls(script.Text());
    std::vector<eParserPair> pairs;
    pairs.push_back(PairOf(isDefine, std::string(script.Rest()), tables, parameters));
    while (!calls.IsOver()) {
        const unsigned call = calls.Byte();
        const std::size_t which = call >> 4 & 3;
        eParserPair& pair = pairs[which % pairs.size()];
        if (call % 16 == 15 && pairs.size() < kMostParsers)
            pairs.push_back(pair.Copy());
        else
            Call(call, pair);
        for (eParserPair& each : pairs)
            CheckPlace(each, call % 3 == 0);
    }
}

void Work(std::string_view input) {
    const std::string text(input);
    IO::eBufferStream stream(text);
    const std::vector<eSDLKeyword*> tables{words};
    eSDLParser parser("", stream, tables, {{"p", "7"}, {"px", "%p"}}, nullptr);
    while (parser.Get() && parser.Token().type != sdlError) {
    }
    parser.GetContext();
    parser.DSE_Full();
}
