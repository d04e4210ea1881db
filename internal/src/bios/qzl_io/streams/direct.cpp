// SPDX-License-Identifier: BSL-1.0
#include <algorithm>

#include "streams/means.h"
#include "streams/steps.h"

// What would fill whole buffers moves directly; the rest, for the last buffer, is left to the other steps, so that
// offset, position and buffer end up where those alone would have left them.

namespace IO {

const eStreamDirect* eStreamSteps::Direct(const eStream& stream) {
    const eStreamDirect* const direct = stream.means ? stream.means->direct : nullptr;
    return direct && direct->serves(stream) ? direct : nullptr;
}

// The size of the whole buffers before the last one that n more bytes touch.
unsigned long long eStreamSteps::WholeBuffers(const eStream& stream, unsigned long long n) noexcept {
    const unsigned long long size = stream.Capacity();
    return size > 0 && n > 0 ? (n - 1) / size * size : 0;
}

unsigned long long eStreamSteps::ReadDirect(unsigned char* target, unsigned long long n) {
    const auto data = static_cast<unsigned long long>(stream.ToEnd());
    const unsigned long long whole = WholeBuffers(stream, std::min(n, data));
    const eStreamDirect* const direct = whole > 0 && !stream.Blocked() ? Direct(stream) : nullptr;
    if (!direct)
        return 0;
    stream.FlushIfModified();
    const unsigned long long arrived = direct->read(stream, target, stream.Position(), whole);
    stream.MoveTo(eStream::Shifted(stream.ptr, arrived));
    return arrived;
}

// A position beyond the data is left to Overflow, which reports it.
bool eStreamSteps::TakesWholeBuffers(const eStream& stream) {
    const bool empty = stream.ptr == stream.buffer || stream.RoomInBuffer() == 0;
    return empty && stream.ToEnd() >= 0 && !stream.Blocked() && stream.Enabled(StreamMode::Write) && Direct(stream);
}

// Moves the position past whole buffers that were written directly.
void eStreamSteps::PassWholeBuffers(eStream& stream, unsigned long long whole) {
    stream.MoveTo(eStream::Shifted(stream.ptr, whole));
    stream.RaiseEnd();
    stream.Overflow();
}

unsigned long long eStreamSteps::WriteDirect(const unsigned char* source, unsigned long long n) {
    const unsigned long long whole = WholeBuffers(stream, n);
    if (whole == 0 || !TakesWholeBuffers(stream))
        return 0;
    stream.FlushIfModified();
    stream.means->direct->write(stream, source, stream.Position(), whole);
    PassWholeBuffers(stream, whole);
    return whole;
}

// Copies whole buffers of the target within the system and returns their size in bytes. At least one more byte must
// follow.
unsigned long long eStreamSteps::CopyInSystem(eStream& source, eStream& target, unsigned long long n) {
    const unsigned long long size = target.Capacity();
    if (size == 0 || n < size || !TakesWholeBuffers(target) || target.means != source.means)
        return 0;
    target.FlushIfModified();
    const unsigned long long copied = source.means->direct->copy(source, target, n / size * size) / size * size;
    if (copied > 0)
        PassWholeBuffers(target, copied);
    return copied;
}

bool eStreamSteps::CopyDirect(eStream& source, eStream& target, unsigned long long* n) {
    const auto data = static_cast<unsigned long long>(source.ToEnd());
    unsigned long long whole = WholeBuffers(source, std::min(*n, data));
    const eStreamDirect* const direct = whole > 0 && !source.Blocked() && &target != &source ? Direct(source) : nullptr;
    if (!direct || !direct->apart(source, target))
        return true;
    source.FlushIfModified();
    eStreamSteps writing(target);
    bool arrives = true;
    while (arrives && whole > 0) {
        unsigned long long run = CopyInSystem(source, target, whole);
        if (run == 0) {
            if (target.RoomInBuffer() == 0 && !writing.MakeRoom(whole))
                break;
            const unsigned long long asked = std::min(whole, target.RoomInBuffer());
            run = direct->read(source, target.ptr, source.Position(), asked);
            arrives = run == asked;
            eStreamInline::Written(target, run);
        }
        source.MoveTo(eStream::Shifted(source.ptr, run));
        whole -= run;
        *n -= run;
    }
    const bool goesOn = arrives && (whole == 0 || writing.TakesBytesPastBuffer());
    writing.End();
    return goesOn;
}

} // namespace IO
