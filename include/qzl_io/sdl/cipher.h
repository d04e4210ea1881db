// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

#include <qzl_io/export.h>

// Transforms the text of an SDL file when it is written and when it is read. The library contains no cipher:
// applications derive one and pass it to readers and writers. Both directions use the same operation, so a cipher for
// files that are both written and read must be its own inverse.
class QZL_IO_API eSDLCipher {
public:
    eSDLCipher() = default;
    eSDLCipher(const eSDLCipher&) = default;
    eSDLCipher& operator=(const eSDLCipher&) = default;

    virtual ~eSDLCipher();

    // The number of bytes that Encode may need for `inputSize` bytes of input. Only writers call it: for a reader, the
    // output is never longer than the input.
    virtual size_t GetEncodedSize(size_t inputSize) = 0;

    // Writes the transformed bytes to `dst` and returns their number, at most `dstCapacity`.
    virtual size_t Encode(void* dst, size_t dstCapacity, const void* src, size_t srcSize) = 0;
};
