// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <string>

#include <toml++/toml.h>

#include "../support/checksum.h"
#include "../support/work_folder.h"
#include "scene.h"

namespace bench {
namespace {

void Walk(const toml::node& node, eChecksum& sum, std::string& text) {
    if (const auto* integer = node.as_integer())
        sum.Integer(static_cast<int>(integer->get()));
    else if (const auto* real = node.as_floating_point())
        sum.Real(static_cast<float>(real->get()));
    else if (const auto* string = node.as_string()) {
        text = string->get();
        sum.Text(text);
    } else if (const auto* array = node.as_array())
        for (const toml::node& inner : *array)
            Walk(inner, sum, text);
    else if (const auto* table = node.as_table()) {
        if (table->size() == 1)
            Walk(table->begin()->second, sum, text);
        else
            for (const char* name : {"item", "count", "pos", "tag", "ids"})
                Walk(*table->get(name), sum, text);
    }
}

std::uint64_t Sum(const toml::table& table) {
    eChecksum sum;
    std::string text;
    Walk(table, sum, text);
    return sum.Value();
}

const eContender contender(1, [](eSuite& suite) {
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        if (!suite.Wants(ReadWork(document, kilobytes)))
            return;
        const std::string& text = Text(document, kilobytes, eFormat::Toml);
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"toml++", eKind::Peer, 0.07, text.size(), {}, [&] { return Sum(toml::parse(text)); }, {}});
    });
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(FileWork(kilobytes)))
            continue;
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Toml);
        const std::string file = WorkFile("peer" + std::to_string(kilobytes) + ".toml");
        WriteWhole(file, text);
        suite.Add(FileWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"toml++", eKind::Peer, 0.07, text.size(), {}, [file] { return Sum(toml::parse_file(file)); }, {}});
    }
});

} // namespace
} // namespace bench
