#pragma once

#include <filesystem>
#include <system_error>

// A folder in memory that everybody may write to, if there is one: for tests that create thousands of files.
inline std::filesystem::path FastFolder() {
    const std::filesystem::path memory = std::filesystem::absolute("/dev/shm");
    std::error_code missing;
    const auto found = std::filesystem::status(memory, missing);
    const bool open = (found.permissions() & std::filesystem::perms::others_write) != std::filesystem::perms::none;
    return std::filesystem::is_directory(found) && open ? memory : std::filesystem::temp_directory_path();
}
