// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/detail/share.h>
#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// The line end, "\r\n".
QZL_IO_API const char* TextLineSeparator() noexcept;
QZL_IO_API const wchar_t* TextLineSeparatorW() noexcept;

// Writes plain text, without length prefixes, to a stream that it opened itself or that the caller lends it. Copies
// write to the same stream; the last of them closes and deletes a stream that was opened here.
class QZL_IO_API eTextStream {
public:
    // Opens the file as GetStream does; ask Stream().IsOpen().
    eTextStream(const eFileName& name, int mode);
    eTextStream(const eFileNameW& name, int mode);
    // Borrows a stream, which must outlive this object and is neither deleted nor flushed.
    explicit eTextStream(eStream* stream) noexcept;
    eTextStream(const eTextStream& other) = default;
    // The other text stream is left without a target.
    eTextStream(eTextStream&& other) noexcept = default;
    ~eTextStream() = default;

    eTextStream& operator=(const eTextStream& other) = default;
    eTextStream& operator=(eTextStream&& other) noexcept = default;

    // The target, which must exist.
    eStream& Stream() const noexcept { return *target->stream; }
    // The position of the target; 0 without one.
    unsigned long long Position() const noexcept;

    // Writes the characters up to the terminating NUL. Writes nothing for a null pointer or without a target.
    eTextStream& WriteStr(const char* text);

    // Calls the manipulator on this text stream.
    eTextStream& operator<<(eTextStream& (*manipulator)(eTextStream&)) { return manipulator(*this); }

private:
    struct eTarget {
        eStream* stream; // null after a move, or if there was no memory for it
        bool opened;     // here, so deleted here

        bool operator==(const eTarget&) const = default;
    };
    struct eDeletion {
        static constexpr eTarget kNone{nullptr, false};
        QZL_IO_API static void Release(eTarget target) noexcept;
    };

    eShare<eDeletion> target;
};

} // namespace IO
