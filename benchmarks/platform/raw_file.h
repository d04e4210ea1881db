// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

namespace bench::platform {

// A file through plain system calls. A failure throws an exception that ends the program.
class eRawFile {
public:
    enum eUse { Reading, Writing };
    eRawFile(const char* name, eUse use);
    ~eRawFile();
    eRawFile(const eRawFile&) = delete;
    eRawFile& operator=(const eRawFile&) = delete;

    size_t Size() const;
    // Reads until it has `size` bytes or the file ends; returns the number of bytes read.
    size_t Read(void* to, size_t size) const;
    void Write(const void* from, size_t size) const;

private:
    int handle;
};

} // namespace bench::platform
