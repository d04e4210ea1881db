#include "reader_model.h"

#include <cmath>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "random_source.h"
#include "sdl_source.h"
#include "support/rounds.h"
#include "support/temp_folder.h"

// Readers compared with a model: random texts with included files, every operation in any order.

namespace {

eSDLKeyword* words;
eSDLKeyword lightWord(words, "light", 5);
eSDLKeyword colorWord(words, "Color", 7);
eSDLKeyword aWord(words, "a", 3);

eSDLKeyword* otherWords;
eSDLKeyword otherLight(otherWords, "light", 50);
eSDLKeyword otherInclude(otherWords, "include", 51);
eSDLKeyword otherItem(otherWords, "item", -4);

// A reader with the model's names for operations that have no name of their own.
class eTestedReader : public eSDLReader {
public:
    explicit eTestedReader(const std::string& text) : eSDLReader(std::make_unique<IO::eBufferStream>(text).get(), {}) {}

    using eSDLReader::Parser;
    std::string GetStrings() {
        eStrings list;
        *this >> list;
        std::string strings;
        for (const eStringKey& string : list)
            strings += string.str() + "|";
        return strings;
    }
    void TakeBlockStart() { *this >> begb; }
    void TakeBlockEnd() { *this >> endb; }
    void TakeControlStart() { *this >> begc; }
    void TakeControlEnd() { *this >> endc; }
};

struct eArguments {
    eSDLParserLexType type;
    int id;
    bool flag;
    eSDLKeyword* table;
    eFileName file;
};

std::string Of(float value) {
    std::ostringstream text;
    text << std::hexfloat << value;
    return std::isnan(value) ? "nan" : text.str();
}
std::string Of(int value) {
    return std::to_string(value);
}
std::string Of(bool value) {
    return value ? "true" : "false";
}
std::string Of(const std::string& value) {
    return value;
}
std::string Of(const std::wstring& value) {
    return ToString(value);
}
// The token as text, without values that a token of its type does not have.
std::string Of(const eSDLParserToken& token) {
    std::string text = std::to_string(token.type);
    if (token.type != sdlNone)
        text += "[" + token.text + "]";
    if (token.type == sdlInt || token.type == sdlFloat)
        text += Of(token.floatValue);
    if (token.type == sdlInt || token.type == sdlFloat || token.type == sdlKeyword || token.type == sdlBlockId)
        text += "=" + Of(token.intValue);
    return text;
}

// One call, for the reader and for the model.
struct eOperation {
    template <class eCall>
    eOperation(const char* operationName, eCall call)
        : name(operationName), onReader(ResultOf<eTestedReader>(call)), onModel(ResultOf<eModelReader>(call)) {}

    template <class eReader, class eCall>
    static std::function<std::string(eReader&, const eArguments&)> ResultOf(eCall call) {
        return [call](eReader& reader, const eArguments& arguments) {
            std::string result;
            const eFailure failure = FailureOf([&] {
                if constexpr (std::is_void_v<decltype(call(reader, arguments))>)
                    call(reader, arguments);
                else
                    result = Of(call(reader, arguments));
            });
            return failure == eFailure() ? result : failure.unit + std::to_string(failure.line) + failure.message;
        };
    }

    const char* name;
    std::function<std::string(eTestedReader&, const eArguments&)> onReader;
    std::function<std::string(eModelReader&, const eArguments&)> onModel;
};

using eArg = const eArguments&;
const std::vector<eOperation> kOperations = {
    {"GetInt", [](auto& r, eArg) { return r.GetInt(); }},
    {"GetFloat", [](auto& r, eArg) { return r.GetFloat(); }},
    {"GetBool", [](auto& r, eArg) { return r.GetBool(); }},
    {"GetString", [](auto& r, eArg) { return r.GetString(); }},
    {"GetStringW", [](auto& r, eArg) { return r.GetStringW(); }},
    {"GetStrings", [](auto& r, eArg) { return r.GetStrings(); }},
    {"GetIdent", [](auto& r, eArg a) { return r.GetIdent(a.flag); }},
    {"GetKeyword", [](auto& r, eArg) { return r.GetKeyword(); }},
    {"GetToken", [](auto& r, eArg) { return r.GetToken(sdlNone); }},
    {"GetToken of a type", [](auto& r, eArg a) { return r.GetToken(a.type); }},
    {"GetBlock", [](auto& r, eArg a) { return r.GetBlock(a.id); }},
    {"GetBlock", [](auto& r, eArg a) { return r.GetBlock(a.id); }},
    {"GetSignature", [](auto& r, eArg) { return r.GetSignature(); }},
    {"Check", [](auto& r, eArg a) { return r.Check(a.type, a.id); }},
    {"Test", [](auto& r, eArg a) { return r.Test(a.type, a.id); }},
    {"Test for a keyword", [](auto& r, eArg a) { return r.Test(a.id); }},
    {"Start", [](auto& r, eArg) { return r.Start(); }},
    {"End", [](auto& r, eArg) { return r.End(); }},
    {"Back", [](auto& r, eArg) { r.Back(); }},
    {"Back", [](auto& r, eArg) { r.Back(); }},
    {"SkipBlock", [](auto& r, eArg a) { r.SkipBlock(a.flag); }},
    {"begb", [](auto& r, eArg) { r.TakeBlockStart(); }},
    {"endb", [](auto& r, eArg) { r.TakeBlockEnd(); }},
    {"begc", [](auto& r, eArg) { r.TakeControlStart(); }},
    {"endc", [](auto& r, eArg) { r.TakeControlEnd(); }},
    {"PushKeywords", [](auto& r, eArg a) { r.PushKeywords(a.table); }},
    {"PopKeywords", [](auto& r, eArg) { r.PopKeywords(); }},
    {"Grate", [](auto& r, eArg a) { r.Grate().assign(1, a.flag); }},
    {"Include", [](auto& r, eArg a) { r.Include(a.file); }},
    {"Include", [](auto& r, eArg a) { r.Include(a.file); }},
};

// Files of random texts and one that is not there.
class eIncludedFiles {
public:
    explicit eIncludedFiles(std::mt19937& random) {
        const char* const ends[] = {"", " ", ";", "\"open", "\"cut \\", "{", "{#"};
        for (std::size_t i = 0; i < 42; ++i) {
            const std::string text = RandomSource(random, i % 4 == 0 ? 8 : 30) + ends[i % std::size(ends)];
            const std::string name = folder.Write(std::to_string(i) + ".sdl", text);
            texts[name] = text;
            names.push_back(name);
        }
        names.push_back(folder.Name("missing.sdl"));
    }

    const eModelReader::eFiles& Texts() const { return texts; }
    eFileName Any(std::mt19937& random) const { return names[random() % names.size()]; }

private:
    eTempFolder folder;
    eModelReader::eFiles texts;
    std::vector<std::string> names;
};

eArguments RandomArguments(std::mt19937& random, const eIncludedFiles& files) {
    eSDLKeyword* const tables[] = {words, otherWords, nullptr};
    return {static_cast<eSDLParserLexType>(static_cast<int>(random() % 15) - 1), random() % 3 == 0 ? 5 : 0,
            random() % 2 == 0, tables[random() % 3], files.Any(random)};
}

// A reader and its model.
struct ePair {
    std::unique_ptr<eTestedReader> reader;
    eModelReader model;
};

// A pair and its copies, which are created, destroyed and assigned to each other.
class eCopies {
public:
    explicit eCopies(ePair first) { pairs.push_back(std::move(first)); }

    ePair& Any(std::mt19937& random) { return pairs[random() % pairs.size()]; }

    const char* Change(std::mt19937& random) {
        ePair& pair = Any(random);
        ePair& other = Any(random);
        switch (random() % 36) {
        case 0:
        case 1:
            if (pairs.size() < 4)
                pairs.push_back({std::make_unique<eTestedReader>(*pair.reader), pair.model});
            return "copied, ";
        case 2:
            *pair.reader = *other.reader;
            pair.model = eModelReader(other.model);
            return "assigned, ";
        case 3:
            if (pairs.size() > 1)
                std::swap(pair, pairs.back()), pairs.pop_back();
            return "destroyed, ";
        default:
            return "";
        }
    }

private:
    std::vector<ePair> pairs;
};

// The place of a reader, after a look at its token, which makes the reader keep the token's text, or without.
template <class eReader>
std::string Place(eReader& reader, bool token) {
    auto& parser = reader.Parser();
    std::string place = parser.Name() + " line " + std::to_string(parser.Line()) + "\n" + parser.GetContext();
    return token ? place + Of(reader.Token()) : place;
}

} // namespace

TEST(SdlReaderModel, EveryCallOfEveryCopyGivesWhatReadingTokenByTokenGives) {
    std::mt19937 filesRandom(1);
    const eIncludedFiles files(filesRandom);
    for (eRounds rounds(5'000, 300'000); rounds.Next();) {
        std::mt19937 random(rounds.Current());
        const std::string text = RandomSource(random, random() % 4 == 0 ? 90 : 30);
        eCopies copies({std::make_unique<eTestedReader>(text), eModelReader(text, files.Texts())});
        const bool copying = random() % 2 == 0;
        const bool watching = random() % 2 == 0;
        std::string calls;
        int failures = 0;
        for (int left = 80; left > 0 && failures < 12; --left) {
            if (copying)
                calls += copies.Change(random);
            auto& [reader, model] = copies.Any(random);
            const eOperation& operation = kOperations[random() % kOperations.size()];
            const eArguments arguments = RandomArguments(random, files);
            calls += std::string(operation.name) + ", ";
            const std::string result = operation.onReader(*reader, arguments);
            ASSERT_EQ(result, operation.onModel(model, arguments)) << text << "\n" << calls;
            const bool token = watching || random() % 8 == 0;
            ASSERT_EQ(Place(*reader, token), Place(model, token)) << text << "\n" << calls;
            failures = result.starts_with("internal") ? failures + 1 : 0;
        }
    }
}
