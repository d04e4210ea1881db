// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include <qzl_io/detail/share.h>
#include <qzl_io/export.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// A stream over its own memory, which grows as it is written. The buffer is the whole stream (offset is always 0), so
// Buffer() and Size() give its content. It is open from construction, with Write and Errors set.
//
// A seek beyond the data, which sets Bad, grows the buffer by at most one step, and the next move of the position makes
// that place the end of the data. Size() may then exceed the room: Read and CopyTo stop at the end of the bytes.
//
// Copies share the bytes until one of them grows, which then has its own; the last owner releases them.
class QZL_IO_API eMemoryStream : public eStream {
public:
    // size: bytes of room at the beginning. growBy: bytes added at each growth, 0 for doubling; values of up to 8 bytes
    // need a growBy of 0 or at least 8. A stream of size 0 that doubles has room only after ResizeBuffer.
    explicit eMemoryStream(unsigned long long size, unsigned long long growBy = 0);
    eMemoryStream() : eMemoryStream(256) {}
    eMemoryStream(const eMemoryStream& other) = default;
    eMemoryStream(eMemoryStream&& other) noexcept = default;
    ~eMemoryStream() override;

    eMemoryStream& operator=(const eMemoryStream& other);
    eMemoryStream& operator=(eMemoryStream&& other) noexcept;

    // Clears Modified, and moves the end of the data to the position if it is before that.
    void Flush() override;
    // Grows by one step and clears the new room. Does nothing if the step is 0 or the size would overflow.
    void Overflow() override;
    // Does not move the bytes, as there is nothing to refill from. A position beyond the data sets Bad and is reported
    // ("Invalid read location!").
    void Underflow() override;

protected:
    // "MemoryStream" and the core's text.
    std::string Dump() const override;

    // Allocate and release the bytes, here from the heap. AllocateBuffer returns `size` bytes or null; DeallocateBuffer
    // releases them, sets the pointer to null, and accepts null.
    //
    // A class that overrides them calls ReleaseBuffer in its own destructor. A stream remembers which hook made its
    // buffer: the buffer made by eMemoryStream's constructor goes back to the heap, every later one to the hook of the
    // class. So copies must be of the same class; a copy as an eMemoryStream knows only the heap.
    // examples/own_allocation.cpp shows such a class.
    virtual unsigned char* AllocateBuffer(unsigned long long size) const;
    virtual void DeallocateBuffer(unsigned char*& block) const;

    // Replaces the buffer by a new, cleared one of the given size (0: none), with `used` bytes of data and the position
    // at its start. If there is no memory, "Not enough memory!" is reported, whether or not Errors is set, and the
    // stream has no buffer.
    void CreateBuffer(unsigned long long size, unsigned long long used);
    // Releases the buffer; the last owner deallocates it.
    void ReleaseBuffer();

public:
    // Makes the room at least `size` bytes, never smaller than it is. Position and data do not change; with `extend`
    // the data reach to at least `size` bytes.
    void ResizeBuffer(unsigned long long size, bool extend);
    // Drops the first n bytes, and sets the position and the end of the data to the end of the remaining ones. If there
    // are fewer than n, returns false and changes nothing.
    bool ShiftLeft(unsigned long long n);

protected:
    unsigned long long growBy; // bytes of room added at each growth; 0: as many as there are

private:
    struct eBulkWays;

    // Grows by one step, and by as many more as the size needs.
    void OverflowTo(unsigned long long needed);
    void Grow(unsigned long long size);
    // The size after one step; the size itself if there is no step.
    unsigned long long NextSize(unsigned long long size) const;
    unsigned long long SizeFor(unsigned long long needed) const;
    // Replaces the buffer by a block of the heap with n bytes of data, as if they had been written to an empty stream.
    // False, and nothing is changed, if the size cannot be reached.
    bool UseWritten(unsigned char* block, unsigned long long n);
    static bool IsOfLibraryClass(const eStream& stream); // exactly: a derived class may have its own hooks
    unsigned char* NewBlock(unsigned long long size) const;
    void UseNewBlock(unsigned char* block, unsigned long long size, unsigned long long length);
    // The first `kept` bytes of the buffer followed by zeros, in a new block, or in the buffer's own block, which then
    // no longer belongs to the stream. Null if there is no memory; the buffer is then unchanged.
    unsigned char* CopiedBlock(unsigned long long size, unsigned long long kept) const;
    unsigned char* ExtendedBlock(unsigned long long size, unsigned long long kept);

    struct eFreeing {
        static constexpr unsigned char* kNone = nullptr;
        QZL_IO_API static void Release(unsigned char* block) noexcept;
    };
    eShare<eFreeing> bufferBlock;
    bool fromHeap = false; // the block was made by eMemoryStream's own hook
};

// A memory stream as a class of its own, with its own allocation hooks.
class QZL_IO_API eMemoryStream_t : public eMemoryStream {
public:
    explicit eMemoryStream_t(unsigned long long size, unsigned long long growBy = 0);
    eMemoryStream_t() : eMemoryStream_t(256) {}
    eMemoryStream_t(const eMemoryStream_t&) = default;
    eMemoryStream_t(eMemoryStream_t&&) noexcept = default;
    ~eMemoryStream_t() override;

    eMemoryStream_t& operator=(const eMemoryStream_t&) = default;
    eMemoryStream_t& operator=(eMemoryStream_t&&) noexcept = default;

protected:
    unsigned char* AllocateBuffer(unsigned long long size) const override;
    void DeallocateBuffer(unsigned char*& block) const override;
};

// A stream over bytes that belong to the caller and must outlive it. It never grows. Writing changes the caller's bytes
// in place, even if they were passed as constant. Copies use the same bytes.
//
// A value that ends exactly at the last byte is read or written, but also reported ("Attempt to write beyond the
// stream!"), and Bad is set; Read and Write report only if they pass the last byte. There are two ways to take values
// up to the end of a packet of n bytes without a report (examples/parse_packet.cpp):
//
//     IO::eBufferStream packet(bytes, n + 1, n); // if one more byte may be addressed, as after every std::string
//
//     IO::eBufferStream packet(bytes, n, n);     // if not
//     packet.Disable(IO::StreamMode::Errors);    // Bad then only says that the end was reached
class QZL_IO_API eBufferStream : public eStream {
public:
    eBufferStream() noexcept = default; // not open until Assign
    // `size` bytes of room, of which the first `used` are data (0: all). Write and Errors are set.
    eBufferStream(const unsigned char* data, unsigned long long size, unsigned long long used);
    // A stream over the text's own characters.
    explicit eBufferStream(const std::string& text);
    // A stream over a view of text or bytes.
    explicit eBufferStream(std::same_as<std::string_view> auto text)
        : eBufferStream(std::as_bytes(std::span(text.data(), text.size()))) {}
    explicit eBufferStream(std::span<const std::byte> bytes);
    explicit eBufferStream(const std::string&& text) = delete; // the text would be destroyed before the stream
    eBufferStream(const eBufferStream&) noexcept = default;
    eBufferStream(eBufferStream&&) noexcept = default;
    ~eBufferStream() override;

    eBufferStream& operator=(const eBufferStream&) noexcept = default;
    eBufferStream& operator=(eBufferStream&&) noexcept = default;

    // Switches to other bytes, with the position at their start. Other flags do not change.
    void Assign(const unsigned char* data, unsigned long long size, unsigned long long used);

    // Clears Modified, and moves the end of the data to the position if it is before that.
    void Flush() override;
    // Set Bad and report "Attempt to write beyond the stream!" or "Attempt to read beyond the stream!".
    void Overflow() override;
    void Underflow() override;

protected:
    // "BufferStream" and the core's text.
    std::string Dump() const override;
};

} // namespace IO
