// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>

// The number of open descriptors of this process.
inline int OpenDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}
