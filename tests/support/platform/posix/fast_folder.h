#pragma once

#include <filesystem>

#include <unistd.h>

// A folder in memory if there is one, for tests that create thousands of files.
inline std::filesystem::path FastFolder() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), R_OK | W_OK | X_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}
