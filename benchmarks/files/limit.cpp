// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "../platform/raw_file.h"
#include "../support/by_hand.h"
#include "work.h"

namespace bench {
namespace {

using platform::eRawFile;

// A buffer of 32 KiB in front of a file that is written.
class eWrittenBlock {
public:
    explicit eWrittenBlock(const std::string& name) : file(name.c_str(), eRawFile::Writing) {}
    unsigned char* Begin() { return block.data(); }
    unsigned char* End() { return block.data() + block.size(); }
    [[gnu::noinline]] unsigned char* Grow(unsigned char* next, size_t) {
        file.Write(block.data(), static_cast<size_t>(next - block.data()));
        return block.data();
    }

private:
    eRawFile file;
    std::array<unsigned char, kBlockSize> block;
};

// A buffer of 32 KiB in front of a file that is read.
class eReadBlock {
public:
    explicit eReadBlock(const std::string& name) : file(name.c_str(), eRawFile::Reading) {}
    const unsigned char* Begin() const { return block.data(); }
    const unsigned char* End() const { return block.data() + held; }
    [[gnu::noinline]] const unsigned char* Refill(const unsigned char* next) {
        const size_t rest = static_cast<size_t>(End() - next);
        std::memmove(block.data(), next, rest);
        held = rest + file.Read(block.data() + rest, block.size() - rest);
        return block.data();
    }

private:
    eRawFile file;
    std::array<unsigned char, kBlockSize> block;
    size_t held = 0;
};

size_t PutAll(const std::string& name, const eSets& sets) {
    eWrittenBlock block(name);
    block.Grow(PutByHand(block, sets), 0);
    return sets.count;
}

std::uint64_t GetAll(const std::string& name, const eSets& sets) {
    eReadBlock block(name);
    return GetByHand(block, sets);
}

// Collects pieces in 32 KiB and writes these when they are full.
size_t WritePieces(const std::string& name, size_t pieces) {
    const eRawFile file(name.c_str(), eRawFile::Writing);
    std::array<unsigned char, kBlockSize> block;
    size_t used = 0;
    for (size_t i = 0; i < pieces; ++i) {
        std::memcpy(block.data() + used, Pieces()[i % 8].data(), kPieceSize);
        used += kPieceSize;
        if (used == kBlockSize)
            file.Write(block.data(), std::exchange(used, 0));
    }
    file.Write(block.data(), used);
    return pieces;
}

// Reads 32 KiB at once and copies pieces out of them.
std::uint64_t ReadPieces(const std::string& name) {
    const eRawFile file(name.c_str(), eRawFile::Reading);
    std::array<unsigned char, kBlockSize> block;
    std::array<unsigned char, kPieceSize> piece;
    eChecksum sum;
    while (const size_t got = file.Read(block.data(), kBlockSize))
        for (size_t at = 0; at < got; at += kPieceSize) {
            std::memcpy(piece.data(), block.data() + at, kPieceSize);
            benchmark::DoNotOptimize(piece); // a compiler that sees how little of the piece is used copies no more
            AddPiece(sum, piece.data());
        }
    return sum.Value();
}

// Writes the bytes of WritePieces in whole blocks.
size_t WriteBlocks(const std::string& name, size_t pieces) {
    const eRawFile file(name.c_str(), eRawFile::Writing);
    std::array<unsigned char, kBlockSize> block;
    for (size_t i = 0; i < 8; ++i)
        std::memcpy(block.data() + i * kPieceSize, Pieces()[i].data(), kPieceSize);
    for (size_t left = pieces * kPieceSize; left > 0; left -= std::min(left, kBlockSize))
        file.Write(block.data(), std::min(left, kBlockSize));
    return pieces;
}

std::uint64_t ReadBlocks(const std::string& name) {
    const eRawFile file(name.c_str(), eRawFile::Reading);
    std::array<unsigned char, kBlockSize> block;
    eChecksum sum;
    while (const size_t got = file.Read(block.data(), kBlockSize))
        for (size_t at = 0; at < got; at += kPieceSize)
            AddPiece(sum, block.data() + at);
    return sum.Value();
}

size_t Copy(const std::string& from, const std::string& to) {
    const eRawFile source(from.c_str(), eRawFile::Reading);
    const eRawFile target(to.c_str(), eRawFile::Writing);
    std::array<unsigned char, kBlockSize> block;
    size_t copied = 0;
    while (const size_t got = source.Read(block.data(), kBlockSize)) {
        target.Write(block.data(), got);
        copied += got;
    }
    return copied;
}

void AddTyped(eSuite& suite, const eSets& sets) {
    const std::string out = WorkFile("limit_typed.bin");
    suite.Add(TypedOutWork(sets), sets.Values(),
              {"memcpy into 32 KiB and raw calls",
               eKind::Limit,
               1.15,
               sets.Bytes(),
               {},
               [=] { return PutAll(out, sets); },
               [=] {
                   PutAll(out, sets);
                   return SumOfBytes(ReadWhole(out));
               }});
    const std::string in = TypedFile(sets);
    suite.Add(TypedInWork(sets), sets.Values(),
              {"memcpy from 32 KiB and raw calls",
               eKind::Limit,
               1.15,
               sets.Bytes(),
               {},
               [=] { return GetAll(in, sets); },
               {}});
}

const eContender contender(2, [](eSuite& suite) {
    const eOptions& options = suite.Options();
    for (const eSets& sets : TypedSets(suite))
        AddTyped(suite, sets);
    if (!WantsBulk(suite))
        return;
    const size_t pieces = BulkPieces(options);
    const size_t bytes = pieces * kPieceSize;
    const auto count = static_cast<double>(pieces);
    const std::string bulk = BulkFile(options);
    const std::string copy = BulkTarget();
    suite.Add(BulkReadWork(options), count,
              {"raw calls with 32 KiB, pieces copied out",
               eKind::Limit,
               1.05,
               bytes,
               {},
               [=] { return ReadPieces(bulk); },
               {}});
    suite.Add(BulkReadWork(options), count,
              {"raw calls with 32 KiB, no pieces", eKind::Note, 0, bytes, {}, [=] { return ReadBlocks(bulk); }, {}});
    suite.Add(BulkWriteWork(options), count,
              {"pieces copied into 32 KiB, raw calls",
               eKind::Limit,
               1.05,
               bytes,
               {},
               [=] { return WritePieces(copy, pieces); },
               [=] {
                   WritePieces(copy, pieces);
                   return SumOfFile(copy);
               }});
    suite.Add(BulkWriteWork(options), count,
              {"raw calls with 32 KiB, no pieces",
               eKind::Note,
               0,
               bytes,
               {},
               [=] { return WriteBlocks(copy, pieces); },
               [=] {
                   WriteBlocks(copy, pieces);
                   return SumOfFile(copy);
               }});
    suite.Add(CopyWork(options), count,
              {"read and write of 32 KiB",
               eKind::Limit,
               1.05,
               bytes,
               {},
               [=] { return Copy(bulk, copy); },
               [=] {
                   Copy(bulk, copy);
                   return SumOfFile(copy);
               }});
});

} // namespace
} // namespace bench
