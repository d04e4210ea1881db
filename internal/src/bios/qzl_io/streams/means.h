// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO {

class eStream;

// How bulk operations bypass the buffer of a stream over a file that the system caches in memory. Positions, flushes
// and contents are as if they had not.
struct eStreamDirect {
    // True while the stream's flushes and refills are the library's own and its file is open.
    bool (*serves)(const eStream& stream);
    // Read or write n bytes at a position of the stream; bytes that cannot be read or written are lost (eStream::Lose).
    // Reading returns the number of bytes that arrived.
    unsigned long long (*read)(eStream& stream, void* target, unsigned long long at, unsigned long long n);
    void (*write)(eStream& stream, const void* source, unsigned long long at, unsigned long long n);
    // True unless writing to the target may change what is still to be read from the source.
    bool (*apart)(const eStream& source, const eStream& target);
    // Copies up to n bytes from one position to the other if the system can do that by itself, and returns their
    // number. Both streams are of this kind and do not change.
    unsigned long long (*copy)(eStream& source, eStream& target, unsigned long long n);
};

// What a class of streams can do for bulk operations besides its hooks; null for what it cannot do.
struct eStreamMeans {
    const eStreamDirect* direct;
    // Makes room for n bytes at the position like Overflow, in one step if the class is the library's own.
    void (*overflow)(eStream& stream, unsigned long long n);
    // Takes over a block that std::malloc made, instead of writing its first n bytes, if the stream is empty and would
    // have to grow for them. False, and nothing is changed, if it does not.
    bool (*adopt)(eStream& stream, unsigned char* block, unsigned long long n);
};

} // namespace IO
