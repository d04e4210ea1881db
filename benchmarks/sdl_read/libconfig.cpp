// SPDX-License-Identifier: BSL-1.0
#include <libconfig.h++>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "../support/checksum.h"
#include "../support/work_folder.h"
#include "scene.h"

namespace bench {
namespace {

void Walk(const libconfig::Setting& setting, const eSceneWords& words, eChecksum& sum, std::string& text) {
    switch (setting.getType()) {
    case libconfig::Setting::TypeInt:
        sum.Integer(static_cast<int>(setting));
        break;
    case libconfig::Setting::TypeFloat:
        sum.Real(static_cast<float>(setting));
        break;
    case libconfig::Setting::TypeString:
        text = static_cast<const char*>(setting);
        sum.Text(text);
        break;
    default:
        for (int i = 0; i < setting.getLength(); ++i) {
            const libconfig::Setting& inner = setting[i];
            if (const char* name = inner.getName(); name && words.Find(name) == 0)
                sum.Integer(-1);
            Walk(inner, words, sum, text);
        }
    }
}

std::uint64_t Sum(const libconfig::Config& config) {
    static const eSceneWords words;
    eChecksum sum;
    std::string text;
    Walk(config.getRoot(), words, sum, text);
    return sum.Value();
}

std::uint64_t ReadText(const std::string& text) {
    libconfig::Config config;
    config.readString(text.c_str());
    return Sum(config);
}

std::uint64_t ReadFile(const std::string& file) {
    libconfig::Config config;
    config.readFile(file.c_str());
    return Sum(config);
}

const eContender contender(1, [](eSuite& suite) {
    ForEachDocument(suite.Options(), [&](eDocument document, unsigned kilobytes) {
        if (!suite.Wants(ReadWork(document, kilobytes)))
            return;
        const std::string& text = Text(document, kilobytes, eFormat::Config);
        suite.Add(ReadWork(document, kilobytes), Values(document, kilobytes),
                  {"libconfig++", eKind::Peer, 0.07, text.size(), {}, [&] { return ReadText(text); }, {}});
    });
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(FileWork(kilobytes)))
            continue;
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Config);
        const std::string file = WorkFile("peer" + std::to_string(kilobytes) + ".cfg");
        WriteWhole(file, text);
        suite.Add(FileWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"libconfig++", eKind::Peer, 0.07, text.size(), {}, [file] { return ReadFile(file); }, {}});
    }
});

} // namespace
} // namespace bench
