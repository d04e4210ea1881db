// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "../support/stream_values.h"
#include "work.h"

namespace bench {
namespace {

constexpr int kToRead = IO::StreamMode::Read;
constexpr int kToWrite = IO::StreamMode::Write | IO::StreamMode::Create | IO::StreamMode::Errors;

std::unique_ptr<IO::eStream> Open(const std::string& file, int mode) {
    return std::unique_ptr<IO::eStream>(IO::GetStream(eFileName(file), mode));
}

std::uint64_t ReadPieces(const std::string& file) {
    const auto stream = Open(file, kToRead);
    std::array<unsigned char, kPieceSize> piece;
    eChecksum sum;
    while (!stream->Eos()) {
        stream->Read(piece.data(), kPieceSize);
        AddPiece(sum, piece.data());
    }
    return sum.Value();
}

size_t WritePieces(const std::string& file, size_t pieces) {
    const auto stream = Open(file, kToWrite);
    for (size_t i = 0; i < pieces; ++i)
        stream->Write(Pieces()[i % 8].data(), kPieceSize);
    return pieces;
}

size_t Copy(const std::string& from, const std::string& to) {
    const auto source = Open(from, kToRead);
    const auto target = Open(to, kToWrite);
    source->CopyTo(*target, 0);
    return source->Size();
}

size_t PutAll(const std::string& file, const eSets& sets) {
    const auto stream = Open(file, kToWrite);
    PutOnStream(*stream, sets);
    return stream->Position();
}

std::uint64_t GetAll(const std::string& file, const eSets& sets) {
    const auto stream = Open(file, kToRead);
    return GetFromStream(*stream, sets);
}

const eContender contender(0, [](eSuite& suite) {
    const eOptions& options = suite.Options();
    for (const eSets& sets : TypedSets(suite)) {
        const std::string out = WorkFile("ours_typed.bin");
        suite.Add(TypedOutWork(sets), sets.Values(),
                  {"eFileStream <<",
                   eKind::Ours,
                   0,
                   sets.Bytes(),
                   {},
                   [=] { return PutAll(out, sets); },
                   [=] {
                       PutAll(out, sets);
                       return SumOfBytes(ReadWhole(out));
                   }});
        const std::string in = TypedFile(sets);
        suite.Add(TypedInWork(sets), sets.Values(),
                  {"eFileStream >>", eKind::Ours, 0, sets.Bytes(), {}, [=] { return GetAll(in, sets); }, {}});
    }
    if (!WantsBulk(suite))
        return;
    const size_t pieces = BulkPieces(options);
    const std::string bulk = BulkFile(options);
    const std::string copy = BulkTarget();
    suite.Add(BulkReadWork(options), static_cast<double>(pieces),
              {"eFileStream::Read", eKind::Ours, 0, pieces * kPieceSize, {}, [=] { return ReadPieces(bulk); }, {}},
              "piece");
    suite.Add(BulkWriteWork(options), static_cast<double>(pieces),
              {"eFileStream::Write",
               eKind::Ours,
               0,
               pieces * kPieceSize,
               {},
               [=] { return WritePieces(copy, pieces); },
               [=] {
                   WritePieces(copy, pieces);
                   return SumOfFile(copy);
               }},
              "piece");
    suite.Add(CopyWork(options), static_cast<double>(pieces),
              {"eFileStream::CopyTo",
               eKind::Ours,
               0,
               pieces * kPieceSize,
               {},
               [=] { return Copy(bulk, copy); },
               [=] {
                   Copy(bulk, copy);
                   return SumOfFile(copy);
               }},
              "piece");
});

} // namespace
} // namespace bench
