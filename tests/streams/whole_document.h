// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <string>

// A document that tells how long it is, and is made of one letter, so that two of them are not mixed unseen.
inline std::string WholeDocument(unsigned seed, std::size_t size) {
    return std::to_string(size) + ':' + std::string(size, static_cast<char>('a' + seed % 26));
}

inline bool IsWhole(const std::string& document) {
    const std::size_t colon = document.find(':');
    if (colon == std::string::npos || document.size() - colon - 1 != std::stoul(document))
        return false;
    return document.find_first_not_of(document[colon + 1], colon + 1) == std::string::npos;
}
