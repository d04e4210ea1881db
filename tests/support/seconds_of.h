// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ctime>

// Tests built to count what they reach take several times as long.
#ifdef QZL_COUNTS_WHAT_RUNS
inline constexpr double kSlowness = 10;
#else
inline constexpr double kSlowness = 1;
#endif

// The processor time that an action takes, in seconds of a plain build; on Windows the elapsed time.
template <class Action>
double SecondsOf(const Action& action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / kSlowness;
}
