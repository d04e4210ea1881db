// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <string>

// Facts that the system tells about the machine and the process.

namespace IO::Platform {

// The computer's name as the system spells it; empty on failure.
template <class Char>
std::basic_string<Char> ComputerName();

// The name of the user that the process runs as; empty on failure.
template <class Char>
std::basic_string<Char> AccountName();

// The full name of the process's executable; empty on failure, and if no narrow name leads to it.
template <class Char>
std::basic_string<Char> ExecutableName();

enum class eQueryEnd { Done, MoreData, Failed };

// Reads the product id into a buffer of `*bytes` bytes, and sets that to the size that the value needs.
using eProductIdQuery = std::function<eQueryEnd(void* buffer, unsigned int* bytes)>;

// Opens the source of the product id for as long as the query lives; an empty function if there is none.
template <class Char>
eProductIdQuery OpenProductId();

struct eSystemVersion {
    unsigned major = 0;
    unsigned minor = 0;
    bool server = false;
    unsigned build = 0;
};

// The version of Windows; 0.0 if it is unknown.
eSystemVersion SystemVersion();

// What else the system tells; empty or 0 where it does not.
struct eMachineFacts {
    std::string release;             // of the kernel; empty on Windows
    std::string osRelease;           // the file os-release
    std::string architecture;        // of this process
    std::string machineArchitecture; // of the machine
    unsigned processors = 0;
    unsigned long long memory = 0; // in bytes
    std::string machineId;
    bool idIsConfidential = false; // the id must not leave the machine as it is
};
eMachineFacts AskMachine();

// Queries the serial number of the disk that holds the system. Returns 0 and the text, which may be empty, or the
// system's error number.
unsigned int AskDiskSerial(std::string* serial);

} // namespace IO::Platform
