// SPDX-License-Identifier: BSL-1.0
// Compiled with RAPIDJSON_SSE2 in a namespace of its own: long strings and blanks are scanned 16 bytes at a time.
namespace rapidjson_sse2 {}
namespace rapidjson = rapidjson_sse2;

#include <string>

#include "../support/read_json.h"
#include "scene.h"

namespace bench {
namespace {

const eContender contender(1, [](eSuite& suite) {
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        if (!suite.Wants(ReadWork(document, kilobytes)))
            return;
        const std::string& text = Text(document, kilobytes, eFormat::Json);
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"RapidJSON SAX, copying handler, built with SSE2",
                   eKind::Peer,
                   1.0,
                   text.size(),
                   {},
                   [&text, document] {
                       return document == eDocument::Comments
                                  ? ReadJsonText<rapidjson::kParseCommentsFlag>(text.c_str())
                                  : ReadJsonText(text.c_str());
                   },
                   {}});
    });
});

} // namespace
} // namespace bench
