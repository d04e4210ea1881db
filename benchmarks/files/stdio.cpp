// SPDX-License-Identifier: BSL-1.0
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "work.h"

namespace bench {
namespace {

using eFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

eFile Open(const std::string& name, const char* mode) {
    eFile file(std::fopen(name.c_str(), mode), std::fclose);
    if (!file)
        throw std::runtime_error("cannot open " + name);
    return file;
}

std::uint64_t ReadPieces(const std::string& name) {
    const eFile file = Open(name, "rb");
    std::array<unsigned char, kPieceSize> piece;
    eChecksum sum;
    while (std::fread(piece.data(), 1, kPieceSize, file.get()) == kPieceSize)
        AddPiece(sum, piece.data());
    return sum.Value();
}

size_t WritePieces(const std::string& name, size_t pieces) {
    const eFile file = Open(name, "wb");
    size_t written = 0;
    for (size_t i = 0; i < pieces; ++i)
        written += std::fwrite(Pieces()[i % 8].data(), 1, kPieceSize, file.get());
    return written;
}

size_t Copy(const std::string& from, const std::string& to) {
    const eFile source = Open(from, "rb");
    const eFile target = Open(to, "wb");
    const auto block = std::make_unique_for_overwrite<char[]>(kBlockSize);
    size_t copied = 0;
    while (const size_t got = std::fread(block.get(), 1, kBlockSize, source.get()))
        copied += std::fwrite(block.get(), 1, got, target.get());
    return copied;
}

const eContender contender(1, [](eSuite& suite) {
    const eOptions& options = suite.Options();
    if (!WantsBulk(suite))
        return;
    const size_t pieces = BulkPieces(options);
    const std::string bulk = BulkFile(options);
    const std::string copy = BulkTarget();
    suite.Add(BulkReadWork(options), static_cast<double>(pieces),
              {"C stdio fread", eKind::Peer, 0.85, pieces * kPieceSize, {}, [=] { return ReadPieces(bulk); }, {}});
    suite.Add(BulkWriteWork(options), static_cast<double>(pieces),
              {"C stdio fwrite",
               eKind::Peer,
               0.85,
               pieces * kPieceSize,
               {},
               [=] { return WritePieces(copy, pieces); },
               [=] {
                   WritePieces(copy, pieces);
                   return SumOfFile(copy);
               }});
    suite.Add(CopyWork(options), static_cast<double>(pieces),
              {"C stdio, 32 KiB at a time",
               eKind::Peer,
               0.95,
               pieces * kPieceSize,
               {},
               [=] { return Copy(bulk, copy); },
               [=] {
                   Copy(bulk, copy);
                   return SumOfFile(copy);
               }});
});

} // namespace
} // namespace bench
