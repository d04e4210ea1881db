#pragma once

#include <cstddef>

namespace bench::platform {

// A file through the system's own calls, nothing between. Failures end the program with an exception.
class eRawFile {
public:
    enum eUse { Reading, Writing };
    eRawFile(const char* name, eUse use);
    ~eRawFile();
    eRawFile(const eRawFile&) = delete;
    eRawFile& operator=(const eRawFile&) = delete;

    size_t Size() const;
    // Reads until `size` bytes are there or the file ends; returns how many came.
    size_t Read(void* to, size_t size) const;
    void Write(const void* from, size_t size) const;

private:
    int handle;
};

} // namespace bench::platform
