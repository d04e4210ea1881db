#pragma once

#include <ctime>

// The seconds of the processor's time that an action takes; on Windows those of the clock.
template <class Action>
double SecondsOf(const Action& action) {
    const std::clock_t start = std::clock();
    action();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}
