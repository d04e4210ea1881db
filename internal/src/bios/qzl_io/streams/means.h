#pragma once

namespace IO {

class eStream;

// How bulk operations go past the buffer of a stream, over a file that the system caches in memory. Positions, flushes
// and contents stay as if they had not.
struct eStreamDirect {
    // True while the stream's flushes and refills are the library's own and its file is open.
    bool (*serves)(const eStream& stream);
    // Read or write n bytes at a position of the stream. What cannot be read is zero, what cannot be written is
    // dropped; both set Bad.
    void (*read)(eStream& stream, void* target, unsigned long long at, unsigned long long n);
    void (*write)(eStream& stream, const void* source, unsigned long long at, unsigned long long n);
    // True unless what is written to the target may change what the source still has to read.
    bool (*apart)(const eStream& source, const eStream& target);
    // Copies up to n bytes from the one's position to the other's where the system can do that by itself, and tells how
    // many. Both streams are of this kind and stay as they are.
    unsigned long long (*copy)(eStream& source, eStream& target, unsigned long long n);
};

// What a class of streams can do for bulk operations beside its hooks; null for what it cannot.
struct eStreamMeans {
    const eStreamDirect* direct;
    // Makes room for n bytes at the position as Overflow does, in one step where the class is the library's own.
    void (*overflow)(eStream& stream, unsigned long long n);
};

} // namespace IO
