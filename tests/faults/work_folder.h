// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <set>
#include <string>

#include "support/fast_folder.h"
#include "support/temp_folder.h"

// The folder of one scenario.
class eWorkFolder : public eTempFolder {
public:
    eWorkFolder() : eTempFolder(FastFolder()) {}

    // What is directly in it.
    std::set<std::string> Entries() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Path()))
            names.insert(entry.path().filename().string());
        return names;
    }
};
