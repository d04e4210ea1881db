// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"

namespace IO::Platform {

// The content of a file of settings, at most 1 MiB; empty if it is no regular file that can be read.
inline std::string ReadSmallFile(const char* name) {
    constexpr std::size_t kMost = std::size_t{1} << 20;
    std::string content;
    std::array<char, 4096> page{};
    struct stat facts {};
    const eDescriptor file = OpenAtOnce(AT_FDCWD, name, O_RDONLY);
    if (!file.IsOpen() || !AskFacts(file.Get(), &facts) || !S_ISREG(facts.st_mode))
        return content;
    for (ssize_t count = 1; count > 0 && content.size() < kMost;) {
        count = Uninterrupted([&] { return ::read(file.Get(), page.data(), page.size()); });
        if (count > 0)
            content.append(page.data(), static_cast<std::size_t>(count));
    }
    return content;
}

} // namespace IO::Platform
