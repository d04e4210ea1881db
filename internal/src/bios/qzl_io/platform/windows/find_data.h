// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <windows.h>

namespace IO::Platform {

constexpr unsigned long long JoinedHalves(DWORD high, DWORD low) {
    return static_cast<unsigned long long>(high) << 32 | low;
}

// A listed entry's length in bytes.
constexpr unsigned long long ListedSize(const WIN32_FIND_DATAW& data) {
    return JoinedHalves(data.nFileSizeHigh, data.nFileSizeLow);
}

// The time when a listed entry was last written to, in steps of 100 ns since 1601-01-01 UTC.
constexpr unsigned long long ListedTime(const WIN32_FIND_DATAW& data) {
    return JoinedHalves(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
}

} // namespace IO::Platform
