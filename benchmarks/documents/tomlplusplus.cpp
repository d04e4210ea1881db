// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include <toml++/toml.h>

#include "work.h"

namespace bench {
namespace {

struct eTomlPlusPlus {
    static constexpr const char* kName = "toml++";
    static constexpr eKind kKind = eKind::Peer;
    static constexpr eFormat kFormat = eFormat::Toml;

    static std::shared_ptr<toml::table> Parse(const std::string& text) {
        return std::make_shared<toml::table>(toml::parse(text));
    }

    static std::uint64_t Load(const std::string& text) { return toml::parse(text)["scene"].as_array()->size(); }

    static std::uint64_t Find(const toml::table& document, std::size_t items) {
        std::uint64_t sum = 0;
        for (std::size_t item = 0; item < items; item += kFoundEvery)
            sum +=
                static_cast<std::uint64_t>(document.at_path("scene[" + std::to_string(item) + "].count").value_or(0));
        return sum;
    }

    static std::uint64_t Sum(const toml::table& document) {
        std::uint64_t sum = 0;
        for (const toml::node& record : *document["scene"].as_array())
            sum += static_cast<std::uint64_t>((*record.as_table())["count"].value_or(0));
        return sum;
    }

    static std::string Written(const toml::table& document) {
        std::ostringstream written;
        written << document;
        return written.str();
    }

    static std::string Set(const std::string& text) {
        toml::table document = toml::parse(text);
        toml::array& records = *document["scene"].as_array();
        for (std::size_t item = 0; item < records.size(); item += kSetEvery)
            records[item].as_table()->insert_or_assign("count", 7);
        return Written(document);
    }

    static std::string Format(const std::string& text) { return Written(toml::parse(text)); }
};

const eContender contender(1, AddAllRows<eTomlPlusPlus>);

} // namespace
} // namespace bench
