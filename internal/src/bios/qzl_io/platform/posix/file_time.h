// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <ctime>

namespace IO::Platform {

// A time of the system in steps of 100 ns since 1601-01-01 UTC.
inline unsigned long long TicksOf(const timespec& time) {
    constexpr unsigned long long kTicksPerSecond = 10'000'000;
    constexpr unsigned long long kSecondsFrom1601To1970 = 11'644'473'600;
    const auto seconds = static_cast<unsigned long long>(time.tv_sec) + kSecondsFrom1601To1970;
    return seconds * kTicksPerSecond + static_cast<unsigned long long>(time.tv_nsec) / 100;
}

} // namespace IO::Platform
