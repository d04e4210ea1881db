// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>

#include "../support/suite.h"
#include "../support/work_folder.h"

namespace bench {

// The functions by which one contender does the work; it takes no part in a work whose function is null. All folder
// names end in "/".
struct eFolderWays {
    std::string name;
    eKind kind = eKind::Ours;
    double target = 0;
    std::uint64_t (*walk)(const std::string& folder) =
        nullptr; // adds up the first letter, plus one, of every file name
    std::uint64_t (*sizes)(const std::string& folder) = nullptr; // adds up the sizes of the files
    void (*copy)(const std::string& from, const std::string& to) = nullptr;
    void (*remove)(const std::string& folder) = nullptr;
    void (*purge)(const std::string& folder) = nullptr; // removes the folders in it that contain no file at any depth
    bool isCommand = false;                             // the functions run commands
    std::uint64_t (*walked)(const std::string& folder) = nullptr; // what walk adds up, if a command's walk cannot tell
};

// Adds the contender's rows to the works, which use a few trees of different sizes and shapes.
void AddWays(eSuite& suite, const eFolderWays& ways);

} // namespace bench
