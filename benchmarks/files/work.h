// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "../support/suite.h"
#include "../support/work_folder.h"
#include "../typed_values/values.h"

namespace bench {

inline constexpr size_t kPieceSize = 4096;
inline constexpr size_t kBlockSize = 32768;

// The pieces that a bulk write writes in turn.
inline const std::array<std::vector<unsigned char>, 8>& Pieces() {
    static const auto made = [] {
        std::array<std::vector<unsigned char>, 8> pieces;
        unsigned state = 1;
        for (auto& piece : pieces)
            for (size_t i = 0; i < kPieceSize; ++i)
                piece.push_back(static_cast<unsigned char>((state = state * 1664525 + 1013904223) >> 24));
        return pieces;
    }();
    return made;
}

// Adds to the checksum a few bytes of a piece that was read.
inline void AddPiece(eChecksum& sum, const unsigned char* piece) {
    sum.Text({reinterpret_cast<const char*>(piece), 16});
}

// The number of megabytes that bulk works move.
inline unsigned BulkMegabytes(const eOptions& options) {
    return options.small ? 1 : options.full ? 1000 : 128;
}

inline size_t BulkPieces(const eOptions& options) {
    return size_t{BulkMegabytes(options)} * 1'000'000 / kPieceSize;
}

// The file that bulk reads and copies read.
inline std::string BulkFile(const eOptions& options) {
    static const std::string name = [&] {
        const std::string file = WorkFile("bulk.bin");
        std::string bytes;
        for (size_t i = 0; i < BulkPieces(options); ++i)
            bytes.append(reinterpret_cast<const char*>(Pieces()[i % 8].data()), kPieceSize);
        WriteWhole(file, bytes);
        return file;
    }();
    return name;
}

// The file that all bulk writes and copies write.
inline std::string BulkTarget() {
    return WorkFile("bulk_target.bin");
}

// The checksum that a bulk read of that file would give, to compare written and copied files.
inline std::uint64_t SumOfFile(const std::string& file) {
    const std::string bytes = ReadWhole(file);
    eChecksum sum;
    sum.Integer(static_cast<long long>(bytes.size()));
    for (size_t at = 0; at + 16 <= bytes.size(); at += 512)
        sum.Text(std::string_view(bytes).substr(at, 16));
    return sum.Value();
}

inline std::string Size(const eOptions& options) {
    return SizeName(BulkMegabytes(options) * 1000);
}
inline std::string BulkReadWork(const eOptions& options) {
    return "bulk Read of " + Size(options) + " in pieces of 4 KiB";
}
inline std::string BulkWriteWork(const eOptions& options) {
    return "bulk Write of " + Size(options) + " in pieces of 4 KiB";
}
inline std::string CopyWork(const eOptions& options) {
    return "CopyTo of " + Size(options) + " between files";
}

// The file of typed values that every contender reads.
inline std::string TypedFile(const eSets& sets) {
    static std::map<std::string, std::string> made;
    const auto [entry, isNew] = made.try_emplace(sets.name + std::to_string(sets.kilobytes));
    if (isNew) {
        entry->second = WorkFile("typed" + std::to_string(made.size()) + ".bin");
        WriteWhole(entry->second, EncodedSets(sets));
    }
    return entry->second;
}
inline std::string TypedOutWork(const eSets& sets) {
    return std::string(sets.name) + " to a file, " + SizeName(sets.kilobytes);
}
inline std::string TypedInWork(const eSets& sets) {
    return std::string(sets.name) + " from a file, " + SizeName(sets.kilobytes);
}

// The sets of both kinds that the suite wants written or read.
inline std::vector<eSets> TypedSets(const eSuite& suite) {
    std::vector<unsigned> sizes = suite.Options().kilobytes;
    if (suite.Options().full)
        sizes.push_back(1'000'000);
    std::vector<eSets> wanted;
    for (const auto make : {Sets, MixedSets})
        for (const unsigned kilobytes : sizes)
            if (const eSets sets = make(kilobytes); suite.Wants(TypedOutWork(sets)) || suite.Wants(TypedInWork(sets)))
                wanted.push_back(sets);
    return wanted;
}

inline bool WantsBulk(const eSuite& suite) {
    const eOptions& options = suite.Options();
    return suite.Wants(BulkReadWork(options)) || suite.Wants(BulkWriteWork(options)) || suite.Wants(CopyWork(options));
}

} // namespace bench
