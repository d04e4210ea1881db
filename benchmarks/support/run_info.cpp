// SPDX-License-Identifier: BSL-1.0
#include "run_info.h"

#include <ctime>

#include "../platform/process.h"
#include "build_info.h"

namespace bench {
namespace {

std::string Now() {
    const std::time_t now = std::time(nullptr);
    std::string text(32, '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", std::gmtime(&now)));
    return text + " UTC";
}

} // namespace

eRunInfo RunInfo(const std::string& family, const std::string& folder) {
    return {family,
            Now(),
            platform::ProcessorName(),
            platform::ProcessorCount(),
            std::string(build_info::kCompiler) + ", " + build_info::kBuildType + " (" + build_info::kFlags + ")",
            build_info::kOptimised,
            build_info::kMissingPeers,
            folder};
}

} // namespace bench
