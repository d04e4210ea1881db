// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <string>

#include "../platform/raw_file.h"
#include "../support/read_bare.h"
#include "../support/work_folder.h"
#include "scene.h"
#include "shapes.h"

namespace bench {
namespace {

// The checksum of every token's kind and text, from the lexer alone.
std::uint64_t LexBare(const char* source) {
    using eType = eBareTokenizer::eType;
    eBareTokenizer tokens(source);
    eChecksum sum;
    for (eType type; (type = tokens.Next()) != eType::End && type != eType::Error;)
        sum.Text(tokens.text);
    return sum.Value();
}

std::uint64_t ReadLookingUp(const char* source, const eSceneWords& words) {
    std::uint64_t found = 0;
    const std::uint64_t sum =
        ReadBare(source, [&](const std::string& word) { found += static_cast<unsigned>(words.Find(word)); });
    return found == 0 ? 0 : sum;
}

std::uint64_t ReadBareFile(const std::string& file) {
    const platform::eRawFile source(file.c_str(), platform::eRawFile::Reading);
    const size_t size = source.Size();
    const auto text = std::make_unique_for_overwrite<char[]>(size + 1);
    text[source.Read(text.get(), size)] = 0;
    return ReadBare(text.get());
}

std::uint64_t ReadBareShaped(const eShapedText& shaped) {
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < shaped.readings; ++i)
        sum += ReadBare(shaped.text.c_str());
    return sum;
}

const eContender contender(2, [](eSuite& suite) {
    static const eSceneWords words;
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        if (!suite.Wants(ReadWork(document, kilobytes)) && !suite.Wants(LexWork(document, kilobytes)))
            return;
        const std::string& text = Text(document, kilobytes, eFormat::Sdl);
        const double values = Values(document, kilobytes);
        suite.Add(
            ReadWork(document, kilobytes), values,
            {"bare switch tokenizer", eKind::Limit, 1.2, text.size(), {}, [&] { return ReadBare(text.c_str()); }, {}});
        suite.Add(ReadWork(document, kilobytes), values,
                  {"bare switch tokenizer, words looked up",
                   eKind::Note,
                   0,
                   text.size(),
                   {},
                   [&] { return ReadLookingUp(text.c_str(), words); },
                   {}});
        suite.Add(
            LexWork(document, kilobytes), values,
            {"bare switch tokenizer", eKind::Limit, 0.6, text.size(), {}, [&] { return LexBare(text.c_str()); }, {}});
    });
    const unsigned least = suite.Options().kilobytes.front();
    for (const eShapedText& shaped : ShapedTexts(least))
        suite.Add(ShapeWork(shaped, least), shaped.values,
                  {"bare switch tokenizer",
                   eKind::Limit,
                   1.2,
                   shaped.text.size() * shaped.readings,
                   {},
                   [shaped] { return ReadBareShaped(shaped); },
                   {}});
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(FileWork(kilobytes)))
            continue;
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Sdl);
        const std::string file = WorkFile("limit" + std::to_string(kilobytes) + ".sdl");
        WriteWhole(file, text);
        suite.Add(FileWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"one read and a bare switch tokenizer",
                   eKind::Limit,
                   1.2,
                   text.size(),
                   {},
                   [file] { return ReadBareFile(file); },
                   {}});
    }
});

} // namespace
} // namespace bench
