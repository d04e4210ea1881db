// SPDX-License-Identifier: BSL-1.0
#include <rapidjson/filereadstream.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "../support/read_json.h"
#include "../support/work_folder.h"
#include "scene.h"

namespace bench {
namespace {

std::uint64_t ParseFile(const std::string& name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name.c_str(), "rb"), std::fclose);
    const auto buffer = std::make_unique_for_overwrite<char[]>(65536);
    rapidjson::FileReadStream source(file.get(), buffer.get(), 65536);
    return ReadJson<rapidjson::kParseDefaultFlags>(source);
}

const eContender contender(1, [](eSuite& suite) {
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        if (!suite.Wants(ReadWork(document, kilobytes)))
            return;
        const bool isCommented = document == eDocument::Comments;
        const std::string& text = Text(document, kilobytes, eFormat::Json);
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"RapidJSON SAX, copying handler",
                   eKind::Peer,
                   1.0,
                   text.size(),
                   {},
                   [&text, isCommented] {
                       return isCommented ? ReadJsonText<rapidjson::kParseCommentsFlag>(text.c_str())
                                          : ReadJsonText(text.c_str());
                   },
                   {}});
        if (isCommented)
            return;
        const std::string& tight = Text(document, kilobytes, eFormat::JsonTight);
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"RapidJSON SAX, text without blanks",
                   eKind::Note,
                   0,
                   tight.size(),
                   {},
                   [&tight] { return ReadJsonText(tight.c_str()); },
                   {}});
    });
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(FileWork(kilobytes)))
            continue;
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Json);
        const std::string file = WorkFile("peer" + std::to_string(kilobytes) + ".json");
        WriteWhole(file, text);
        suite.Add(FileWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"RapidJSON SAX, FileReadStream of 64 KiB",
                   eKind::Peer,
                   1.0,
                   text.size(),
                   {},
                   [file] { return ParseFile(file); },
                   {}});
    }
});

} // namespace
} // namespace bench
