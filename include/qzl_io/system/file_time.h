#pragma once

namespace IO {

// A moment as the Windows structure FILETIME holds it: the count of 100-nanosecond steps since 1601-01-01 UTC, in two
// halves. It is a type of its own, so that this header neither needs nor disturbs the system's, and turns into the
// system's structure by itself wherever one is wanted:
//
//     FILETIME time = search.ModifyTime();
//
// Name the system's type there: with `auto` the variable is an eFileTime, whose address no function of the system
// takes.
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
