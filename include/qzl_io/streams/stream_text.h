#pragma once

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream.h>
#include <qzl_io/streams/stream_share.h>

namespace IO {

// The line end, "\r\n".
QZL_IO_API const char* TextLineSeparator() noexcept;
QZL_IO_API const wchar_t* TextLineSeparatorW() noexcept;

// Writes plain text, without length prefixes, to a stream that it opened itself or that the caller lends it. Copies
// write to the same stream; one that was opened here is closed and deleted by the last of them.
class QZL_IO_API eTextStream {
public:
    // Opens the file as GetStream does; ask Stream().IsOpen().
    eTextStream(const eFileName& name, int mode);
    eTextStream(const eFileNameW& name, int mode);
    // Borrows a stream, which must outlive this object and is left alive and unflushed.
    explicit eTextStream(eStream* stream) noexcept;
    eTextStream(const eTextStream& other) = default;
    // The other text stream is left without a target.
    eTextStream(eTextStream&& other) noexcept;
    ~eTextStream();

    eTextStream& operator=(const eTextStream& other);
    eTextStream& operator=(eTextStream&& other) noexcept;

    // The target, which there must be.
    eStream& Stream() const noexcept { return *stream; }
    // Of the target; 0 without one.
    unsigned long long Position() const noexcept;

    // Writes the characters up to the terminating NUL. Writes nothing for a null pointer or without a target.
    eTextStream& WriteStr(const char* text);

    // Calls the manipulator on this text stream.
    eTextStream& operator<<(eTextStream& (*manipulator)(eTextStream&)) { return manipulator(*this); }

private:
    void Release() noexcept;

    bool owns;       // opened here, so deleted here
    eStream* stream; // null after a move or when there was no memory for it
    eShare owners;   // of the stream, if opened here
};

} // namespace IO
