// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include <toml.hpp>

#include "work.h"

namespace bench {
namespace {

// It reads streams and files.
toml::value Parsed(const std::string& text) {
    std::istringstream stream(text);
    return toml::parse(stream);
}

std::uint64_t Load(const std::string& text) {
    return toml::find(Parsed(text), "scene").as_array().size();
}

// It has no paths: the keys are passed one by one.
std::uint64_t Find(const toml::value& document, std::size_t items) {
    std::uint64_t sum = 0;
    for (std::size_t item = 0; item < items; item += kFoundEvery)
        sum += static_cast<std::uint64_t>(toml::find<int>(document, "scene", item, "count"));
    return sum;
}

std::uint64_t Sum(const toml::value& document) {
    std::uint64_t sum = 0;
    for (const toml::value& record : toml::find(document, "scene").as_array())
        sum += static_cast<std::uint64_t>(toml::find<int>(record, "count"));
    return sum;
}

std::string Set(const std::string& text) {
    toml::value document = Parsed(text);
    toml::array& records = toml::find(document, "scene").as_array();
    for (std::size_t item = 0; item < records.size(); item += kSetEvery)
        records[item]["count"] = 7;
    return toml::format(document);
}

std::string Format(const std::string& text) {
    return toml::format(Parsed(text));
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const std::string& text = Text(eDocument::Records, kilobytes, eFormat::Toml);
        const std::size_t items = Items(eDocument::Records, kilobytes);
        const auto count = static_cast<double>(items);
        const auto document = std::make_shared<toml::value>(Parsed(text));
        const char* const name = "toml11";
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
                       [&] { return Sum(Parsed(Set(text))); }},
                      "edit");
        if (suite.Wants(FormatWork(kilobytes)))
            suite.Add(FormatWork(kilobytes), count,
                      {name,
                       eKind::Peer,
                       0.2,
                       text.size(),
                       {},
                       [&] { return std::uint64_t{Format(text).size() != 0}; },
                       [&] { return Sum(Parsed(Format(text))); }},
                      "record");
    }
});

} // namespace
} // namespace bench
