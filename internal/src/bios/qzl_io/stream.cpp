#include <qzl_io/streams/stream.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>

#include "platform/memory.h"
#include "streams/direct.h"
#include "streams/operation.h"
#include "streams/reports.h"

namespace IO {

using namespace StreamReport;

namespace {

constexpr unsigned long long kReleasedAtOnce = 2ULL << 20;

std::string Decimal(long long value) {
    const auto magnitude = static_cast<unsigned long long>(value);
    return value < 0 ? "-" + ToString(0 - magnitude, false) : ToString(magnitude, false);
}

} // namespace

// --- Life ---

eStream::eStream(const eStream& other) noexcept {
    *this = other;
}

eStream& eStream::operator=(const eStream& other) noexcept {
    buffer = other.buffer;
    bufferSize = other.bufferSize;
    offset = other.offset;
    eos = other.eos;
    ptr = other.ptr;
    flags = other.flags;
    direct = other.direct;
    SetCapacity(other.Capacity());
    return *this;
}

eStream::eStream(eStream&& other) noexcept : eStream(std::as_const(other)) {
    const eStream none;
    other = none;
}

eStream& eStream::operator=(eStream&& other) noexcept {
    if (this != &other) {
        eStream taken(std::move(other));
        *this = std::as_const(taken);
    }
    return *this;
}

eStream::~eStream() {
    buffer = nullptr;
}

// --- The buffer ---

bool eStream::Blocked() const noexcept {
    return !buffer || Distance(buffer, ptr) < 0 || static_cast<long long>(offset) < 0;
}

unsigned long long eStream::Capacity() const noexcept {
    return bufferEnd ? Address(bufferEnd) - Address(buffer) : lastCapacity;
}

void eStream::SetCapacity(unsigned long long size) noexcept {
    lastCapacity = size;
    const bool shown = hookRuns ? buffer != nullptr : !Blocked();
    bufferEnd = shown ? Shifted(buffer, size) : nullptr;
}

void eStream::MoveTo(unsigned char* place) noexcept {
    const unsigned long long size = Capacity();
    ptr = place;
    SetCapacity(size);
}

void eStream::UseBuffer(unsigned char* block, unsigned long long size, unsigned long long length) noexcept {
    buffer = ptr = block;
    eos = Shifted(block, length);
    bufferSize = size;
    SetCapacity(size);
}

void eStream::RaiseEnd() noexcept {
    if (Remaining() < 0)
        eos = ptr;
}

void eStream::PlaceBuffer() {
    if (ptr == buffer)
        return;
    if ((Distance(buffer, ptr) < 0 && BeforeStart()) || Remaining() < 0)
        Report(kSource, kPlaceBufferLine, kPlaceBuffer + Dump());
    const unsigned long long size = Capacity();
    const unsigned long long shift = Address(ptr) - Address(buffer);
    if (buffer && shift < size)
        std::memmove(buffer, ptr, size - shift);
    ptr = buffer;
    eos = Shifted(eos, 0 - shift);
    offset += shift;
    SetCapacity(size);
}

bool eStream::OutsideBuffer() const noexcept {
    const bool inside = Address(ptr) - Address(buffer) <= Capacity(); // a place before the buffer is a huge distance
    return !inside || static_cast<long long>(offset) < 0;
}

unsigned long long eStream::DataInBuffer() const noexcept {
    return std::min(RoomInBuffer(), static_cast<unsigned long long>(std::max(Remaining(), 0ll)));
}

std::string eStream::Dump() const {
    return "(off:" + Decimal(static_cast<long long>(offset)) + ", ptr:" + Decimal(Distance(buffer, ptr)) +
           ", end:" + Decimal(static_cast<long long>(Capacity())) + ", eos:" + Decimal(Distance(buffer, eos)) +
           ", buff:" + ToString(bufferSize, false) + ")";
}

// --- Hooks ---

void eStream::Trunc() {
    if (BeforeStart())
        Fail(kSource, kTruncLine, kWriteBeyond);
    else
        eos = ptr;
}

void eStream::Flush() {
    Disable(StreamMode::Modified);
}

void eStream::Overflow() {
    FlushIfModified();
    if (Enabled(StreamMode::Read))
        RunHook(&eStream::Underflow);
    else
        PlaceBuffer();
}

void eStream::Underflow() {
    PlaceBuffer();
    CheckReadLocation();
}

eStream& eStream::Skip(unsigned long long n) {
    FlushBeforeMove();
    MoveTo(Shifted(ptr, n));
    return FinishMove();
}

void eStream::CheckReadLocation() {
    if (Remaining() < 0)
        Fail(kSource, kInvalidReadLine, kInvalidRead);
}

void eStream::Fail(const char* source, int line, const char* message) {
    Enable(StreamMode::Bad);
    if (underWay)
        underWay->CountFailure();
    if (Enabled(StreamMode::Errors))
        Report(source, line, message);
}

void eStream::Report(const char* source, int line, const std::string& message) {
    if (underWay) {
        underWay->Keep(source, line, message);
        return;
    }
    const eHookRun none(*this, false);
    xError::Error(source, line, message, true);
}

void eStream::RunHook(void (eStream::*hook)()) {
    const eHookRun run(*this);
    (this->*hook)();
}

void eStream::FlushIfModified() {
    if (Enabled(StreamMode::Modified))
        RunHook(&eStream::Flush);
}

void eStream::Refill() {
    FlushIfModified();
    RunHook(&eStream::Underflow);
}

// --- Positions ---

void eStream::FlushBeforeMove() {
    if (ptr == buffer || Disabled(StreamMode::Write | StreamMode::Modified))
        return;
    if (bufferEnd)
        Flush();
    else
        RunHook(&eStream::Flush);
}

eStream& eStream::FinishMove() {
    if (Remaining() >= 0 && !OutsideBuffer())
        return *this;
    eStreamOperation operation(*this);
    if (Remaining() < 0)
        Fail(kSource, kInvalidSeekLine, kInvalidSeek);
    if (OutsideBuffer())
        operation.Fails(&eStream::Overflow);
    operation.End();
    return *this;
}

eStream& eStream::Seek(unsigned long long position, eSeekDir dir) {
    FlushBeforeMove();
    switch (dir) {
    case eSeekDir::Begin:
        if (position != Position())
            MoveTo(Shifted(buffer, position - offset));
        break;
    case eSeekDir::Current:
        MoveTo(Shifted(ptr, position));
        break;
    case eSeekDir::End:
        MoveTo(Shifted(eos, 0 - position));
        break;
    }
    return FinishMove();
}

eStream& eStream::Reset() {
    return Seek(0, eSeekDir::Begin);
}

eStream& eStream::Clear() {
    eStreamOperation operation(*this);
    Reset();
    Trunc();
    operation.End();
    return *this;
}

// --- Bulk operations ---

bool eStream::MakeData(eStreamOperation& operation) {
    const bool reported = !BeforeStart() && operation.Fails(&eStream::Refill);
    if (DataInBuffer() > 0)
        return true;
    if (!reported)
        Fail(kSource, kReadNothingLine, kReadBeyond);
    return false;
}

bool eStream::HasMoreToCopy() {
    eStreamOperation refill(*this);
    const bool more = MakeData(refill);
    if (!more)
        refill.DropReports();
    refill.End();
    return more;
}

bool eStream::MakeRoom(eStreamOperation& operation, unsigned long long n) {
    const bool reported = !BeforeStart() && operation.Fails(&eStream::Overflow, n);
    if (RoomInBuffer() > 0)
        return true;
    if (!reported)
        Fail(kSource, kWriteNothingLine, kWriteBeyond);
    return false;
}

eStream& eStream::Read(void* target, unsigned long long n) {
    if (n > 0 && n <= DataInBuffer()) {
        std::memmove(target, ptr, n);
        ptr += n;
    } else if (n > 0) {
        eStreamOperation operation(*this);
        ReadAll(operation, target, n);
        operation.End();
    }
    return *this;
}

void eStream::ReadAll(eStreamOperation& operation, void* target, unsigned long long n) {
    auto* to = static_cast<unsigned char*>(target);
    while (n > 0) {
        if (Remaining() <= 0)
            return Fail(kSource, kReadEndLine, kReadBeyond);
        if (DataInBuffer() == 0) {
            const unsigned long long past = ReadDirect(to, n);
            to += past;
            n -= past;
            if (!MakeData(operation))
                return;
        }
        const unsigned long long run = std::min(n, DataInBuffer());
        std::memmove(to, ptr, run);
        ptr += run;
        to += run;
        n -= run;
    }
}

unsigned long long eStream::AppendTo(std::string* text, unsigned long long n) {
    const unsigned long long run = std::min(n, DataInBuffer());
    if (run > 0) {
        text->append(reinterpret_cast<const char*>(ptr), static_cast<std::size_t>(run));
        ptr += run;
    }
    return run;
}

eStream& eStream::Write(const void* source, unsigned long long n) {
    const auto* from = static_cast<const unsigned char*>(source);
    if (n > 0 && n <= RoomInBuffer()) {
        std::memmove(ptr, from, n);
        Written(n);
    } else if (n > 0) {
        eStreamOperation operation(*this);
        WriteAll(operation, from, n);
        operation.End();
    }
    return *this;
}

// Growth releases the buffer, and a refill changes it: bytes of its own are set aside before.
bool eStream::WriteAll(eStreamOperation& operation, const unsigned char* source, unsigned long long n) {
    if (n <= RoomInBuffer() || !HoldsInBuffer(source))
        return WritePieces(operation, source, n);
    const unsigned long long held = std::min(n, Capacity() - (Address(source) - Address(buffer)));
    const std::vector<unsigned char> copy(source, source + held);
    return WritePieces(operation, copy.data(), held);
}

bool eStream::HoldsInBuffer(const unsigned char* place) const noexcept {
    return buffer && Address(place) - Address(buffer) < Capacity();
}

bool eStream::WritePieces(eStreamOperation& operation, const unsigned char* source, unsigned long long n) {
    while (n > 0) {
        const unsigned long long past = WriteDirect(source, n);
        source += past;
        n -= past;
        if (RoomInBuffer() == 0 && !MakeRoom(operation, n))
            return false;
        const unsigned long long run = std::min(n, RoomInBuffer());
        std::memmove(ptr, source, run);
        Written(run);
        source += run;
        n -= run;
    }
    return true;
}

eStream& eStream::WriteReleasing(void* block, unsigned long long n) {
    if (!direct)
        return Write(block, n);
    auto* piece = static_cast<unsigned char*>(block);
    for (unsigned long long size = 0; n > 0; piece += size, n -= size) {
        size = std::min(n, kReleasedAtOnce);
        Write(piece, size);
        Platform::ReleasePages(piece, size);
    }
    return *this;
}

eStream& eStream::CopyTo(eStream& target, unsigned long long n) {
    if (n == 0 || Size() == 0)
        n = Address(eos) - Address(ptr);
    while (n > 0 && Remaining() > 0) {
        if (DataInBuffer() == 0 && (!CopyDirect(target, &n) || !HasMoreToCopy()))
            break;
        const unsigned long long chunk = std::min(n, DataInBuffer());
        eStreamOperation writing(target);
        const bool written = target.WriteAll(writing, ptr, chunk);
        Skip(chunk);
        n -= chunk;
        writing.End();
        if (!written)
            break;
    }
    return *this;
}

eStream& eStream::CopyFrom(eStream& source, unsigned long long n) {
    source.CopyTo(*this, n);
    return *this;
}

// --- Past the buffer ---
//
// What whole buffers would carry moves directly; the last buffer's part is left to the steps above, so that offset,
// position and buffer end up where those steps alone would have brought them.

const eStreamDirect* eStream::Direct() const {
    return direct && direct->serves(*this) ? direct : nullptr;
}

unsigned long long eStream::WholeBuffers(unsigned long long n) const noexcept {
    const unsigned long long size = Capacity();
    return size > 0 && n > 0 ? (n - 1) / size * size : 0;
}

unsigned long long eStream::ReadDirect(unsigned char* target, unsigned long long n) {
    const unsigned long long whole = WholeBuffers(std::min(n, static_cast<unsigned long long>(Remaining())));
    if (whole == 0 || Blocked() || !Direct())
        return 0;
    FlushIfModified();
    direct->read(*this, target, Position(), whole);
    MoveTo(Shifted(ptr, whole));
    return whole;
}

// A position beyond the data is left to Overflow, which reports it.
bool eStream::TakesWholeBuffers() const {
    const bool empty = ptr == buffer || RoomInBuffer() == 0;
    return empty && Remaining() >= 0 && !Blocked() && Enabled(StreamMode::Write) && Direct();
}

// Behind whole buffers that were written directly.
void eStream::PassWritten(unsigned long long whole) {
    MoveTo(Shifted(ptr, whole));
    RaiseEnd();
    Overflow();
}

unsigned long long eStream::WriteDirect(const unsigned char* source, unsigned long long n) {
    const unsigned long long whole = WholeBuffers(n);
    if (whole == 0 || !TakesWholeBuffers())
        return 0;
    FlushIfModified();
    direct->write(*this, source, Position(), whole);
    PassWritten(whole);
    return whole;
}

// Whole buffers of the target that the system copies by itself, in bytes. At least one byte has to follow them.
unsigned long long eStream::CopyInSystem(eStream& target, unsigned long long n) {
    const unsigned long long size = target.Capacity();
    if (n < size || !target.TakesWholeBuffers() || target.direct != direct)
        return 0;
    target.FlushIfModified();
    const unsigned long long copied = direct->copy(*this, target, n / size * size) / size * size;
    if (copied > 0)
        target.PassWritten(copied);
    return copied;
}

// False when the target has no room, which has then been reported.
bool eStream::CopyDirect(eStream& target, unsigned long long* n) {
    unsigned long long whole = WholeBuffers(std::min(*n, static_cast<unsigned long long>(Remaining())));
    if (whole == 0 || Blocked() || &target == this || !Direct() || !direct->apart(*this, target))
        return true;
    FlushIfModified();
    eStreamOperation writing(target);
    while (whole > 0) {
        unsigned long long run = CopyInSystem(target, whole);
        if (run == 0) {
            if (target.RoomInBuffer() == 0 && !target.MakeRoom(writing, whole))
                break;
            run = std::min(whole, target.RoomInBuffer());
            direct->read(*this, target.ptr, Position(), run);
            target.Written(run);
        }
        MoveTo(Shifted(ptr, run));
        whole -= run;
        *n -= run;
    }
    writing.End();
    return whole == 0;
}

// --- Primitives outside the common case ---

bool eStream::Reach(eStreamOperation& operation, int line, const char* message) {
    const bool reported = !BeforeStart() && operation.Fails(&eStream::Overflow);
    if (!Blocked())
        return true;
    if (!reported)
        Fail(kSource, line, message);
    return false;
}

bool eStream::ReachToRead(eStreamOperation& operation) {
    return Reach(operation, kValueReadLine, kReadBeyond);
}
// One step of a growing buffer can be less than a value: it overflows again as long as that gives more room.
bool eStream::ReachToWrite(eStreamOperation& operation, unsigned long long n) {
    unsigned long long before = 0;
    do {
        before = RoomInBuffer();
        if (!Reach(operation, kValueWriteLine, kWriteBeyond))
            return false;
    } while (RoomInBuffer() < n && RoomInBuffer() > before);
    return true;
}

unsigned char* eStream::Apart(unsigned long long n) {
    apart = std::make_unique<unsigned char[]>(n);
    return apart.get();
}

unsigned char* eStream::LookAt(eStreamOperation& operation, unsigned long long n) {
    if (!ReachToRead(operation))
        return Apart(n);
    const unsigned long long room = RoomInBuffer();
    if (n <= room)
        return ptr;
    unsigned char* const block = Apart(n);
    if (room > 0)
        std::memcpy(block, ptr, room);
    return block;
}

unsigned char* eStream::LookFallback(unsigned long long n) {
    eStreamOperation operation(*this);
    unsigned char* const bytes = LookAt(operation, n);
    operation.End();
    return bytes;
}

unsigned char* eStream::TakeFallback(unsigned long long n) {
    eStreamOperation operation(*this);
    unsigned char* const bytes = LookAt(operation, n);
    if (!Blocked())
        MoveTo(Shifted(ptr, n));
    operation.End();
    return bytes;
}

unsigned char* eStream::PlaceFallback(unsigned long long n) {
    eStreamOperation operation(*this);
    const bool reached = ReachToWrite(operation, n);
    operation.End();
    if (!reached)
        return Apart(n);
    unsigned char* const place = n <= RoomInBuffer() ? ptr : Apart(n);
    WrittenTo(n);
    return place;
}

// Behind a value of which a part may have been dropped.
void eStream::WrittenTo(unsigned long long n) {
    MoveTo(Shifted(ptr, n));
    Enable(StreamMode::Modified);
    RaiseEnd();
}

} // namespace IO
