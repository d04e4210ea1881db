// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <string>

#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include "../support/coded_values.h"
#include "raw_streams.h"
#include "work.h"

namespace bench {
namespace {

namespace proto = google::protobuf::io;

size_t PutAll(const std::string& file, size_t sets) {
    eRawOutput raw(file);
    proto::CopyingOutputStreamAdaptor adaptor(&raw, static_cast<int>(kBlockSize));
    proto::CodedOutputStream out(&adaptor);
    PutCoded(out, sets);
    return static_cast<size_t>(out.ByteCount());
}

std::uint64_t GetAll(const std::string& file, size_t sets) {
    eRawInput raw(file);
    proto::CopyingInputStreamAdaptor adaptor(&raw, static_cast<int>(kBlockSize));
    proto::CodedInputStream in(&adaptor);
    return GetCoded(in, sets);
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!WantsTyped(suite, kilobytes))
            continue;
        const size_t sets = Sets(kilobytes);
        const std::string out = WorkFile("protobuf_typed.bin");
        suite.Add(TypedOutWork(kilobytes), TypedCount(kilobytes),
                  {"protobuf CodedOutputStream, 32 KiB over a file",
                   eKind::Peer,
                   0.9,
                   TypedBytes(kilobytes),
                   {},
                   [=] { return PutAll(out, sets); },
                   [=] {
                       PutAll(out, sets);
                       return SumOfBytes(ReadWhole(out));
                   }});
        const std::string in = TypedFile(kilobytes);
        suite.Add(TypedInWork(kilobytes), TypedCount(kilobytes),
                  {"protobuf CodedInputStream, 32 KiB over a file",
                   eKind::Peer,
                   1.0,
                   TypedBytes(kilobytes),
                   {},
                   [=] { return GetAll(in, sets); },
                   {}});
    }
});

} // namespace
} // namespace bench
