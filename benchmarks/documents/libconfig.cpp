// SPDX-License-Identifier: BSL-1.0
#include <libconfig.h++>

#include <cstdint>
#include <memory>
#include <string>

#include "work.h"

namespace bench {
namespace {

std::uint64_t Load(const std::string& text) {
    libconfig::Config config;
    config.readString(text.c_str());
    return static_cast<std::uint64_t>(config.lookup("scene").getLength());
}

std::uint64_t Find(const libconfig::Config& config, std::size_t items) {
    std::uint64_t sum = 0;
    for (std::size_t item = 0; item < items; item += kFoundEvery)
        sum +=
            static_cast<std::uint64_t>(static_cast<int>(config.lookup("scene.[" + std::to_string(item) + "].count")));
    return sum;
}

std::uint64_t Sum(const libconfig::Config& config) {
    std::uint64_t sum = 0;
    const libconfig::Setting& scene = config.lookup("scene");
    for (int item = 0; item < scene.getLength(); ++item)
        sum += static_cast<std::uint64_t>(static_cast<int>(scene[item]["count"]));
    return sum;
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Config);
        const std::size_t items = Items(eDocument::Records, kilobytes);
        const auto count = static_cast<double>(items);
        const auto config = std::make_shared<libconfig::Config>();
        config->readString(text.c_str());
        const char* const name = "libconfig++";
        if (suite.Wants(LoadWork(kilobytes)))
            suite.Add(LoadWork(kilobytes), count,
                      {name, eKind::Peer, 0.1, text.size(), {}, [&] { return Load(text); }, {}}, "record");
        if (suite.Wants(FindWork(kilobytes)))
            suite.Add(FindWork(kilobytes), Each(items, kFoundEvery),
                      {name, eKind::Note, 0, text.size(), {}, [=] { return Find(*config, items); }, {}}, "path");
        if (suite.Wants(SumWork(kilobytes)))
            suite.Add(SumWork(kilobytes), count,
                      {name, eKind::Note, 0, text.size(), {}, [=] { return Sum(*config); }, {}}, "record");
    }
});

} // namespace
} // namespace bench
