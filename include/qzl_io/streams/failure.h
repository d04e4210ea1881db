// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

namespace IO {

// Why bytes did not arrive. Streams and writers return one:
//
//     stream.Flush();
//     if (const IO::eFailure failure = stream.Failure())
//         Show(failure.text);   // "Not all bytes could be written to the file: No space left on device."
struct eFailure {
    int number = 0;   // the system's error number (errno; on Windows that of GetLastError); 0 if the system gave none
    std::string text; // sentences for people, in UTF-8, with the system's reason; empty if every byte arrived

    explicit operator bool() const noexcept { return !text.empty(); }
};

} // namespace IO
