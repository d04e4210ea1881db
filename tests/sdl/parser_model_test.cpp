// SPDX-License-Identifier: BSL-1.0
#include "parser_model.h"

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/streams.h>

#include "random_source.h"
#include "sdl_source.h"
#include "support/rounds.h"

// Parsers and their copies compared with a model: random texts, and calls in any order.

namespace {

eSDLKeyword* words;
eSDLKeyword lightWord(words, "light", 5);
eSDLKeyword aWord(words, "a", 3);
eSDLKeyword itemWord(words, "item", -4);

using eParameters = std::map<eStringKey, eStringKey>;

eParameters RandomParameters(std::mt19937& random) {
    const char* const keys[] = {"p", "x", "px", "0", "1", "10", ""};
    const char* const values[] = {"7", "%p", "\"q\"", "", "%px%0", "a_value_longer_than_sixteen", "a\nb"};
    eParameters parameters;
    for (auto left = random() % 8 > 2 ? 0 : random() % 4; left > 0; --left)
        parameters[keys[random() % 7]] = values[random() % 7];
    return parameters;
}

eParserPair RandomPair(std::mt19937& random, const std::vector<eSDLKeyword*>& tables) {
    const std::string text = RandomSource(random, 25) + (random() % 6 ? "" : "\"open");
    const eParameters parameters = RandomParameters(random);
    const std::string name = random() % 2 ? "a.sdl" : "";
    eParserPair pair = random() % 2
                           ? eParserPair{std::make_unique<eSDLParser>(name, *std::make_unique<IO::eBufferStream>(text),
                                                                      tables, parameters, nullptr),
                                         eModelParser(name, Replaced(TextOf(text), parameters))}
                           : eParserPair{std::make_unique<eSDLParser>(eDefine{"box", text}, tables, parameters),
                                         eModelParser("define 'box'", Replaced(text, parameters))};
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
void ChangeToken(eParser& parser, unsigned how) {
    eSDLParserToken& token = parser.Token();
    if (how == 0)
        token.text = "changed";
    else
        token = {sdlBlockId, token.text, 2.5f, 9};
}

// Makes one call of both, whose results must be equal.
void Call(std::mt19937& random, eParserPair& pair) {
    switch (const auto call = random() % 12; call) {
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
        ASSERT_EQ(Parameter(*pair.parser), Parameter(pair.model));
        break;
    case 5: {
        const unsigned how = random() % 4;
        if (how < 2) {
            ChangeToken(*pair.parser, how);
            ChangeToken(pair.model, how);
        }
        break;
    }
    default:
        ASSERT_EQ(pair.parser->Get(), pair.model.Get());
        break;
    }
}

void ExpectSamePlace(eParserPair& pair, bool watched) {
    ASSERT_EQ(pair.parser->Line(), pair.model.Line());
    ASSERT_EQ(pair.parser->Name(), pair.model.Name());
    ASSERT_EQ(pair.parser->GetContext(), pair.model.GetContext());
    if (!watched)
        return;
    const eSDLParserToken& token = pair.parser->Token();
    const eSDLParserToken& expected = pair.model.Token();
    ASSERT_EQ(token.type, expected.type);
    if (token.type != sdlNone) {
        ASSERT_EQ(token.text, expected.text);
    }
    if (token.type == sdlInt || token.type == sdlFloat) {
        ASSERT_EQ(token.floatValue, expected.floatValue);
    }
    if (token.type == sdlInt || token.type == sdlFloat || token.type == sdlKeyword || token.type == sdlBlockId) {
        ASSERT_EQ(token.intValue, expected.intValue);
    }
}

void CompareCalls(std::mt19937& random) {
    const std::vector<eSDLKeyword*> allTables[] = {{}, {words}, {words}, {words, nullptr}};
    const std::vector<eSDLKeyword*>& tables = allTables[random() % 4];
    std::vector<eParserPair> pairs;
    pairs.push_back(RandomPair(random, tables));
    const bool watching = random() % 2 == 0;
    for (int left = 60; left > 0; --left) {
        eParserPair& pair = pairs[random() % pairs.size()];
        ASSERT_NO_FATAL_FAILURE(Call(random, pair));
        for (eParserPair& each : pairs)
            ASSERT_NO_FATAL_FAILURE(ExpectSamePlace(each, watching || random() % 8 == 0));
        if (pairs.size() < 3 && random() % 16 == 0)
            pairs.push_back(pairs[random() % pairs.size()].Copy());
    }
}

} // namespace

TEST(SdlParserModel, EveryCallGivesWhatOneCharacterAtATimeGives) {
    for (eRounds rounds(3'000, 500'000); rounds.Next();) {
        std::mt19937 random(rounds.Current());
        ASSERT_NO_FATAL_FAILURE(CompareCalls(random)) << "round " << rounds.Current();
    }
}
