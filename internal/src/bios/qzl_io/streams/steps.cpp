// SPDX-License-Identifier: BSL-1.0
#include "streams/steps.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "streams/means.h"
#include "streams/reports.h"

namespace IO {

using namespace StreamReport;

namespace {

constexpr unsigned char kLongMark = 255; // a long length follows
constexpr unsigned int kLongLengthBytes = 3;
constexpr unsigned int kTbyteMask = 0xFFFFFF;

} // namespace

// --- Bytes ---

bool eStreamSteps::MakeData() {
    const bool reported = !stream.BeforeStart() && Fails(&eStream::Refill);
    if (stream.DataInBuffer() > 0)
        return true;
    if (!reported)
        stream.Fail(kSource, kReadNothingLine, kReadBeyond);
    return false;
}

bool eStreamSteps::HasMoreToCopy(eStream& source) {
    eStreamSteps refill(source);
    const bool more = refill.MakeData();
    if (!more)
        refill.DropReports();
    refill.End();
    return more;
}

bool eStreamSteps::MakeRoom(unsigned long long n) {
    const auto overflow = [this, n] {
        const eHookRun run(stream);
        if (stream.means && stream.means->overflow)
            stream.means->overflow(stream, n);
        else
            stream.Overflow();
    };
    const bool reported = !stream.BeforeStart() && Fails(overflow);
    if (stream.RoomInBuffer() > 0)
        return true;
    if (!reported)
        stream.Fail(kSource, kWriteNothingLine, kWriteBeyond);
    return false;
}

bool eStreamSteps::HandOver(eStream& stream, void* block, unsigned long long n) {
    return stream.means && stream.means->adopt && stream.means->adopt(stream, static_cast<unsigned char*>(block), n);
}

bool eStreamSteps::ReadAll(void* target, unsigned long long n) {
    auto* to = static_cast<unsigned char*>(target);
    while (n > 0) {
        if (stream.ToEnd() <= 0) {
            stream.Fail(kSource, kReadEndLine, kReadBeyond);
            return false;
        }
        if (stream.DataInBuffer() == 0) {
            const unsigned long long past = ReadDirect(to, n);
            to += past;
            n -= past;
            if (!MakeData())
                return false;
        }
        const unsigned long long run = std::min(n, stream.DataInBuffer());
        std::memmove(to, stream.ptr, run);
        stream.ptr += run;
        to += run;
        n -= run;
    }
    return true;
}

bool eStreamSteps::TryReadAll(void* target, unsigned long long n) {
    const unsigned long long start = stream.Position();
    if (stream.Remaining() < n)
        return false;
    if (ReadAll(target, n))
        return true;
    DropReports();
    stream.MoveTo(eStream::Shifted(stream.ptr, start - stream.Position()));
    return false;
}

// Growth releases the buffer, and a refill changes it, so bytes of the stream itself are copied first.
bool eStreamSteps::WriteAll(const unsigned char* source, unsigned long long n) {
    if (n <= stream.RoomInBuffer() || !HoldsInBuffer(source))
        return WritePieces(source, n);
    const unsigned long long before = eStream::Address(source) - eStream::Address(stream.buffer);
    const unsigned long long held = before < stream.Capacity() ? std::min(n, stream.Capacity() - before) : 0;
    const std::vector<unsigned char> copy(source, source + held);
    return WritePieces(copy.data(), held);
}

// The buffer's block is larger than its capacity if it could not be filled.
bool eStreamSteps::HoldsInBuffer(const unsigned char* place) const noexcept {
    const unsigned long long size = std::max(stream.Capacity(), stream.bufferSize);
    return stream.buffer && eStream::Address(place) - eStream::Address(stream.buffer) < size;
}

bool eStreamSteps::WritePieces(const unsigned char* source, unsigned long long n) {
    while (n > 0) {
        const unsigned long long past = WriteDirect(source, n);
        source += past;
        n -= past;
        if (stream.RoomInBuffer() == 0 && !MakeRoom(n)) {
            if (!WritePastBuffer(source, 0, n))
                return false;
            PassWritten(n);
            return true;
        }
        const unsigned long long run = std::min(n, stream.RoomInBuffer());
        std::memmove(stream.ptr, source, run);
        eStreamInline::Written(stream, run);
        source += run;
        n -= run;
    }
    return true;
}

// A buffer that could not be filled holds no more bytes than were read, so that a flush writes no others. A file then
// takes what is written directly.
bool eStreamSteps::TakesBytesPastBuffer() const {
    return !stream.Blocked() && stream.Enabled(StreamMode::Write) && Direct(stream);
}

// Writes n bytes that belong `at` bytes after the position. False if they are dropped.
bool eStreamSteps::WritePastBuffer(const unsigned char* source, unsigned long long at, unsigned long long n) {
    if (!TakesBytesPastBuffer()) {
        stream.NoteLoss(kNoRoom, 0);
        return false;
    }
    stream.means->direct->write(stream, source, stream.Position() + at, n);
    return true;
}

// --- Values ---

bool eStreamSteps::Reach(int line, const char* message) {
    const bool reported = !stream.BeforeStart() && Fails(&eStream::Overflow);
    if (!stream.Blocked())
        return true;
    if (!reported)
        stream.Fail(kSource, line, message);
    return false;
}

bool eStreamSteps::ReachToRead() {
    return Reach(kValueReadLine, kReadBeyond);
}
// One step of a growing buffer can be less than a value needs: overflows repeatedly as long as that gives more room.
bool eStreamSteps::ReachToWrite(unsigned long long n) {
    unsigned long long before = 0;
    do {
        before = stream.RoomInBuffer();
        if (!Reach(kValueWriteLine, kWriteBeyond))
            return false;
    } while (stream.RoomInBuffer() < n && stream.RoomInBuffer() > before);
    return true;
}

unsigned char* eStreamSteps::Apart(unsigned long long n) {
    stream.apart = std::make_unique<unsigned char[]>(n);
    return stream.apart.get();
}

unsigned char* eStreamSteps::LookAt(unsigned long long n) {
    if (!ReachToRead())
        return Apart(n);
    const unsigned long long room = stream.RoomInBuffer();
    if (n <= room)
        return stream.ptr;
    unsigned char* const block = Apart(n);
    if (room > 0)
        std::memcpy(block, stream.ptr, room);
    return block;
}

void eStreamSteps::PassWritten(unsigned long long n) {
    stream.MoveTo(eStream::Shifted(stream.ptr, n));
    stream.Enable(StreamMode::Modified);
    stream.RaiseEnd();
}

unsigned long long eStreamSteps::BitsHere(unsigned long long n) const noexcept {
    unsigned long long bits = 0;
    const unsigned long long there = std::min(n, stream.RoomInBuffer());
    if (there > 0)
        std::memcpy(&bits, stream.ptr, there);
    return bits;
}

unsigned long long eStreamSteps::TakeBits(unsigned long long n) {
    if (!eStreamInline::Fits(stream, n) && !ReachToRead())
        return 0;
    const unsigned long long bits = BitsHere(n);
    stream.MoveTo(eStream::Shifted(stream.ptr, n));
    return bits;
}

bool eStreamSteps::PutBits(unsigned long long bits, unsigned long long n) {
    if (!eStreamInline::Fits(stream, n) && !ReachToWrite(n)) {
        stream.NoteLoss(kNoRoom, 0);
        return false;
    }
    const unsigned long long fits = std::min(n, stream.RoomInBuffer());
    if (fits > 0)
        std::memcpy(stream.ptr, &bits, fits);
    if (fits < n)
        WritePastBuffer(reinterpret_cast<const unsigned char*>(&bits) + fits, fits, n - fits);
    PassWritten(n);
    return true;
}

// --- Texts ---

bool eStreamSteps::PutLength(unsigned long long length) {
    if (length < kLongMark)
        return PutBits(length, 1);
    return PutBits(kLongMark, 1) && PutBits(length & kTbyteMask, kLongLengthBytes);
}

bool eStreamSteps::GetLength(unsigned int* length) {
    *length = eStreamInline::Shows(stream, 1) ? *stream.ptr++ : static_cast<unsigned int>(TakeBits(1));
    if (*length != kLongMark)
        return true;
    unsigned char bytes[kLongLengthBytes] = {};
    const bool complete = ReadAll(bytes, kLongLengthBytes);
    *length = bytes[0];
    return complete;
}

bool eStreamSteps::GetText(std::string* text) {
    unsigned int length = 0;
    const bool measured = GetLength(&length);
    if (length <= stream.readLimits.textBytes)
        return GetCharacters(text, length) && measured;
    text->clear();
    stream.Fail(kSource, kTextLimitLine, kReadBeyondLimit);
    return false;
}

bool eStreamSteps::GetCharacters(std::string* text, unsigned int length) {
    if (length <= stream.DataInBuffer()) {
        eStreamInline::AssignText(text, stream.ptr, length);
        stream.ptr = eStream::Shifted(stream.ptr, length);
        return true;
    }
    text->assign(length, '\0');
    return ReadAll(text->data(), length);
}

bool eStreamSteps::AppendUpTo(eStream& stream, char delimiter, std::string* line) {
    const unsigned long long shown = std::min(stream.DataInBuffer(), std::max(stream.RoomInBuffer(), 1ull) - 1);
    const unsigned long long run = std::min(shown, stream.readLimits.textBytes - line->size());
    if (run == 0)
        return false;
    const auto* const from = reinterpret_cast<const char*>(stream.ptr);
    const auto* const end = static_cast<const char*>(std::memchr(from, delimiter, run));
    line->append(from, end ? end : from + run);
    stream.ptr += end ? end + 1 - from : static_cast<std::ptrdiff_t>(run);
    return end != nullptr;
}

} // namespace IO
