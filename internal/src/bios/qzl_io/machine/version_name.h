// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>

namespace IO::System {

// The symbolic name of a version of Windows; "unknown" for versions without one.
constexpr const char* VersionName(unsigned major, unsigned minor, bool server) {
    struct eRow {
        unsigned major, minor;
        const char* workstation;
        const char* server;
    };
    constexpr const char* kUnknown = "unknown";
    constexpr std::array<eRow, 8> rows{{
        {10, 0, "windows_10", "windows_server_2016"},
        {6, 3, "windows_8_point1", "windows_server_2012_r2"},
        {6, 2, "windows_8", "windows_server_2012"},
        {6, 1, "windows_7", "windows_server_2008_r2"},
        {6, 0, "windows_vista", "windows_server_2008"},
        {5, 2, "windows_xp_x64", "windows_server_2003_r2"},
        {5, 1, "windows_xp", kUnknown},
        {5, 0, "windows_2000", kUnknown},
    }};
    for (const eRow& row : rows)
        if (row.major == major && row.minor == minor)
            return server ? row.server : row.workstation;
    return kUnknown;
}

} // namespace IO::System
