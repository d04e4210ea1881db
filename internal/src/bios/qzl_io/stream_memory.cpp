// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/stream_memory.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <typeinfo>
#include <utility>

#include "streams/means.h"
#include "streams/reports.h"

namespace IO {
namespace {

namespace MemoryReport {
constexpr char kSource[] = "internal/src/bios/qzl_io/stream_memory";
constexpr int kNoMemoryLine = 10;
constexpr int kBufferWriteLine = 20;
constexpr int kBufferReadLine = 21;
} // namespace MemoryReport

constexpr unsigned short kMemoryMode = StreamMode::Write | StreamMode::Errors;

unsigned char* HeapBlock(unsigned long long size) {
    return static_cast<unsigned char*>(std::calloc(size, 1));
}

void FreeHeapBlock(unsigned char*& block) {
    std::free(std::exchange(block, nullptr));
}

} // namespace

struct eMemoryStream::eBulkWays {
    static void Overflow(eStream& stream, unsigned long long n);
    static bool Adopt(eStream& stream, unsigned char* block, unsigned long long n);

    static constexpr eStreamMeans kMeans = {nullptr, Overflow, Adopt};
};

// The library's own classes grow at once to the size that the steps for n bytes would reach.
void eMemoryStream::eBulkWays::Overflow(eStream& stream, unsigned long long n) {
    if (!IsOfLibraryClass(stream))
        return stream.Overflow();
    auto& memory = static_cast<eMemoryStream&>(stream);
    const bool full = memory.ptr == memory.bufferEnd || memory.Blocked();
    memory.OverflowTo(full ? Address(memory.ptr) - Address(memory.buffer) + n : 0);
}

bool eMemoryStream::eBulkWays::Adopt(eStream& stream, unsigned char* block, unsigned long long n) {
    auto& memory = static_cast<eMemoryStream&>(stream);
    const bool empty = memory.buffer && memory.ptr == memory.buffer && memory.eos == memory.buffer;
    return IsOfLibraryClass(stream) && empty && n > memory.bufferSize && memory.UseWritten(block, n);
}

// --- eMemoryStream ---

eMemoryStream::eMemoryStream(unsigned long long size, unsigned long long growth) : growBy(growth) {
    flags = kMemoryMode;
    means = &eBulkWays::kMeans;
    CreateBuffer(size, 0);
}

eMemoryStream::~eMemoryStream() {
    ReleaseBuffer();
}

eMemoryStream& eMemoryStream::operator=(const eMemoryStream& other) {
    return *this = eMemoryStream(other);
}

// The block of this stream goes back through the hook of its class.
eMemoryStream& eMemoryStream::operator=(eMemoryStream&& other) noexcept {
    if (this != &other) {
        ReleaseBuffer();
        eStream::operator=(static_cast<eStream&&>(other));
        growBy = other.growBy;
        bufferBlock = std::move(other.bufferBlock);
        fromHeap = other.fromHeap;
    }
    return *this;
}

unsigned char* eMemoryStream::AllocateBuffer(unsigned long long size) const {
    return HeapBlock(size);
}

void eMemoryStream::DeallocateBuffer(unsigned char*& block) const {
    FreeHeapBlock(block);
}

// While eMemoryStream's constructor or destructor runs, an object of any class is one.
bool eMemoryStream::IsOfLibraryClass(const eStream& stream) {
    return typeid(stream) == typeid(eMemoryStream) || typeid(stream) == typeid(eMemoryStream_t);
}

// The library's own hooks return cleared bytes; an application's need not.
unsigned char* eMemoryStream::NewBlock(unsigned long long size) const {
    unsigned char* const block = AllocateBuffer(size);
    if (block && !IsOfLibraryClass(*this))
        std::memset(block, 0, size);
    return block;
}

void eMemoryStream::UseNewBlock(unsigned char* block, unsigned long long size, unsigned long long length) {
    UseBuffer(block, size, length);
    bufferBlock = eShare<eFreeing>(block);
    fromHeap = IsOfLibraryClass(*this);
}

void eMemoryStream::eFreeing::Release(unsigned char* block) noexcept {
    std::free(block);
}

// A class with its own hooks may take the block out of the buffer, and then releases it itself.
void eMemoryStream::ReleaseBuffer() {
    if (fromHeap && bufferBlock == buffer)
        bufferBlock.Reset();
    else if (bufferBlock.Leave() && buffer)
        DeallocateBuffer(buffer);
    UseBuffer(nullptr, 0, 0);
}

void eMemoryStream::CreateBuffer(unsigned long long size, unsigned long long used) {
    ReleaseBuffer();
    UseNewBlock(size > 0 ? NewBlock(size) : nullptr, size, used);
    if (size > 0 && !buffer)
        Report(MemoryReport::kSource, MemoryReport::kNoMemoryLine, StreamReport::kNoMemory);
}

unsigned char* eMemoryStream::CopiedBlock(unsigned long long size, unsigned long long kept) const {
    unsigned char* const block = NewBlock(size);
    if (block && buffer && kept > 0)
        std::memcpy(block, buffer, kept);
    return block;
}

unsigned char* eMemoryStream::ExtendedBlock(unsigned long long size, unsigned long long kept) {
    auto* const block = static_cast<unsigned char*>(std::realloc(buffer, size));
    if (block) {
        bufferBlock.Leave();
        buffer = nullptr;
        std::memset(block + kept, 0, size - kept);
    }
    return block;
}

// The heap extends a block for less than the cost of a new one, if most of what is then cleared is going to be used.
void eMemoryStream::Grow(unsigned long long size) {
    const long long length = Distance(buffer, eos);
    const long long position = Distance(buffer, ptr);
    const auto kept = std::min(static_cast<unsigned long long>(std::max(length, 0ll)), Capacity());
    const bool extends = buffer && kept > size / 4 && bufferBlock.Sole() && fromHeap && IsOfLibraryClass(*this);
    unsigned char* const block = extends ? ExtendedBlock(size, kept) : CopiedBlock(size, kept);
    ReleaseBuffer();
    UseNewBlock(block, size, static_cast<unsigned long long>(length));
    MoveTo(Shifted(buffer, static_cast<unsigned long long>(position)));
    if (!block)
        Report(MemoryReport::kSource, MemoryReport::kNoMemoryLine, StreamReport::kNoMemory);
}

void eMemoryStream::ResizeBuffer(unsigned long long size, bool extend) {
    if (size > bufferSize)
        Grow(size);
    if (extend && buffer && Distance(Shifted(buffer, size), eos) < 0)
        eos = Shifted(buffer, size);
}

bool eMemoryStream::ShiftLeft(unsigned long long n) {
    const unsigned long long total = Size();
    if (n > total)
        return false;
    const unsigned long long held = std::min(total, Capacity());
    if (buffer && n < held)
        std::memmove(buffer, buffer + n, held - n);
    Seek(total - n, eSeekDir::Begin);
    Trunc();
    return true;
}

void eMemoryStream::Flush() {
    eStream::Flush();
    RaiseEnd();
}

void eMemoryStream::Overflow() {
    OverflowTo(0);
}

// The size after one step, and after as many more as the needed size takes.
unsigned long long eMemoryStream::SizeFor(unsigned long long needed) const {
    unsigned long long size = NextSize(bufferSize);
    if (growBy > 0 && needed > size)
        size += (needed - size) / growBy * growBy;
    for (unsigned long long next = NextSize(size); size < needed && next > size; next = NextSize(size))
        size = next;
    return size;
}

void eMemoryStream::OverflowTo(unsigned long long needed) {
    const unsigned long long size = SizeFor(needed);
    if (size > bufferSize)
        Grow(size);
}

// A block of the heap gets the size that growth would have reached, and the room after its data is cleared.
bool eMemoryStream::UseWritten(unsigned char* block, unsigned long long n) {
    const unsigned long long size = SizeFor(n);
    auto* const resized = static_cast<unsigned char*>(size < n ? nullptr : std::realloc(block, size));
    if (!resized)
        return false;
    std::memset(resized + n, 0, size - n);
    ReleaseBuffer();
    UseNewBlock(resized, size, n);
    MoveTo(Shifted(buffer, n));
    Enable(StreamMode::Modified);
    return true;
}

unsigned long long eMemoryStream::NextSize(unsigned long long size) const {
    const unsigned long long next = size + (growBy > 0 ? growBy : size);
    return next > size ? next : size;
}

void eMemoryStream::Underflow() {
    CheckReadLocation();
}

std::string eMemoryStream::Dump() const {
    return "MemoryStream" + eStream::Dump();
}

// --- eMemoryStream_t ---

eMemoryStream_t::eMemoryStream_t(unsigned long long size, unsigned long long growth) : eMemoryStream(size, growth) {}

eMemoryStream_t::~eMemoryStream_t() = default;

unsigned char* eMemoryStream_t::AllocateBuffer(unsigned long long size) const {
    return HeapBlock(size);
}

void eMemoryStream_t::DeallocateBuffer(unsigned char*& block) const {
    FreeHeapBlock(block);
}

// --- eBufferStream ---

eBufferStream::eBufferStream(const unsigned char* data, unsigned long long size, unsigned long long used) {
    Assign(data, size, used);
}

eBufferStream::eBufferStream(std::span<const std::byte> bytes)
    : eBufferStream(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), bytes.size()) {}

eBufferStream::eBufferStream(const std::string& text) {
    Assign(reinterpret_cast<const unsigned char*>(text.data()), text.size(), text.size());
}

eBufferStream::~eBufferStream() = default;

void eBufferStream::Assign(const unsigned char* data, unsigned long long size, unsigned long long used) {
    UseBuffer(const_cast<unsigned char*>(data), size, used > 0 ? used : size);
    Enable(kMemoryMode);
}

void eBufferStream::Flush() {
    eStream::Flush();
    RaiseEnd();
}

void eBufferStream::Overflow() {
    SetCapacity(bufferSize);
    Fail(MemoryReport::kSource, MemoryReport::kBufferWriteLine, StreamReport::kWriteBeyond);
}

void eBufferStream::Underflow() {
    SetCapacity(bufferSize);
    Fail(MemoryReport::kSource, MemoryReport::kBufferReadLine, StreamReport::kReadBeyond);
}

std::string eBufferStream::Dump() const {
    return "BufferStream" + eStream::Dump();
}

} // namespace IO
