// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>

// Sets the current folder of the process, and restores it on destruction.
class eCurrentFolder {
public:
    explicit eCurrentFolder(const std::filesystem::path& folder) : before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~eCurrentFolder() { std::filesystem::current_path(before); }
    eCurrentFolder(const eCurrentFolder&) = delete;
    eCurrentFolder& operator=(const eCurrentFolder&) = delete;

private:
    std::filesystem::path before;
};
