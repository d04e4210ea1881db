#pragma once

#include <concepts>
#include <string>

#include <qzl_io/detail/share.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// A stream over a file, whatever names it. The mode given to Open is the flag word from then on: Read refills the
// buffer from the file as it is used up, Write opens for reading and writing and creates what is missing, Create with
// Write cuts the file to length 0, Errors reports errors. The buffer holds 32768 bytes, or the whole file where that is
// shorter and opened without Write. Other streams and processes may open the file at the same time.
//
// Opening to read waits for nobody: a pipe is refused as a folder is, by whatever name. A file whose length the system
// does not tell is not opened.
//
// Copies share the handle, and the buffer until one of them refills it; the last owner closes the one and releases the
// other. Reads that the system cuts short and writes that fail are not reported; they set Bad.
class QZL_IO_API eFileStreamBase : public eStream {
public:
    ~eFileStreamBase() override; // closes

    // Opens the file that CreateHandle names and stands at its start; what was open before is closed first. When it
    // cannot be opened, Failed is set; with Errors CreateHandleError reports it and, each time the report returns,
    // another attempt is made.
    void Open(int mode);
    // Flushes if the stream writes, lets go of file and buffer. The flags stay, and so does what IsOpen() says; offset
    // and bufferSize stay too.
    void Close();
    // Reads the buffer again from the file; unflushed bytes are flushed first.
    void Fresh();

    // Ends the data and the file at the current position.
    void Trunc() override;
    // Writes the bytes from the start of the buffer to the position, if the stream writes.
    void Flush() override;
    void Overflow() override;
    // Makes the position the buffer's first byte and reads the buffer from the file. A position beyond the data sets
    // Bad and is reported as "Invalid read location!".
    void Underflow() override;

    using eStream::GetLine;
    // The next line: the bytes up to and including the next line feed, or to the end of the data, without the carriage
    // returns and line feeds among them. Of any length. At the end of the data it is empty.
    std::string GetLine();

protected:
    // A handle for the file, opened with the run-time's flags (kOpenRead, kOpenWrite, kOpenCreate), or -1.
    virtual int CreateHandle(int openFlags) const = 0;
    // Reports that the file cannot be opened.
    virtual void CreateHandleError() const = 0;

    // Not open.
    eFileStreamBase() noexcept = default;
    eFileStreamBase(const eFileStreamBase& other) = default;
    eFileStreamBase(eFileStreamBase&& other) noexcept = default;
    eFileStreamBase& operator=(const eFileStreamBase& other);
    eFileStreamBase& operator=(eFileStreamBase&& other) noexcept;

    // Bytes from the position to the end of the line, its line feed included; 0 at the end of the data. The position
    // stays.
    unsigned long long GetLineLength();

    static constexpr int kOpenRead = 0x8000;   // binary, read only
    static constexpr int kOpenWrite = 0x8102;  // binary, read and write, create
    static constexpr int kOpenCreate = 0x8302; // binary, read and write, create, cut to length 0

    struct eClosing {
        static constexpr int kNone = -1;
        QZL_IO_API static void Release(int handle) noexcept;
    };
    eShare<eClosing> handle; // reads as an int, the run-time's handle; -1 when no file is open

private:
    struct eDirectWays;

    void CreateBuffer(unsigned long long capacity, unsigned long long length);
    void UseBlock(unsigned char* block, unsigned long long capacity, unsigned long long length) noexcept;
    void ReleaseBuffer() noexcept;
    // Takes a buffer of its own where copies share it.
    void Detach();
    // Reads the buffer from the file.
    void Fill();
    void FillIfDataRemain();
    // Bytes of the current line that are in the buffer, its line feed included; complete tells whether it has one
    // there.
    unsigned long long LineInBuffer(bool* complete) const noexcept;
    // As LineInBuffer, after a refill if that brings more of the line. Complete also if no data remain.
    unsigned long long LinePiece(eStreamSteps& steps, bool* complete);

    template <class eOther>
    eFileStreamBase& Assign(eOther&& other);

    struct eBlockDeletion {
        static constexpr unsigned char* kNone = nullptr;
        QZL_IO_API static void Release(unsigned char* block) noexcept;
    };
    eShare<eBlockDeletion> bufferBlock;
};

// A file by a narrow name (UTF-8 on systems whose names are bytes).
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
    eFileStream& operator<<(T) = delete; // eStream's may count as hidden by the next
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

    // Writes the characters, without length and NUL.
    void WriteStr(const char* text);

    eFileName name;
};

// A file by a wide name (stored as UTF-8 on systems whose names are bytes).
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
    eFileStreamW& operator<<(T) = delete; // eStream's may count as hidden by the next
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

    // Writes the characters as UTF-16, two bytes a unit, without length and NUL.
    void WriteStr(const wchar_t* text);

    eFileNameW name;
};

// Opens a file as a stream on the heap, which the caller owns and deletes. Back slashes in the name become slashes. The
// stream is returned even when the file could not be opened: ask IsOpen(). Null when there is no memory for it.
QZL_IO_API eStream* GetStream(const eFileName& name, int mode);
QZL_IO_API eStream* GetStream(const eFileNameW& name, int mode);

} // namespace IO
