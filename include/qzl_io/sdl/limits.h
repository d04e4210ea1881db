// SPDX-License-Identifier: BSL-1.0
#pragma once

// What a reader or a parser accepts of sources that strangers wrote. Nothing is limited unless it is set.
struct eSDLLimits {
    static constexpr unsigned long long kNone = ~0ULL;

    unsigned long long sourceBytes = kNone;  // of each source, as loaded and while its parameters are replaced
    unsigned long long tokenBytes = kNone;   // of the text of a token, as in the source without the quotes of a string
    unsigned long long includeDepth = kNone; // sources that are open at once within the first one; 0: none
};
