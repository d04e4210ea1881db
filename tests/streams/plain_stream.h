// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <qzl_io/streams.h>

#include "hook_calls.h"

// The buffer model in its plainest form: one step after another, positions as numbers counted from the first byte of
// the buffer, no fast paths. The library's streams are compared with it.
class ePlainStream {
public:
    using u64 = unsigned long long;
    using i64 = long long;

    // Thrown before a step that would touch bytes where there are none.
    struct eNoBytes {};

    virtual ~ePlainStream() = default;

    bool Has(unsigned bits) const { return (flags & bits) != 0; }
    u64 Position() const { return offset + static_cast<u64>(ptr); }
    u64 Size() const { return offset + static_cast<u64>(eos); }
    bool Eos() const { return ptr >= eos || Has(IO::StreamMode::Failed | IO::StreamMode::Bad); }
    bool Holds(u64 n) const { return ptr >= 0 && ptr + static_cast<i64>(n) <= eos; } // n bytes of data follow
    // The position is not a place in the data, so what is found there is unspecified.
    bool Astray() const { return static_cast<i64>(offset) < 0 || ptr < 0 || ptr > eos || ptr > end; }

    std::string Dump() const {
        return Name() + "(off:" + Decimal(static_cast<i64>(offset)) + ", ptr:" + Decimal(ptr) +
               ", end:" + Decimal(end) + ", eos:" + Decimal(eos) + ", buff:" + Decimal(static_cast<i64>(bufferSize)) +
               ")";
    }
    unsigned short Flags() const { return flags; }
    const std::vector<std::string>& Reports() const { return reports; }
    eHookCalls& Calls() { return calls; }
    // The stored content, as of the last Flush.
    virtual std::string Stored() const = 0;

    void Disable(unsigned bits) { flags = static_cast<unsigned short>(flags & ~bits); }

    // --- Hooks ---

    void Trunc() {
        calls.Note('T', Position());
        RunTrunc();
    }
    void Flush() {
        calls.Note('F', Position());
        RunFlush();
    }
    void Overflow() {
        calls.Note('O', Position());
        RunOverflow();
    }
    void Underflow() {
        calls.Note('U', Position());
        RunUnderflow();
    }
    void Skip(u64 n) {
        calls.Note('S', Position());
        FlushBeforeMove();
        ptr += static_cast<i64>(n);
        FinishMove();
    }

    // --- Bytes ---

    void Seek(u64 position, IO::eSeekDir dir) {
        FlushBeforeMove();
        if (dir == IO::eSeekDir::Begin)
            ptr = static_cast<i64>(position - offset);
        else if (dir == IO::eSeekDir::Current)
            ptr += static_cast<i64>(position);
        else
            ptr = eos - static_cast<i64>(position);
        FinishMove();
    }
    void Clear() {
        Seek(0, IO::eSeekDir::Begin);
        Trunc();
    }

    std::string Read(u64 n) {
        std::string read;
        while (n > 0 && ptr < eos) {
            const std::string run = DataHere(n);
            read += run;
            ptr += static_cast<i64>(run.size());
            n -= run.size();
        }
        if (n > 0)
            Fail("Attempt to read beyond the stream!");
        return read;
    }
    // Ends with one report of the hook if the hook makes no room.
    void Write(const std::string& bytes) {
        for (std::size_t written = 0; written < bytes.size();) {
            if (ptr == end)
                Overflow();
            if (ptr == end && Has(IO::StreamMode::Bad))
                return;
            Require(1);
            const std::size_t run = std::min(bytes.size() - written, static_cast<std::size_t>(end - ptr));
            Store(bytes.substr(written, run));
            written += run;
        }
    }
    std::string CopyTo(u64 n) {
        std::string copied;
        if (n == 0 || Size() == 0)
            n = static_cast<u64>(eos - ptr);
        while (n > 0 && ptr < eos) {
            const std::string chunk = DataHere(n);
            copied += chunk;
            Skip(chunk.size());
            n -= chunk.size();
        }
        return copied;
    }

    // --- Values ---

    std::string Look(u64 n) {
        if (ptr + static_cast<i64>(n) >= end)
            Overflow();
        Require(0);
        return Bytes(n);
    }
    std::string Take(u64 n) {
        const std::string bytes = Look(n);
        ptr += static_cast<i64>(n);
        return bytes;
    }
    // Overflows again while that makes more room and the value needs it.
    void Place(const std::string& bytes) {
        const auto n = static_cast<i64>(bytes.size());
        if (ptr + n >= end) {
            i64 room = 0;
            do {
                room = end - ptr;
                Overflow();
            } while (end - ptr < n && end - ptr > room);
        }
        Require(0);
        Store(bytes);
    }

    void PutText(const std::string& text) {
        const auto n = static_cast<unsigned>(text.size());
        if (n < 255) {
            Place({static_cast<char>(n)});
        } else {
            Place("\xFF");
            Place({static_cast<char>(n), static_cast<char>(n >> 8), static_cast<char>(n >> 16)});
        }
        Write(text);
    }
    std::string GetText() {
        auto length = static_cast<unsigned char>(Take(1)[0]);
        if (length == 255)
            length = static_cast<unsigned char>((Read(3) + '\0')[0]);
        std::string text = Read(length);
        text.resize(length);
        return text;
    }
    std::string GetLine(char delimiter) {
        std::string line;
        while (!Eos()) {
            const std::string next = Take(1);
            if (next[0] == delimiter)
                break;
            line += next;
        }
        return line;
    }

protected:
    ePlainStream(u64 capacity, u64 length, unsigned short mode) : flags(mode) { CreateBuffer(capacity, length); }

    virtual std::string Name() const = 0;
    virtual void RunTrunc() { eos = ptr; }
    virtual void RunFlush() { flags = static_cast<unsigned short>(flags & ~IO::StreamMode::Modified); }
    virtual void RunOverflow() {
        if (Has(IO::StreamMode::Modified))
            Flush();
        if (Has(IO::StreamMode::Read))
            Underflow();
        else
            PlaceBuffer();
    }
    virtual void RunUnderflow() {
        PlaceBuffer();
        CheckReadLocation();
    }

    void CreateBuffer(u64 capacity, u64 length) {
        buffer.assign(capacity, 0);
        bufferSize = capacity;
        end = static_cast<i64>(capacity);
        eos = static_cast<i64>(length);
        ptr = 0;
    }
    void PlaceBuffer() {
        if (ptr == 0)
            return;
        if (static_cast<i64>(Position()) < 0 || ptr > eos)
            reports.push_back("Stream.PlaceBuffer: " + Dump());
        if (ptr > 0 && ptr < end)
            std::memmove(buffer.data(), buffer.data() + ptr, static_cast<std::size_t>(end - ptr));
        eos -= ptr;
        offset += static_cast<u64>(ptr);
        ptr = 0;
    }
    void CheckReadLocation() {
        if (eos < ptr)
            Fail("Invalid read location!");
    }
    void Fail(const char* message) {
        flags = static_cast<unsigned short>(flags | IO::StreamMode::Bad);
        if (Has(IO::StreamMode::Errors))
            reports.push_back(message);
    }

    // There is a buffer, the position is in it, and n bytes fit before its end.
    void Require(u64 n) const {
        const bool there = !buffer.empty() && ptr >= 0 && static_cast<i64>(offset) >= 0;
        if (!there || (n > 0 && ptr + static_cast<i64>(n) > end))
            throw eNoBytes{};
    }
    // n bytes at the position; zero past the buffer.
    std::string Bytes(u64 n) const {
        std::string bytes(n, '\0');
        std::copy_n(buffer.begin() + std::min(ptr, end), InBuffer(n), bytes.begin());
        return bytes;
    }
    i64 InBuffer(u64 n) const { return std::clamp(end - ptr, i64{0}, static_cast<i64>(n)); }

    std::vector<unsigned char> buffer;
    i64 end = 0;
    u64 bufferSize = 0;
    u64 offset = 0;
    i64 eos = 0;
    i64 ptr = 0;
    unsigned short flags = 0;

private:
    static std::string Decimal(i64 value) { return std::to_string(value); }

    void FlushBeforeMove() {
        if (ptr != 0 && Has(IO::StreamMode::Write | IO::StreamMode::Modified))
            Flush();
    }
    void FinishMove() {
        if (ptr > eos)
            Fail("Invalid seek location!");
        if (ptr < 0 || ptr > end || static_cast<i64>(offset) < 0)
            Overflow();
    }

    // n bytes of data at the position, or as many as the buffer holds after a refill.
    std::string DataHere(u64 n) {
        if (ptr == end) {
            if (Has(IO::StreamMode::Modified))
                Flush();
            Underflow();
        }
        Require(1);
        return Bytes(std::min(n, static_cast<u64>(std::min(end, eos) - ptr)));
    }
    // Bytes without room are dropped.
    void Store(const std::string& bytes) {
        std::copy_n(bytes.begin(), InBuffer(bytes.size()), buffer.begin() + std::min(ptr, end));
        ptr += static_cast<i64>(bytes.size());
        eos = std::max(eos, ptr);
        flags = static_cast<unsigned short>(flags | IO::StreamMode::Modified);
    }

    std::vector<std::string> reports;
    eHookCalls calls;
};

// A stream on the core alone, over content that is truncated, written and read like a file.
class ePlainCore : public ePlainStream {
public:
    ePlainCore(std::string bytes, u64 capacity, unsigned short mode)
        : ePlainStream(capacity, bytes.size(), mode), content(std::move(bytes)) {
        Fill();
    }
    std::string Stored() const override { return content; }

protected:
    std::string Name() const override { return ""; }
    void RunTrunc() override {
        ePlainStream::RunTrunc();
        content.resize(Position());
    }
    void RunFlush() override {
        if (Has(IO::StreamMode::Write) && ptr > 0 && static_cast<i64>(offset) >= 0)
            Drain();
        ePlainStream::RunFlush();
    }
    void RunUnderflow() override {
        ePlainStream::RunUnderflow();
        Fill();
    }

    // Fills the buffer from the content, and the rest with zeros.
    void Fill() {
        std::fill(buffer.begin(), buffer.end(), static_cast<unsigned char>(0));
        if (offset < content.size())
            std::copy_n(content.begin() + static_cast<i64>(offset), std::min(content.size() - offset, bufferSize),
                        buffer.begin());
    }
    // Stores the bytes before the position in the content.
    void Drain() {
        const i64 held = std::min(ptr, end);
        content.resize(std::max(content.size(), static_cast<std::size_t>(offset) + static_cast<std::size_t>(held)));
        std::copy_n(buffer.begin(), held, content.begin() + static_cast<i64>(offset));
    }

    std::string content;
};

// An open file stream. Its Underflow flushes, too, and neither hook reads if no data remain; the buffer is filled even
// if the stream is opened only to write.
class ePlainFile : public ePlainCore {
public:
    ePlainFile(const std::string& file, const std::string& bytes, unsigned short mode)
        : ePlainCore(Cut(bytes, mode), Capacity(Cut(bytes, mode), mode), mode), name(file) {
        Underflow();
    }

    using ePlainStream::GetLine;
    // Returns a line without its line ends. A line that crosses the end of the buffer is moved to the buffer's start
    // and has to fit.
    std::string GetLine() {
        std::string line;
        for (bool complete = ptr >= eos; !complete;) {
            if (ptr + static_cast<i64>(line.size()) >= end)
                Underflow();
            Require(line.size() + 1);
            line = Bytes(line.size() + 1);
            complete = line.back() == '\n' || !Holds(line.size() + 1);
        }
        ptr += static_cast<i64>(line.size());
        std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
        return line;
    }

protected:
    std::string Name() const override { return "FileStream '" + name + "'"; }
    void RunTrunc() override {
        ePlainStream::RunTrunc();
        Flush();
        content.resize(Position());
    }
    void RunOverflow() override {
        ePlainStream::RunOverflow();
        if (!Has(IO::StreamMode::Read))
            FillIfDataRemain();
    }
    void RunUnderflow() override {
        if (Has(IO::StreamMode::Modified))
            Flush();
        ePlainStream::RunUnderflow();
        FillIfDataRemain();
    }

private:
    static std::string Cut(const std::string& bytes, unsigned short mode) {
        constexpr unsigned short kCuts = IO::StreamMode::Write | IO::StreamMode::Create;
        return (mode & kCuts) == kCuts ? "" : bytes;
    }
    static u64 Capacity(const std::string& bytes, unsigned short mode) {
        return (mode & IO::StreamMode::Write) != 0 ? 32768 : std::min<u64>(bytes.size(), 32768);
    }
    void FillIfDataRemain() {
        if (eos > 0)
            Fill();
    }

    std::string name;
};

class ePlainMemory : public ePlainStream {
public:
    ePlainMemory(u64 size, u64 growth)
        : ePlainStream(size, 0, IO::StreamMode::Write | IO::StreamMode::Errors), growBy(growth) {}

    std::string Stored() const override { return {buffer.begin(), buffer.begin() + std::min(eos, end)}; }

    void ResizeBuffer(u64 size, bool extend) {
        if (size > bufferSize)
            Grow(size);
        if (extend)
            eos = std::max(eos, static_cast<i64>(size));
    }
    bool ShiftLeft(u64 n) {
        const u64 total = Size();
        if (n > total)
            return false;
        if (total > bufferSize)
            throw eNoBytes{};
        std::copy(buffer.begin() + static_cast<i64>(n), buffer.begin() + static_cast<i64>(total), buffer.begin());
        Seek(total - n, IO::eSeekDir::Begin);
        Trunc();
        return true;
    }

protected:
    std::string Name() const override { return "MemoryStream"; }
    void RunFlush() override {
        ePlainStream::RunFlush();
        eos = std::max(eos, ptr);
    }
    // Grows by one step.
    void RunOverflow() override { Grow(bufferSize + (growBy > 0 ? growBy : bufferSize)); }
    // There is nothing to refill from.
    void RunUnderflow() override { CheckReadLocation(); }

private:
    // Keeps the data and appends zeros.
    void Grow(u64 size) {
        buffer.resize(static_cast<std::size_t>(std::clamp(eos, i64{0}, end)));
        buffer.resize(size, 0);
        bufferSize = size;
        end = static_cast<i64>(size);
    }

    u64 growBy;
};

class ePlainView : public ePlainStream {
public:
    ePlainView(const std::string& bytes, u64 used)
        : ePlainStream(bytes.size(), used > 0 ? used : bytes.size(), IO::StreamMode::Write | IO::StreamMode::Errors) {
        std::copy(bytes.begin(), bytes.end(), buffer.begin());
    }

    std::string Stored() const override { return {buffer.begin(), buffer.end()}; }

protected:
    std::string Name() const override { return "BufferStream"; }
    void RunFlush() override {
        ePlainStream::RunFlush();
        eos = std::max(eos, ptr);
    }
    void RunOverflow() override { Fail("Attempt to write beyond the stream!"); }
    void RunUnderflow() override { Fail("Attempt to read beyond the stream!"); }
};
