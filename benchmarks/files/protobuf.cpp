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

size_t PutAll(const std::string& file, const eSets& sets) {
    eRawOutput raw(file);
    proto::CopyingOutputStreamAdaptor adaptor(&raw, static_cast<int>(kBlockSize));
    proto::CodedOutputStream out(&adaptor);
    PutCoded(out, sets);
    return static_cast<size_t>(out.ByteCount());
}

std::uint64_t GetAll(const std::string& file, const eSets& sets) {
    eRawInput raw(file);
    proto::CopyingInputStreamAdaptor adaptor(&raw, static_cast<int>(kBlockSize));
    proto::CodedInputStream in(&adaptor);
    return GetCoded(in, sets);
}

const eContender contender(1, [](eSuite& suite) {
    for (const eSets& sets : TypedSets(suite)) {
        const std::string out = WorkFile("protobuf_typed.bin");
        suite.Add(TypedOutWork(sets), sets.Values(),
                  {"protobuf CodedOutputStream, 32 KiB over a file",
                   eKind::Peer,
                   0.9,
                   sets.Bytes(),
                   {},
                   [=] { return PutAll(out, sets); },
                   [=] {
                       PutAll(out, sets);
                       return SumOfBytes(ReadWhole(out));
                   }});
        const std::string in = TypedFile(sets);
        suite.Add(TypedInWork(sets), sets.Values(),
                  {"protobuf CodedInputStream, 32 KiB over a file",
                   eKind::Peer,
                   1.0,
                   sets.Bytes(),
                   {},
                   [=] { return GetAll(in, sets); },
                   {}});
    }
});

} // namespace
} // namespace bench
