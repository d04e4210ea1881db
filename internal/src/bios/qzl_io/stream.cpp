// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/stream.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>

#include "platform/memory.h"
#include "streams/failure_text.h"
#include "streams/means.h"
#include "streams/reported.h"
#include "streams/reports.h"
#include "streams/steps.h"

namespace IO {

using namespace StreamReport;

namespace {

constexpr unsigned long long kReleasedAtOnce = 2ULL << 20;
constexpr unsigned long long kLongestInline = 254; // of texts that may be read without a call

std::string Decimal(long long value) {
    const auto magnitude = static_cast<unsigned long long>(value);
    return value < 0 ? "-" + ToString(0 - magnitude, false) : ToString(magnitude, false);
}

} // namespace

// --- Life ---

eStream::eStream(const eStream& other) noexcept {
    *this = other;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): plain values
eStream& eStream::operator=(const eStream& other) noexcept {
    buffer = other.buffer;
    bufferSize = other.bufferSize;
    offset = other.offset;
    eos = other.eos;
    ptr = other.ptr;
    flags = other.flags;
    means = other.means;
    loss = other.loss;
    SetLimits(other.readLimits);
    SetCapacity(other.Capacity());
    return *this;
}

// NOLINTNEXTLINE(performance-move-constructor-init): a copy of plain values
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

void eStream::SetLimits(const eStreamLimits& most) noexcept {
    readLimits = most;
    inlineTexts = static_cast<unsigned int>(std::min(most.textBytes, kLongestInline) + 1);
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
    if (ToEnd() < 0)
        eos = ptr;
}

void eStream::PlaceBuffer() {
    if (ptr == buffer)
        return;
    if ((Distance(buffer, ptr) < 0 && BeforeStart()) || ToEnd() < 0)
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
    return std::min(RoomInBuffer(), static_cast<unsigned long long>(std::max(ToEnd(), 0ll)));
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
    if (ToEnd() < 0)
        Fail(kSource, kInvalidReadLine, kInvalidRead);
}

void eStream::Fail(const char* source, int line, const char* message) {
    Enable(StreamMode::Bad);
    if (underWay)
        underWay->CountFailure();
    if (Enabled(StreamMode::Errors))
        Report(source, line, message);
}

void eStream::Lose(const char* what, int number) noexcept {
    Enable(StreamMode::Bad);
    if (underWay)
        underWay->CountFailure();
    NoteLoss(what, number);
}

void eStream::NoteLoss(const char* what, int number) noexcept {
    if (!loss.what)
        loss = {what, number, nullptr};
}

eFailure eStream::Failure() const {
    if (!loss.what)
        return {};
    return {loss.number, FailureText(loss.what, loss.number) + (loss.more ? loss.more : "")};
}

void eStream::Report(const char* source, int line, const std::string& message) {
    if (underWay) {
        underWay->Keep(source, line, message);
        return;
    }
    const eHookRun none(*this, false);
    const eReportedStream context(*this);
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
    if (ToEnd() >= 0 && !OutsideBuffer())
        return *this;
    eStreamOperation operation(*this);
    if (ToEnd() < 0)
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
    operation.Hold([this] {
        Reset();
        Trunc();
    });
    operation.End();
    return *this;
}

// The place may be outside the buffer: the next operation there finds it blocked and calls its hook.
void eStream::ReturnTo(unsigned long long position) {
    eStreamOperation operation(*this);
    operation.Hold([this] { FlushIfModified(); });
    MoveTo(Shifted(buffer, position - offset));
    operation.End();
}

// --- Bulk operations ---

eStream& eStream::Read(void* target, unsigned long long n) {
    if (n > 0 && n <= DataInBuffer()) {
        std::memmove(target, ptr, n);
        ptr += n;
    } else if (n > 0) {
        eStreamSteps steps(*this);
        steps.ReadAll(target, n);
        steps.End();
    }
    return *this;
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
        eStreamInline::Written(*this, n);
    } else if (n > 0) {
        eStreamSteps steps(*this);
        steps.WriteAll(from, n);
        steps.End();
    }
    return *this;
}

eStream& eStream::WriteReleasing(void* block, unsigned long long n) {
    if (!means || !means->direct)
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
    while (n > 0 && ToEnd() > 0) {
        if (DataInBuffer() == 0 &&
            (!eStreamSteps::CopyDirect(*this, target, &n) || !eStreamSteps::HasMoreToCopy(*this)))
            break;
        const unsigned long long chunk = std::min(n, DataInBuffer());
        eStreamSteps writing(target);
        const bool written = writing.WriteAll(ptr, chunk);
        writing.Hold([this, chunk] { Skip(chunk); });
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

// --- Primitives outside the common case ---

unsigned char* eStreamInline::LookSlowly(eStream& stream, unsigned long long n) {
    eStreamSteps steps(stream);
    unsigned char* const bytes = steps.LookAt(n);
    steps.End();
    return bytes;
}

unsigned char* eStreamInline::TakeSlowly(eStream& stream, unsigned long long n) {
    eStreamSteps steps(stream);
    unsigned char* const bytes = steps.LookAt(n);
    if (!stream.Blocked())
        stream.MoveTo(eStream::Shifted(stream.ptr, n));
    steps.End();
    return bytes;
}

unsigned char* eStreamInline::PlaceSlowly(eStream& stream, unsigned long long n) {
    eStreamSteps steps(stream);
    const bool reached = steps.ReachToWrite(n);
    steps.End();
    const bool fits = reached && n <= stream.RoomInBuffer();
    unsigned char* const place = fits ? stream.ptr : steps.Apart(n);
    if (!fits)
        stream.NoteLoss(kNoRoom, 0);
    if (reached)
        steps.PassWritten(n);
    return place;
}

} // namespace IO
