// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <memory>

#include <dirent.h>

namespace IO::Platform {

// Reads a folder's entries directly from the system, including "." and "..".
class eEntryReader {
public:
    // The next entry, valid until the next call; null at the end, and if the folder can no longer be read, as Failure
    // then tells.
    const dirent64* Next(int folder) {
        if (position == end && !Fill(folder))
            return nullptr;
        const auto* entry = reinterpret_cast<const dirent64*>(buffer.get() + position);
        position += entry->d_reclen;
        return entry;
    }

    // The system's error number, or 0.
    int Failure() const { return failure; }

private:
    bool Fill(int folder);

    static constexpr std::size_t kBufferSize = std::size_t{32} << 10;

    std::unique_ptr<std::byte[]> buffer;
    std::size_t position = 0;
    std::size_t end = 0;
    int failure = 0;
};

} // namespace IO::Platform
