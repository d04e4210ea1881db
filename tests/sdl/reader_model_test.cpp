// SPDX-License-Identifier: BSL-1.0
#include "reader_calls.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <random>
#include <string>
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

eCallArguments RandomArguments(std::mt19937& random, const eIncludedFiles& files) {
    eSDLKeyword* const tables[] = {readerWords, otherReaderWords, nullptr};
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
            const eReaderCall& operation = kReaderCalls[random() % kReaderCalls.size()];
            const eCallArguments arguments = RandomArguments(random, files);
            calls += std::string(operation.name) + ", ";
            const std::string result = operation.onReader(*reader, arguments);
            ASSERT_EQ(result, operation.onModel(model, arguments)) << text << "\n" << calls;
            const bool token = watching || random() % 8 == 0;
            ASSERT_EQ(Place(*reader, token), Place(model, token)) << text << "\n" << calls;
            failures = result.starts_with("internal") ? failures + 1 : 0;
        }
    }
}
