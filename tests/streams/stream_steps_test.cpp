#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <qzl_io/streams.h>

#include "support/content.h"
#include "support/long_tests.h"
#include "support/reports.h"

// The core beside a model that takes its steps one by one, without any shorter way: a class derived from the core sees
// the same calls of its hooks, in the same order and at the same positions.

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

namespace {

using eBytes = std::vector<unsigned char>;
using u64 = unsigned long long;

// What stands below a stream, and the calls that have reached it.
struct eStore {
    eBytes bytes;
    std::string calls;

    void Note(char hook, u64 position) { calls += hook + std::to_string(position) + " "; }
    void Fill(eBytes& block, u64 offset) const {
        for (u64 i = 0; i < block.size(); ++i)
            block[i] = offset + i < bytes.size() ? bytes[offset + i] : 0;
    }
    void Take(const eBytes& block, u64 n, u64 offset) {
        bytes.resize(std::max<u64>(bytes.size(), offset + n));
        std::copy_n(block.begin(), n, bytes.begin() + static_cast<long>(offset));
    }
};

class eStepped : public IO::eStream {
public:
    eStepped(eStore& below, u64 capacity, unsigned short mode) : store(below), block(capacity) {
        UseBuffer(block.data(), capacity, below.bytes.size());
        flags = mode;
        store.Fill(block, 0);
    }

    void Flush() override {
        store.Note('F', Position());
        store.Take(block, static_cast<u64>(ptr - buffer), offset);
        eStream::Flush();
    }
    void Overflow() override {
        store.Note('O', Position());
        eStream::Overflow();
    }
    void Underflow() override {
        store.Note('U', Position());
        eStream::Underflow();
        store.Fill(block, offset);
    }
    IO::eStream& Skip(u64 n) override {
        store.Note('S', Position());
        return eStream::Skip(n);
    }

    unsigned short Flags() const { return flags; }
    using eStream::Dump;

private:
    eStore& store;
    eBytes block;
};

class eModel {
public:
    eModel(eStore& below, u64 capacity, unsigned short mode)
        : store(below), block(capacity), eos(static_cast<long long>(below.bytes.size())), flags(mode) {
        store.Fill(block, 0);
    }

    void Put(u64 bits, u64 n) {
        Reach(n);
        std::memcpy(&block[static_cast<u64>(ptr)], &bits, n);
        Wrote(n);
    }
    u64 Peek(u64 n) {
        Reach(n);
        u64 bits = 0;
        std::memcpy(&bits, &block[static_cast<u64>(ptr)], n);
        return bits;
    }
    u64 Get(u64 n) {
        const u64 bits = Peek(n);
        ptr += static_cast<long long>(n);
        return bits;
    }
    void Write(const std::string& text) {
        for (std::size_t at = 0; at < text.size();) {
            if (ptr == Capacity())
                Overflow();
            const u64 run = std::min<u64>(text.size() - at, static_cast<u64>(Capacity() - ptr));
            std::copy_n(text.begin() + static_cast<long>(at), run, block.begin() + ptr);
            Wrote(run);
            at += run;
        }
    }
    std::string Read(u64 n) {
        std::string read;
        while (ptr < eos && read.size() < n) {
            if (ptr == Capacity())
                Refill();
            const u64 run = std::min(n - read.size(), static_cast<u64>(std::min(Capacity(), eos) - ptr));
            read.append(block.begin() + ptr, block.begin() + ptr + static_cast<long>(run));
            ptr += static_cast<long long>(run);
        }
        if (read.size() < n)
            flags |= Mode::Bad;
        read.resize(n);
        return read;
    }
    std::string GetLine(char delimiter) {
        std::string line;
        while (!Eos()) {
            const auto next = static_cast<char>(Get(1));
            if (next == delimiter)
                break;
            line += next;
        }
        return line;
    }
    std::string GetText() { return Read(Get(1)); }
    void PutText(const std::string& text) {
        Put(text.size(), 1);
        Write(text);
    }
    std::string Copy(u64 n) {
        if (n == 0)
            n = static_cast<u64>(std::max(eos - ptr, 0ll));
        std::string copied;
        while (n > 0 && ptr < eos) {
            if (ptr == Capacity())
                Refill();
            const u64 chunk = std::min(n, static_cast<u64>(std::min(Capacity(), eos) - ptr));
            copied.append(block.begin() + ptr, block.begin() + ptr + static_cast<long>(chunk));
            Skip(chunk);
            n -= chunk;
        }
        return copied;
    }
    void Skip(u64 n) {
        store.Note('S', Position());
        FlushBeforeMove();
        ptr += static_cast<long long>(n);
        FinishMove();
    }
    void Seek(u64 position, eSeekDir dir) {
        FlushBeforeMove();
        const auto distance = static_cast<long long>(position);
        ptr = dir == eSeekDir::Begin ? distance - offset : dir == eSeekDir::End ? eos - distance : ptr + distance;
        FinishMove();
    }
    void Trunc() { eos = ptr; }
    void Flush() {
        store.Note('F', Position());
        store.Take(block, static_cast<u64>(ptr), static_cast<u64>(offset));
        flags &= static_cast<unsigned short>(~Mode::Modified);
    }

    u64 Position() const { return static_cast<u64>(offset + ptr); }
    u64 Size() const { return static_cast<u64>(offset + eos); }
    bool Eos() const { return ptr >= eos || (flags & (Mode::Bad | Mode::Failed)) != 0; }
    unsigned short Flags() const { return flags; }
    std::string Dump() const {
        const auto text = [](long long number) { return std::to_string(number); };
        return "(off:" + text(offset) + ", ptr:" + text(ptr) + ", end:" + text(Capacity()) + ", eos:" + text(eos) +
               ", buff:" + text(Capacity()) + ")";
    }

private:
    long long Capacity() const { return static_cast<long long>(block.size()); }
    void Reach(u64 n) {
        if (ptr + static_cast<long long>(n) >= Capacity())
            Overflow();
    }
    void Wrote(u64 n) {
        flags |= Mode::Modified;
        ptr += static_cast<long long>(n);
        eos = std::max(eos, ptr);
    }
    void PlaceBuffer() {
        if (ptr > 0 && ptr < Capacity())
            std::copy(block.begin() + ptr, block.end(), block.begin());
        offset += ptr;
        eos -= ptr;
        ptr = 0;
    }
    void Overflow() {
        store.Note('O', Position());
        if (flags & Mode::Modified)
            Flush();
        if (flags & Mode::Read)
            Underflow();
        else
            PlaceBuffer();
    }
    void Underflow() {
        store.Note('U', Position());
        PlaceBuffer();
        if (eos < 0)
            flags |= Mode::Bad;
        store.Fill(block, static_cast<u64>(offset));
    }
    // Nothing written is dropped by a refill.
    void Refill() {
        if (flags & Mode::Modified)
            Flush();
        Underflow();
    }
    void FlushBeforeMove() {
        if (ptr != 0 && (flags & (Mode::Write | Mode::Modified)) != 0)
            Flush();
    }
    void FinishMove() {
        if (ptr > eos)
            flags |= Mode::Bad;
        if (ptr < 0 || ptr > Capacity())
            Overflow();
    }

    eStore& store;
    eBytes block;
    long long ptr = 0;
    long long eos;
    long long offset = 0;
    unsigned short flags;
};

class eBoth {
public:
    eBoth(unsigned seed, u64 capacity, unsigned short mode) : random(seed) {
        for (eStore* store : {&below, &modelled})
            store->bytes = eBytes(seed % 50, static_cast<unsigned char>('a' + seed % 26));
        stream = std::make_unique<eStepped>(below, capacity, mode);
        model = std::make_unique<eModel>(modelled, capacity, mode);
    }

    void Step() {
        const u64 n = Upto(40);
        const u64 width = u64{1} << Upto(3);
        const u64 remaining = model->Size() - std::min(model->Size(), model->Position());
        switch (Upto(11)) {
        case 0:
            return Write(std::string(n, static_cast<char>('a' + n % 26)));
        case 1:
            return Read(n);
        case 2:
            return Seek(Upto(model->Size() + Upto(1)), eSeekDir::Begin);
        case 3:
            return Seek(Upto(model->Size()), eSeekDir::End);
        case 4:
            return Seek(Upto(model->Size()) - model->Position(), eSeekDir::Current);
        case 5:
            return Put(random(), width);
        case 6:
            return width <= remaining ? Get(width) : Put(n, width);
        case 7:
            return Skip(Upto(model->Size()) - model->Position());
        case 8:
            return Line();
        case 9:
            return Text(std::string(n, 't'));
        case 10:
            return Copy(n);
        default:
            if (n == 0) {
                stream->Trunc();
                model->Trunc();
            }
        }
    }

    void Compare() const {
        ASSERT_EQ(below.calls, modelled.calls);
        ASSERT_EQ(stream->Dump(), model->Dump());
        ASSERT_EQ(stream->Flags(), model->Flags());
        ASSERT_EQ(stream->Eos(), model->Eos());
        ASSERT_TRUE(below.bytes == modelled.bytes);
    }

private:
    u64 Upto(u64 n) { return std::uniform_int_distribution<u64>(0, n)(random); }

    void Write(const std::string& text) {
        stream->Write(text.data(), text.size());
        model->Write(text);
    }
    void Read(u64 n) {
        std::string read(n, '\0');
        stream->Read(read.data(), n);
        EXPECT_EQ(read, model->Read(n));
    }
    void Seek(u64 position, eSeekDir dir) {
        stream->Seek(position, dir);
        model->Seek(position, dir);
    }
    void Skip(u64 n) {
        stream->Skip(n);
        model->Skip(n);
    }
    void Put(u64 bits, u64 width) {
        switch (width) {
        case 1:
            *stream << static_cast<unsigned char>(bits);
            break;
        case 2:
            *stream << static_cast<unsigned short>(bits);
            break;
        case 4:
            *stream << static_cast<unsigned int>(bits);
            break;
        default:
            *stream << bits;
        }
        model->Put(bits, width);
    }
    void Get(u64 width) {
        const u64 peeked = width == 1   ? stream->Uint8()
                           : width == 2 ? stream->Uint16()
                           : width == 4 ? stream->Uint32()
                                        : stream->Uint64();
        EXPECT_EQ(peeked, model->Peek(width));
        const u64 got = width == 1   ? stream->GetUint8()
                        : width == 2 ? stream->GetUint16()
                        : width == 4 ? stream->GetUint32()
                                     : stream->GetUint64();
        EXPECT_EQ(got, model->Get(width));
    }
    void Line() {
        const auto delimiter = static_cast<char>('a' + Upto(25));
        EXPECT_EQ(stream->GetLine(delimiter), model->GetLine(delimiter));
    }
    void Text(const std::string& text) {
        const u64 position = model->Position();
        *stream << text;
        model->PutText(text);
        Seek(position, eSeekDir::Begin);
        EXPECT_EQ(stream->GetString(), model->GetText());
    }
    void Copy(u64 n) {
        IO::eMemoryStream target;
        stream->CopyTo(target, n);
        EXPECT_EQ(Content(target), model->Copy(n));
    }

    std::mt19937 random;
    eStore below, modelled;
    std::unique_ptr<eStepped> stream;
    std::unique_ptr<eModel> model;
};

} // namespace

TEST(StreamSteps, ADerivedClassSeesEachCallOfItsHooks) {
    const eReports reports;
    const unsigned short modes[] = {Mode::Read, Mode::Write, Mode::Read | Mode::Write, 0};
    for (unsigned round = 0; round < (LongTests() ? 20000u : 1000u); ++round) {
        eBoth both(round, 8 + round % 23, modes[round % 4]);
        for (int step = 0; step < 60; ++step) {
            both.Step();
            ASSERT_NO_FATAL_FAILURE(both.Compare()) << round << ", " << step;
            ASSERT_FALSE(testing::Test::HasFailure()) << round << ", " << step;
        }
    }
}
