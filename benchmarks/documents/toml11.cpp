// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include <toml.hpp>

#include "work.h"

namespace bench {
namespace {

struct eToml11 {
    static constexpr const char* kName = "toml11";
    static constexpr eKind kKind = eKind::Peer;
    static constexpr eFormat kFormat = eFormat::Toml;

    static std::shared_ptr<toml::value> Parse(const std::string& text) {
        return std::make_shared<toml::value>(Parsed(text));
    }

    // It reads streams and files.
    static toml::value Parsed(const std::string& text) {
        std::istringstream stream(text);
        return toml::parse(stream);
    }

    static std::uint64_t Load(const std::string& text) { return toml::find(Parsed(text), "scene").as_array().size(); }

    // It has no paths: the keys are passed one by one.
    static std::uint64_t Find(const toml::value& document, std::size_t items) {
        std::uint64_t sum = 0;
        for (std::size_t item = 0; item < items; item += kFoundEvery)
            sum += static_cast<std::uint64_t>(toml::find<int>(document, "scene", item, "count"));
        return sum;
    }

    static std::uint64_t Sum(const toml::value& document) {
        std::uint64_t sum = 0;
        for (const toml::value& record : toml::find(document, "scene").as_array())
            sum += static_cast<std::uint64_t>(toml::find<int>(record, "count"));
        return sum;
    }

    static std::string Set(const std::string& text) {
        toml::value document = Parsed(text);
        toml::array& records = toml::find(document, "scene").as_array();
        for (std::size_t item = 0; item < records.size(); item += kSetEvery)
            records[item]["count"] = 7;
        return toml::format(document);
    }

    static std::string Format(const std::string& text) { return toml::format(Parsed(text)); }
};

const eContender contender(1, AddAllRows<eToml11>);

} // namespace
} // namespace bench
