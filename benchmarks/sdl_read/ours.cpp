// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "../support/keywords.h"
#include "../support/read_scene.h"
#include "../support/sum_scene.h"
#include "../support/work_folder.h"
#include "scene.h"
#include "shapes.h"

namespace bench {
namespace {

// What skipping a block may take of the time of reading it.
constexpr double kSkipping = 0.1;

IO::eBufferStream StreamOver(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size(), text.size()};
}

std::uint64_t ReadUnit(eShape shape, const std::string& text) {
    IO::eBufferStream stream = StreamOver(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    eChecksum sum;
    while (!reader.End())
        if (shape == eShape::EmptyBlocks)
            reader >> begb >> endb;
        else if (shape == eShape::EmptyStrings)
            sum.Text(reader.GetString());
        else
            sum.Integer(reader.GetInt());
    reader >> endb;
    return sum.Value();
}

std::uint64_t ReadShaped(const eShapedText& shaped) {
    std::uint64_t sum = 0;
    for (std::uint64_t i = 0; i < shaped.readings; ++i)
        sum += shaped.shape == eShape::OneLine || shaped.shape == eShape::Tiny
                   ? ReadScene(eDocument::Records, shaped.text)
                   : ReadUnit(shaped.shape, shaped.text);
    return sum;
}

std::uint64_t ReadFile(const std::string& file) {
    eSDLReader reader(eFileName(file), "scene", nullptr);
    reader.PushKeywords(SceneKeywords());
    return SumScene(eDocument::Records, reader);
}

// The checksum of every token's text, up to the end.
std::uint64_t Lex(eSDLParser& parser) {
    eChecksum sum;
    while (parser.Get())
        sum.Text(parser.Token().text);
    return sum.Value();
}

// The document as one block, followed by one last value.
std::string InBlock(const std::string& text) {
    return text + " 42";
}

std::uint64_t ReadThenNext(const std::string& text) {
    IO::eBufferStream stream = StreamOver(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    SumScene(eDocument::Records, reader);
    reader >> endb;
    return static_cast<unsigned>(reader.GetInt());
}

std::uint64_t SkipThenNext(const std::string& text) {
    IO::eBufferStream stream = StreamOver(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    reader.SkipBlock(false);
    return static_cast<unsigned>(reader.GetInt());
}

void AddReading(eSuite& suite, eDocument document, unsigned kilobytes) {
    if (!suite.Wants(ReadWork(document, kilobytes)))
        return;
    const std::string& text = Text(document, kilobytes, eFormat::Sdl);
    suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
              {"eSDLReader", eKind::Ours, 0, text.size(), {}, [=, &text] { return ReadScene(document, text); }, {}});
}

void AddLexing(eSuite& suite, eDocument document, unsigned kilobytes) {
    if (!suite.Wants(LexWork(document, kilobytes)))
        return;
    static const std::vector<eSDLKeyword*> noKeywords;
    static const std::map<eStringKey, eStringKey> noParameters;
    const std::string& text = Text(document, kilobytes, eFormat::Sdl);
    const auto parser = std::make_shared<std::unique_ptr<eSDLParser>>();
    suite.Add(LexWork(document, kilobytes), Values(document, kilobytes),
              {"eSDLParser::Get",
               eKind::Ours,
               0,
               text.size(),
               [parser, &text] {
                   parser->reset();
                   IO::eBufferStream stream = StreamOver(text);
                   *parser = std::make_unique<eSDLParser>("", stream, noKeywords, noParameters, nullptr);
               },
               [parser] { return Lex(**parser); },
               {}});
}

void AddSkipping(eSuite& suite, unsigned kilobytes) {
    const std::string work = "skip a block: records, " + SizeName(kilobytes);
    if (!suite.Wants(work))
        return;
    const auto text = std::make_shared<const std::string>(InBlock(Text(eDocument::Records, kilobytes, eFormat::Sdl)));
    const double values = Values(eDocument::Records, kilobytes);
    suite.Add(work, values,
              {"reading it value by value",
               eKind::Ours,
               0,
               text->size(),
               {},
               [text] { return ReadThenNext(*text); },
               {},
               false});
    suite.Add(work, values,
              {"eSDLReader::SkipBlock",
               eKind::Ours,
               kSkipping,
               text->size(),
               {},
               [text] { return SkipThenNext(*text); },
               {}});
}

void AddShaped(eSuite& suite, unsigned kilobytes) {
    for (const eShapedText& shaped : ShapedTexts(kilobytes))
        suite.Add(ShapeWork(shaped, kilobytes), shaped.values,
                  {"eSDLReader",
                   eKind::Ours,
                   0,
                   shaped.text.size() * shaped.readings,
                   {},
                   [shaped] { return ReadShaped(shaped); },
                   {}});
}

void AddFile(eSuite& suite, unsigned kilobytes) {
    if (!suite.Wants(FileWork(kilobytes)))
        return;
    const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Sdl);
    const std::string file = WorkFile("ours" + std::to_string(kilobytes) + ".sdl");
    WriteWhole(file, text);
    eRow row{"eSDLReader(eFileName)", eKind::Ours, 0, text.size(), {}, [file] { return ReadFile(file); }, {}};
    row.peakAllowed = [size = text.size()] { return static_cast<double>(size) + 1048576; };
    suite.Add(FileWork(kilobytes), Values(eDocument::Records, kilobytes), row);
}

const eContender contender(0, [](eSuite& suite) {
    ForEachDocument(suite.Options(),
                    [&](eDocument document, unsigned kilobytes) { AddReading(suite, document, kilobytes); });
    for (const unsigned kilobytes : suite.Options().kilobytes)
        AddFile(suite, kilobytes);
    ForEachDocument(suite.Options(),
                    [&](eDocument document, unsigned kilobytes) { AddLexing(suite, document, kilobytes); });
    for (const unsigned kilobytes : suite.Options().kilobytes)
        AddSkipping(suite, kilobytes);
    AddShaped(suite, suite.Options().kilobytes.front());
});

} // namespace
} // namespace bench
