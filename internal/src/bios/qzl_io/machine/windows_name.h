// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::System {

// The name under which a version of Windows is sold. Versions 10.0 are told apart by their builds.
constexpr const char* WindowsName(unsigned major, unsigned minor, unsigned build, bool server) {
    struct eRow {
        unsigned major, minor, build; // the first build of that name
        const char* workstation;
        const char* server;
    };
    constexpr eRow kRows[] = {
        {10, 0, 26100, "Windows 11", "Windows Server 2025"}, {10, 0, 22000, "Windows 11", "Windows Server 2022"},
        {10, 0, 20348, "Windows 10", "Windows Server 2022"}, {10, 0, 17763, "Windows 10", "Windows Server 2019"},
        {10, 0, 0, "Windows 10", "Windows Server 2016"},     {6, 3, 0, "Windows 8.1", "Windows Server 2012 R2"},
        {6, 2, 0, "Windows 8", "Windows Server 2012"},       {6, 1, 0, "Windows 7", "Windows Server 2008 R2"},
        {6, 0, 0, "Windows Vista", "Windows Server 2008"},
    };
    for (const eRow& row : kRows)
        if (row.major == major && row.minor == minor && build >= row.build)
            return server ? row.server : row.workstation;
    return "Windows";
}

} // namespace IO::System
