// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ctime>

// The processor time that an action takes, in seconds; on Windows the elapsed time.
template <class Action>
double SecondsOf(const Action& action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}
