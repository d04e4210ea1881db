// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <system_error>

// A folder for tests that make great numbers of files: one that is kept in memory if there is one.
inline std::filesystem::path FastFolder() {
    std::error_code error;
    const std::filesystem::path inMemory = std::filesystem::absolute("/dev/shm", error); // with its drive
    return std::filesystem::is_directory(inMemory, error) ? inMemory : std::filesystem::temp_directory_path();
}
