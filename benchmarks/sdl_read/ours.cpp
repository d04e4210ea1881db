// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "../support/keywords.h"
#include "../support/sum_scene.h"
#include "../support/work_folder.h"
#include "scene.h"

namespace bench {
namespace {

IO::eBufferStream StreamOver(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size(), text.size()};
}

std::uint64_t ReadText(eDocument document, const std::string& text) {
    IO::eBufferStream stream = StreamOver(text);
    eSDLReader reader(&stream, nullptr);
    reader.PushKeywords(SceneKeywords());
    reader.GetBlock(wordScene);
    const std::uint64_t sum = SumScene(document, reader);
    reader >> endb;
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
              {"eSDLReader", eKind::Ours, 0, text.size(), {}, [=, &text] { return ReadText(document, text); }, {}});
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
    suite.Add(
        work, values,
        {"eSDLReader::SkipBlock", eKind::Ours, 1.0 / 3, text->size(), {}, [text] { return SkipThenNext(*text); }, {}});
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
});

} // namespace
} // namespace bench
