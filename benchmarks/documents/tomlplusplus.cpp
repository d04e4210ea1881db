// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include <toml++/toml.h>

#include "work.h"

namespace bench {
namespace {

std::uint64_t Load(const std::string& text) {
    return toml::parse(text)["scene"].as_array()->size();
}

std::uint64_t Find(const toml::table& document, std::size_t items) {
    std::uint64_t sum = 0;
    for (std::size_t item = 0; item < items; item += kFoundEvery)
        sum += static_cast<std::uint64_t>(document.at_path("scene[" + std::to_string(item) + "].count").value_or(0));
    return sum;
}

std::uint64_t Sum(const toml::table& document) {
    std::uint64_t sum = 0;
    for (const toml::node& record : *document["scene"].as_array())
        sum += static_cast<std::uint64_t>((*record.as_table())["count"].value_or(0));
    return sum;
}

std::string Written(const toml::table& document) {
    std::ostringstream written;
    written << document;
    return written.str();
}

std::string Set(const std::string& text) {
    toml::table document = toml::parse(text);
    toml::array& records = *document["scene"].as_array();
    for (std::size_t item = 0; item < records.size(); item += kSetEvery)
        records[item].as_table()->insert_or_assign("count", 7);
    return Written(document);
}

std::string Format(const std::string& text) {
    return Written(toml::parse(text));
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Toml);
        const std::size_t items = Items(eDocument::Records, kilobytes);
        const auto count = static_cast<double>(items);
        const auto document = std::make_shared<toml::table>(toml::parse(text));
        const char* const name = "toml++";
        if (suite.Wants(LoadWork(kilobytes)))
            suite.Add(LoadWork(kilobytes), count,
                      {name, eKind::Peer, 0.1, text.size(), {}, [&] { return Load(text); }, {}}, "record");
        if (suite.Wants(FindWork(kilobytes)))
            suite.Add(FindWork(kilobytes), Each(items, kFoundEvery),
                      {name, eKind::Note, 0, text.size(), {}, [=] { return Find(*document, items); }, {}}, "path");
        if (suite.Wants(SumWork(kilobytes)))
            suite.Add(SumWork(kilobytes), count,
                      {name, eKind::Note, 0, text.size(), {}, [=] { return Sum(*document); }, {}}, "record");
        if (suite.Wants(SetWork(kilobytes)))
            suite.Add(SetWork(kilobytes), Each(items, kSetEvery),
                      {name,
                       eKind::Peer,
                       0.2,
                       text.size(),
                       {},
                       [&] { return std::uint64_t{Set(text).size() != 0}; },
                       [&] { return Sum(toml::parse(Set(text))); }},
                      "edit");
        if (suite.Wants(FormatWork(kilobytes)))
            suite.Add(FormatWork(kilobytes), count,
                      {name,
                       eKind::Peer,
                       0.2,
                       text.size(),
                       {},
                       [&] { return std::uint64_t{Format(text).size() != 0}; },
                       [&] { return Sum(toml::parse(Format(text))); }},
                      "record");
    }
});

} // namespace
} // namespace bench
