// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <string>

#include <qzl_io/detail/share.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// A stream over a file, however it is named. The mode passed to Open becomes the flag word: Read refills the buffer
// from the file as needed, Write opens for reading and writing and creates a missing file, Create with Write truncates
// the file to length 0, Errors enables reports. The buffer holds 32768 bytes, or the whole file if that is shorter and
// opened without Write. Other streams and processes may open the file at the same time.
//
// Opening for reading never waits for another process: a pipe is refused, as a folder is, under any name. A file whose
// length the system does not tell is not opened.
//
// Copies share the handle, and the buffer until one of them refills it; the last owner closes the handle and releases
// the buffer. Reads that the system cuts short and writes that fail are not reported; they set Bad, and Failure tells
// why. Bytes that could not be read are never written back: where the buffer cannot be filled, what is written goes to
// the file directly, and no byte beside it changes.
class QZL_IO_API eFileStreamBase : public eStream {
public:
    ~eFileStreamBase() override; // closes

    // Opens the file of CreateHandle, with the position at its start, and first closes an open one. If it cannot be
    // opened, Failed is set; with Errors, CreateHandleError reports it, and each time the report returns, opening is
    // tried again.
    void Open(int mode);
    // Flushes if the stream writes, and releases file and buffer. Bad apart, the flags, and so IsOpen(), do not change,
    // nor do offset and bufferSize. Failure then tells whether all that was written has reached the system.
    void Close();
    // Reads the buffer from the file again, after flushing unflushed bytes.
    void Fresh();

    // Ends the data and the file at the current position.
    void Trunc() override;
    // Writes the bytes from the start of the buffer to the position, if the stream writes.
    void Flush() override;
    void Overflow() override;
    // Makes the position the first byte of the buffer and reads the buffer from the file. A position beyond the data
    // sets Bad and is reported as "Invalid read location!".
    void Underflow() override;

    using eStream::GetLine;
    // Returns the next line: the bytes up to and including the next line feed, or to the end of the data, without the
    // carriage returns and line feeds among them. A line may have any length. At the end of the data it is empty.
    std::string GetLine();

protected:
    // Returns a handle for the file, opened with the run-time's flags (kOpenRead, kOpenWrite, kOpenCreate), or -1.
    virtual int CreateHandle(int openFlags) const = 0;
    // Reports that the file cannot be opened.
    virtual void CreateHandleError() const = 0;

    // A stream that is not open.
    eFileStreamBase() noexcept = default;
    eFileStreamBase(const eFileStreamBase& other) = default;
    eFileStreamBase(eFileStreamBase&& other) noexcept = default;
    eFileStreamBase& operator=(const eFileStreamBase& other);
    eFileStreamBase& operator=(eFileStreamBase&& other) noexcept;

    // The number of bytes from the position to the end of the line, including its line feed; 0 at the end of the data.
    // The position does not move.
    unsigned long long GetLineLength();

    static constexpr int kOpenRead = 0x8000;   // binary, read only
    static constexpr int kOpenWrite = 0x8102;  // binary, read and write, create
    static constexpr int kOpenCreate = 0x8302; // binary, read and write, create, truncate to length 0

    struct eClosing {
        static constexpr int kNone = -1;
        QZL_IO_API static void Release(int handle) noexcept;
    };
    eShare<eClosing> handle; // converts to int, the run-time's handle; -1 if no file is open

private:
    struct eDirectWays;

    void CreateBuffer(unsigned long long capacity, unsigned long long length);
    void UseBlock(unsigned char* block, unsigned long long capacity, unsigned long long length) noexcept;
    void ReleaseBuffer() noexcept;
    // Gives the stream its own buffer if copies share it.
    void Detach();
    // Reads up to n bytes of the file; fewer than the promised ones are lost. Returns the number that arrived.
    unsigned long long ReadPromised(void* target, unsigned long long n, unsigned long long at,
                                    unsigned long long promised);
    // Reads the buffer from the file.
    void Fill();
    void FillIfDataRemain();
    // The number of bytes of the current line in the buffer, including its line feed; `complete` tells whether the line
    // feed is there.
    unsigned long long LineInBuffer(bool* complete) const noexcept;
    // LineInBuffer, after a refill if that brings more of the line. Also complete if no data remain.
    unsigned long long LinePiece(eStreamSteps& steps, bool* complete);

    template <class eOther>
    eFileStreamBase& Assign(eOther&& other);

    struct eBlockDeletion {
        static constexpr unsigned char* kNone = nullptr;
        QZL_IO_API static void Release(unsigned char* block) noexcept;
    };
    eShare<eBlockDeletion> bufferBlock;
};

// A file with a narrow name (UTF-8 on systems whose names are bytes).
class QZL_IO_API eFileStream : public eFileStreamBase {
public:
    eFileStream() = default; // not open
    // An empty name leaves the stream not open.
    eFileStream(const eFileName& name, int mode);
    eFileStream(const eFileStream&) = default;
    eFileStream(eFileStream&&) noexcept = default;
    ~eFileStream() override;

    eFileStream& operator=(const eFileStream&) = default;
    eFileStream& operator=(eFileStream&&) noexcept = default;

    using eFileStreamBase::Open;
    void Open(const eFileName& name, int mode);

    using eStream::operator<<;
    // Calls the manipulator on this stream.
    eFileStream& operator<<(eFileStream& (*manipulator)(eFileStream&)) { return manipulator(*this); }
    template <eNotAValue T>
    eFileStream& operator<<(T) = delete; // that of eStream may count as hidden by the next one
    template <eNotAValue T>
    requires std::convertible_to<T, eFileStream& (*)(eFileStream&)> eFileStream& operator<<(T manipulator) {
        return manipulator(*this);
    }

protected:
    // "FileStream '%s'%s" with the name and the core's text.
    std::string Dump() const override;
    int CreateHandle(int openFlags) const override;
    // Reports "%1% - open error!" with the name.
    void CreateHandleError() const override;

    // Writes the characters without length and NUL.
    void WriteStr(const char* text);

    eFileName name;
};

// A file with a wide name (UTF-8 on disk on systems whose names are bytes).
class QZL_IO_API eFileStreamW : public eFileStreamBase {
public:
    eFileStreamW() = default; // not open
    // An empty name leaves the stream not open.
    eFileStreamW(const eFileNameW& name, int mode);
    eFileStreamW(const eFileStreamW&) = default;
    eFileStreamW(eFileStreamW&&) noexcept = default;
    ~eFileStreamW() override;

    eFileStreamW& operator=(const eFileStreamW&) = default;
    eFileStreamW& operator=(eFileStreamW&&) noexcept = default;

    using eFileStreamBase::Open;
    void Open(const eFileNameW& name, int mode);

    using eStream::operator<<;
    // Calls the manipulator on this stream.
    eFileStreamW& operator<<(eFileStreamW& (*manipulator)(eFileStreamW&)) { return manipulator(*this); }
    template <eNotAValue T>
    eFileStreamW& operator<<(T) = delete; // that of eStream may count as hidden by the next one
    template <eNotAValue T>
    requires std::convertible_to<T, eFileStreamW& (*)(eFileStreamW&)> eFileStreamW& operator<<(T manipulator) {
        return manipulator(*this);
    }

protected:
    // "FileStream '%s'%s" with the name as UTF-8 and the core's text.
    std::string Dump() const override;
    int CreateHandle(int openFlags) const override;
    // Reports "%1% - open error!" with the name as UTF-8.
    void CreateHandleError() const override;

    // Writes the characters as UTF-16, two bytes per unit, without length and NUL.
    void WriteStr(const wchar_t* text);

    eFileNameW name;
};

// Opens a file as a stream on the heap, which the caller owns and deletes. Backslashes in the name become slashes. The
// stream is returned even if the file could not be opened: ask IsOpen(). Null if there is no memory for it.
QZL_IO_API eStream* GetStream(const eFileName& name, int mode);
QZL_IO_API eStream* GetStream(const eFileNameW& name, int mode);

} // namespace IO
