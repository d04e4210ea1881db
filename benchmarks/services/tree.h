// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>

#include "../support/suite.h"
#include "../support/work_folder.h"

namespace bench {

// The functions by which one contender does the work. All folder names end in "/".
struct eFolderWays {
    std::string name;
    eKind kind;
    double target;
    std::uint64_t (*walk)(const std::string& folder);  // adds up the first letter, plus one, of every file name
    std::uint64_t (*sizes)(const std::string& folder); // adds up the sizes of the files
    void (*copy)(const std::string& from, const std::string& to);
    void (*remove)(const std::string& folder);
    void (*purge)(const std::string& folder); // removes the folders in it that contain no file at any depth
};

// Adds the contender's rows to the works, which all use one tree.
void AddWays(eSuite& suite, const eFolderWays& ways);

} // namespace bench
