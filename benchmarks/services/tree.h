#pragma once

#include <cstdint>
#include <string>

#include "../support/suite.h"
#include "../support/work_folder.h"

namespace bench {

// How one contender does the work. All folder names end in "/".
struct eFolderWays {
    std::string name;
    eKind kind;
    double target;
    std::uint64_t (*walk)(const std::string& folder);  // adds up every file name's first letter, plus one each
    std::uint64_t (*sizes)(const std::string& folder); // adds up the sizes of the files
    void (*copy)(const std::string& from, const std::string& to);
    void (*remove)(const std::string& folder);
    void (*purge)(const std::string& folder); // removes the folders in it that hold no file anywhere
};

// Adds the contender's rows to the works over the same trees.
void AddWays(eSuite& suite, const eFolderWays& ways);

} // namespace bench
