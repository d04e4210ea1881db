// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdlib>
#include <string_view>

// Whether tests that would take minutes run in full.
inline bool LongTests() {
    const char* wanted = std::getenv("QZL_LONG_TESTS");
    return wanted && std::string_view(wanted) == "1";
}
