#pragma once

#include <functional>
#include <string>

// What the system tells about the machine and the process.
namespace IO::Platform {

// The computer's name as the system spells it; empty on failure.
template <class Char>
std::basic_string<Char> ComputerName();

// The name of the user that the process runs as; empty on failure.
template <class Char>
std::basic_string<Char> AccountName();

// The full name of the process's executable; empty on failure, and where no narrow name leads to it.
template <class Char>
std::basic_string<Char> ExecutableName();

enum class eQueryEnd { Done, MoreData, Failed };

// Reads the product identifier into a buffer of `*bytes` bytes, which becomes the size that the value needs.
using eProductIdQuery = std::function<eQueryEnd(void* buffer, unsigned int* bytes)>;

// Opens what holds the product identifier for as long as the query lives; an empty function where there is none.
template <class Char>
eProductIdQuery OpenProductId();

struct eSystemVersion {
    unsigned major = 0;
    unsigned minor = 0;
    bool server = false;
};

// The version of Windows; 0.0 where it is not told.
eSystemVersion SystemVersion();

// Asks the disk that holds the system for its serial number. Gives 0 and the text, which may be empty, or the system's
// error number.
unsigned int AskDiskSerial(std::string* serial);

} // namespace IO::Platform
