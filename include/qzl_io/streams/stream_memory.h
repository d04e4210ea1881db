#pragma once

#include <string>

#include <qzl_io/detail/share.h>
#include <qzl_io/export.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// A stream over memory of its own, which grows as it is written. The buffer is the whole stream (offset is always 0),
// so Buffer() and Size() give its content. Open from construction, with Write and Errors set.
//
// A seek beyond the data, which sets Bad, grows the buffer by one step at most, and the next move of the position makes
// the place the end of the data. Size() may then exceed the room: Read and CopyTo stop where the bytes do.
//
// Copies address the same bytes until one of them grows, which then has bytes of its own; the last owner releases them.
class QZL_IO_API eMemoryStream : public eStream {
public:
    // size: bytes of room at the beginning. growBy: bytes of room added at each growth, 0 for doubling; values of up to
    // 8 bytes need a growBy of 0 or at least 8. A stream of size 0 that doubles has room only after ResizeBuffer.
    explicit eMemoryStream(unsigned long long size, unsigned long long growBy = 0);
    eMemoryStream() : eMemoryStream(256) {}
    eMemoryStream(const eMemoryStream& other) = default;
    eMemoryStream(eMemoryStream&& other) noexcept = default;
    ~eMemoryStream() override;

    eMemoryStream& operator=(const eMemoryStream& other);
    eMemoryStream& operator=(eMemoryStream&& other) noexcept;

    // Clears Modified; data that end before the position end there.
    void Flush() override;
    // Grows by one step and clears the new room. Does nothing where the step is 0 or the size would wrap.
    void Overflow() override;
    // There is nothing to refill from and the bytes stay where they are: only a position beyond the data sets Bad and
    // is reported ("Invalid read location!").
    void Underflow() override;

protected:
    // "MemoryStream" and the core's text.
    std::string Dump() const override;

    // Where the bytes come from and go to: the heap. AllocateBuffer gives size bytes or null; DeallocateBuffer releases
    // them and sets the pointer to null, and takes null too.
    //
    // A class that overrides them calls ReleaseBuffer in its own destructor. Its stream remembers who made the buffer:
    // the one that eMemoryStream's constructor makes goes back to the heap, every later one to the hook of the class.
    // So its copies have to be of the same class; a copy as an eMemoryStream knows the heap alone.
    // examples/own_allocation.cpp shows one.
    virtual unsigned char* AllocateBuffer(unsigned long long size) const;
    virtual void DeallocateBuffer(unsigned char*& block) const;

    // Replaces the buffer by a new, cleared one of the given size (0: none) with data of the length used and the
    // position at its start. "Not enough memory!" is reported, Errors set or not, when there is none; the stream then
    // has no buffer.
    void CreateBuffer(unsigned long long size, unsigned long long used);
    // Lets go of the buffer; the last owner deallocates it.
    void ReleaseBuffer();

public:
    // Makes the room at least size bytes; never less than it is. Position and data stay. With extend the data reach at
    // least size bytes.
    void ResizeBuffer(unsigned long long size, bool extend);
    // Drops the first n bytes; position and end of the data are then behind the remaining ones. False, and nothing is
    // changed, when there are fewer than n.
    bool ShiftLeft(unsigned long long n);

protected:
    unsigned long long growBy; // bytes added to the room at each growth; 0: as many as there are

private:
    struct eBulkWays;

    // Grows by one step, and by as many more as the size needs.
    void OverflowTo(unsigned long long needed);
    void Grow(unsigned long long size);
    // One step on; the size itself where there is none.
    unsigned long long NextSize(unsigned long long size) const;
    static bool IsOfLibraryClass(const eStream& stream); // exactly: a derived class may have hooks of its own
    unsigned char* NewBlock(unsigned long long size) const;
    void UseNewBlock(unsigned char* block, unsigned long long size, unsigned long long length);
    // The first kept bytes of the buffer and zeros behind them: in a new block, or in the buffer's own, which is then
    // not the stream's any more. Null when there is no memory; the buffer is then as it was.
    unsigned char* CopiedBlock(unsigned long long size, unsigned long long kept) const;
    unsigned char* ExtendedBlock(unsigned long long size, unsigned long long kept);

    struct eFreeing {
        static constexpr unsigned char* kNone = nullptr;
        QZL_IO_API static void Release(unsigned char* block) noexcept;
    };
    eShare<eFreeing> bufferBlock;
    bool fromHeap = false; // the block was made by eMemoryStream's own hook
};

// A memory stream as a class of its own, with allocation hooks of its own.
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
// in place, even when they were handed over as constant. Copies address the same bytes.
//
// A value that ends exactly at the last byte is read or written, yet also reported ("Attempt to write beyond the
// stream!"), and Bad is set; Read and Write are not reported unless they pass it. Two ways to take values up to the end
// of a packet of n bytes without a report (examples/parse_packet.cpp):
//
//     IO::eBufferStream packet(bytes, n + 1, n); // where one byte more may be addressed, as behind every std::string
//
//     IO::eBufferStream packet(bytes, n, n);     // where not
//     packet.Disable(IO::StreamMode::Errors);    // Bad then says no more than that the end was reached
class QZL_IO_API eBufferStream : public eStream {
public:
    eBufferStream() noexcept = default; // not open until Assign
    // size bytes of room, of which the first used are data (0: all). Write and Errors are set.
    eBufferStream(const unsigned char* data, unsigned long long size, unsigned long long used);
    // The text's own characters.
    explicit eBufferStream(const std::string& text);
    explicit eBufferStream(const std::string&& text) = delete; // it would be gone before the stream
    eBufferStream(const eBufferStream&) noexcept = default;
    eBufferStream(eBufferStream&&) noexcept = default;
    ~eBufferStream() override;

    eBufferStream& operator=(const eBufferStream&) noexcept = default;
    eBufferStream& operator=(eBufferStream&&) noexcept = default;

    // Goes over to other bytes, position at their start. Other flags stay as they are.
    void Assign(const unsigned char* data, unsigned long long size, unsigned long long used);

    // Clears Modified; data that end before the position end there.
    void Flush() override;
    // Set Bad and report "Attempt to write beyond the stream!" or "Attempt to read beyond the stream!".
    void Overflow() override;
    void Underflow() override;

protected:
    // "BufferStream" and the core's text.
    std::string Dump() const override;
};

} // namespace IO
