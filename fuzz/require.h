// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdlib>
#include <iostream>
#include <string>

// Ends the program, with the input as a finding, if what the target promises is not the case.
inline void Require(bool promise, const std::string& what) {
    if (promise)
        return;
    std::cerr << "broken promise: " << what << '\n';
    std::abort();
}

inline void Require(bool promise, const char* what) {
    if (!promise)
        Require(false, std::string(what));
}

// The text between quotes, with what cannot be printed as numbers.
template <class eText>
std::string Shown(const eText& text) {
    std::string shown = "\"";
    for (const auto letter : text)
        if (letter >= ' ' && letter < 127)
            shown += static_cast<char>(letter);
        else
            shown += "<" + std::to_string(static_cast<long long>(letter)) + ">";
    return shown + '"';
}

template <class eText>
void RequireEqual(const eText& found, const eText& expected, const char* what) {
    if (!(found == expected))
        Require(false, std::string(what) + ": " + Shown(found) + " instead of " + Shown(expected));
}
