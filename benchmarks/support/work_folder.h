#pragma once

#include <string>

namespace bench {

// This run's own folder, made on first use, in memory where there is room, and removed when the program ends.
// The environment variable QZL_BENCH_FOLDER names another place to make it in. Ends in "/".
const std::string& WorkFolder();

// A file of that name in the work folder.
inline std::string WorkFile(const std::string& name) {
    return WorkFolder() + name;
}

void WriteWhole(const std::string& file, const std::string& bytes);
std::string ReadWhole(const std::string& file);

} // namespace bench
