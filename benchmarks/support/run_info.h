// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace bench {

// When and on what a family was measured. Stands above its tables and in its report.
struct eRunInfo {
    std::string family;
    std::string when; // "2026-11-22 06:02 UTC"
    std::string processor;
    unsigned processors;
    std::string build; // compiler and flags
    bool isOptimised;
    std::string missingPeers; // separated by commas; empty if all are installed
    std::string folder;       // for the files that are read and written
};

eRunInfo RunInfo(const std::string& family, const std::string& folder);

} // namespace bench
