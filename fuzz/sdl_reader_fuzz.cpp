// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qzl_base/error.h>

#include "sdl/open_reader.h"
#include "sdl/reader_calls.h"

#include "require.h"
#include "script.h"
#include "target.h"
#include "work_folder.h"

// The bytes are calls of readers and their copies, two texts to include, and the text that is read: every call gives
// what the model gives, which reads token by token.

namespace {

constexpr std::size_t kMostReaders = 4;
constexpr int kMostFailures = 4; // one after another: a reader that has failed seldom gets on

// A reader and its model.
struct ePair {
    std::unique_ptr<eTestedReader> reader;
    eModelReader model;
};

// The texts to include, which are written to files only if a script asks for them.
class eTexts {
public:
    eTexts(std::string_view first, std::string_view second) {
        texts[Folder().Name(kNames[0])] = first;
        texts[Folder().Name(kNames[1])] = second;
    }

    eFileName File(unsigned which) {
        const char* const name = kNames[which % 3];
        const auto text = texts.find(Folder().Name(name));
        if (text != texts.end())
            Folder().Write(name, text->second);
        return eFileName(Folder().Name(name));
    }

    const eModelReader::eFiles& All() const { return texts; }

private:
    static constexpr const char* kNames[] = {"first.sdl", "second.sdl", "missing.sdl"};

    static const eWorkFolder& Folder() {
        static const eWorkFolder folder;
        return folder;
    }

    eModelReader::eFiles texts;
};

eCallArguments ArgumentsOf(unsigned choice, eTexts& texts, bool withFile) {
    eSDLKeyword* const tables[] = {readerWords, otherReaderWords, nullptr};
    return {static_cast<eSDLParserLexType>(static_cast<int>(choice % 15) - 1), choice % 5 == 0 ? 5 : 0, choice % 2 == 0,
            tables[choice % 3], withFile ? texts.File(choice) : eFileName()};
}

// Copies, assigns or destroys a reader and its model.
void ChangePairs(std::vector<ePair>& pairs, ePair& pair, unsigned choice) {
    ePair& other = pairs[choice / 4 % pairs.size()];
    switch (choice % 4) {
    case 0:
    case 1:
        if (pairs.size() < kMostReaders)
            pairs.push_back({std::make_unique<eTestedReader>(*pair.reader), pair.model});
        break;
    case 2:
        *pair.reader = *other.reader;
        pair.model = eModelReader(other.model);
        break;
    default:
        if (pairs.size() > 1) {
            std::swap(pair, pairs.back());
            pairs.pop_back();
        }
        break;
    }
}

// True if the call succeeds.
bool Call(const eReaderCall& call, ePair& pair, const eCallArguments& arguments, bool watched) {
    const std::string result = call.onReader(*pair.reader, arguments);
    RequireEqual(result, call.onModel(pair.model, arguments), call.name);
    RequireEqual(Place(*pair.reader, watched), Place(pair.model, watched), call.name);
    return !result.starts_with("internal/");
}

} // namespace

void Check(std::string_view input) {
    eScript script(input);
    eScript calls(script.Text());
    const std::string_view first = script.Text();
    const std::string_view second = script.Text();
    eTexts texts(first, second);
    const std::string text(script.Rest());
    std::vector<ePair> pairs;
    pairs.push_back({std::make_unique<eTestedReader>(text), eModelReader(text, texts.All())});
    for (int failures = 0; !calls.IsOver() && failures < kMostFailures;) {
        const unsigned which = calls.Byte();
        const unsigned choice = calls.Byte();
        ePair& pair = pairs[choice / 64 % pairs.size()];
        if (which >= 240) {
            ChangePairs(pairs, pair, choice);
            continue;
        }
        const eReaderCall& call = kReaderCalls[which % kReaderCalls.size()];
        const bool includes = std::string_view(call.name) == "Include";
        const bool succeeds = Call(call, pair, ArgumentsOf(choice, texts, includes), choice % 8 < 3);
        failures = succeeds ? 0 : failures + 1;
    }
}

void Work(std::string_view input) {
    eOpenReader reader{std::string(input)};
    reader.PushKeywords(readerWords);
    try {
        while (reader.Get() && reader.Token().type != sdlError) {
        }
    } catch (const xError::eException&) {
        // An arithmetic block that is not complete.
    }
}
