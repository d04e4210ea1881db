// SPDX-License-Identifier: BSL-1.0
#include <libconfig.h++>

#include <cstdint>
#include <memory>
#include <string>

#include "work.h"

namespace bench {
namespace {

struct eLibconfig {
    static constexpr const char* kName = "libconfig++";
    static constexpr eKind kKind = eKind::Peer;
    static constexpr eFormat kFormat = eFormat::Config;

    static std::shared_ptr<libconfig::Config> Parse(const std::string& text) {
        const auto config = std::make_shared<libconfig::Config>();
        config->readString(text.c_str());
        return config;
    }

    static std::uint64_t Load(const std::string& text) {
        return static_cast<std::uint64_t>(Parse(text)->lookup("scene").getLength());
    }

    static std::uint64_t Find(const libconfig::Config& config, std::size_t items) {
        std::uint64_t sum = 0;
        for (std::size_t item = 0; item < items; item += kFoundEvery)
            sum += static_cast<std::uint64_t>(
                static_cast<int>(config.lookup("scene.[" + std::to_string(item) + "].count")));
        return sum;
    }

    static std::uint64_t Sum(const libconfig::Config& config) {
        std::uint64_t sum = 0;
        const libconfig::Setting& scene = config.lookup("scene");
        for (int item = 0; item < scene.getLength(); ++item)
            sum += static_cast<std::uint64_t>(static_cast<int>(scene[item]["count"]));
        return sum;
    }
};

const eContender contender(1, AddAllRows<eLibconfig>);

} // namespace
} // namespace bench
