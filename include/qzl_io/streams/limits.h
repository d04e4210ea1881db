// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO {

// What may be read from a stream that a stranger wrote. Nothing is limited unless it is set.
struct eStreamLimits {
    static constexpr unsigned long long kNone = ~0ULL;

    unsigned long long textBytes =
        kNone; // of a text (two for each UTF-16 unit) or a line, without length and delimiter
    unsigned long long listBytes = kNone; // of a list of texts as it is stored, with its count and all lengths
};

} // namespace IO
