// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

#include "platform/machine.h"

namespace IO::System {

// Queries a value of unknown size with a buffer that grows until the value fits: 1024 bytes at first, then twice the
// size that the query reports as needed. The result is the whole buffer, with zeros after the value; all zeros if the
// query fails.
template <class Char, class Query>
std::basic_string<Char> AskGrowing(Query query) {
    constexpr std::size_t kFirstBytes = 1024;
    constexpr std::size_t kMostBytes = std::size_t{1} << 20;
    for (std::size_t bytes = kFirstBytes;;) {
        std::basic_string<Char> buffer(bytes / sizeof(Char), Char());
        auto needed = static_cast<unsigned int>(buffer.size() * sizeof(Char));
        const Platform::eQueryEnd end = query(buffer.data(), &needed);
        if (end == Platform::eQueryEnd::Done)
            return buffer;
        if (end == Platform::eQueryEnd::Failed || bytes >= kMostBytes)
            return std::basic_string<Char>(buffer.size(), Char());
        bytes = std::min(std::max(bytes, std::size_t{needed}) * 2, kMostBytes);
    }
}

} // namespace IO::System
