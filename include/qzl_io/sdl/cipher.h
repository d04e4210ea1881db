#pragma once

#include <cstddef>

#include <qzl_io/export.h>

// Turns the text of an SDL file into other bytes and back. The library brings no cipher: applications derive one and
// hand it to readers and writers. One and the same operation serves both directions, so a cipher for files that are
// both written and read must be its own inverse.
class QZL_IO_API eSDLCipher {
public:
    eSDLCipher() = default;
    eSDLCipher(const eSDLCipher&) = default;
    eSDLCipher& operator=(const eSDLCipher&) = default;

    virtual ~eSDLCipher();

    // Room in bytes that Encode may need for so many bytes of input. Asked for by writers only: what a reader gets out
    // is never longer than what it puts in.
    virtual size_t GetEncodedSize(size_t inputSize) = 0;

    // Puts the transformed bytes into dst and returns their number, at most dstCapacity.
    virtual size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) = 0;
};
