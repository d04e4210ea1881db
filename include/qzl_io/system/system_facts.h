// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>

namespace IO::System {

// What the system tells of itself and of the machine. What it does not tell is empty or 0. Texts are UTF-8.
struct eSystemFacts {
    // "Windows 11", "Windows Server 2022", "Windows 7"; "Windows" for other versions; "Linux".
    std::string name;
    // "10.0.22631"; on Linux the kernel's release, "6.1.0-18-amd64".
    std::string version;
    // The last number of the version of Windows: 22000 and up is Windows 11. 0 on Linux.
    unsigned build = 0;
    // The distribution's own name, "Debian GNU/Linux 12 (bookworm)"; empty on Windows.
    std::string distribution;

    // The processors that this program is made for and those that the machine has: "x86_64", "aarch64", "x86". They
    // differ where the system emulates the former.
    std::string architecture;
    std::string machineArchitecture;

    unsigned processors = 0;       // that run now, each thread of a core counted
    unsigned long long memory = 0; // of the machine, in bytes

    // An id of this installation of the system, which stays the same until the system is installed anew. On Windows its
    // MachineGuid, in lower case. On Linux 32 hexadecimal digits: /etc/machine-id, which is confidential, hashed with
    // the application's name as the key (HMAC with SHA-256, the first 16 bytes). Ids of different applications cannot
    // be related. Copies of an image or a container may share an id.
    std::string machineId;
};

// Asks the system at each call. `application` chooses the machine id on Linux; the same text gives the same id.
QZL_IO_API eSystemFacts SystemFacts(const std::string& application = {});

} // namespace IO::System
