// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO {

// A moment, laid out like the Windows structure FILETIME: the number of 100-nanosecond steps since 1601-01-01 UTC, in
// two halves. This separate type keeps the system's header out of this one. It converts implicitly to the system's
// structure:
//
//     FILETIME time = search.ModifyTime();
//
// Name the system's type there: with `auto` the variable would be an eFileTime, and no function of the system takes its
// address.
struct eFileTime {
    unsigned int dwLowDateTime = 0;
    unsigned int dwHighDateTime = 0;

    static constexpr eFileTime FromTicks(unsigned long long ticks) {
        return {static_cast<unsigned int>(ticks & 0xFFFFFFFFu), static_cast<unsigned int>(ticks >> 32)};
    }

    constexpr unsigned long long Ticks() const {
        return static_cast<unsigned long long>(dwHighDateTime) << 32 | dwLowDateTime;
    }

    friend constexpr bool operator==(const eFileTime&, const eFileTime&) = default;

    template <class SystemTime>
    requires requires(SystemTime time) {
        time.dwLowDateTime;
        time.dwHighDateTime;
    }
    constexpr operator SystemTime() const {
        SystemTime time{};
        time.dwLowDateTime = dwLowDateTime;
        time.dwHighDateTime = dwHighDateTime;
        return time;
    }
};

} // namespace IO
