// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace bench {

// The folder of this run, with a trailing "/". It is created on first use, in memory if there is room, and removed when
// the program ends. The environment variable QZL_BENCH_FOLDER names another place for it.
const std::string& WorkFolder();

// A file of that name in the work folder.
inline std::string WorkFile(const std::string& name) {
    return WorkFolder() + name;
}

void WriteWhole(const std::string& file, const std::string& bytes);
std::string ReadWhole(const std::string& file);

} // namespace bench
