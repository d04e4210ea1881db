// SPDX-License-Identifier: BSL-1.0
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <cstdint>
#include <memory>
#include <string>

#include "../support/coded_values.h"

namespace bench {
namespace {

namespace proto = google::protobuf::io;

size_t PutAll(std::string& room, const eSets& sets) {
    proto::ArrayOutputStream array(room.data(), static_cast<int>(room.size()));
    proto::CodedOutputStream out(&array);
    PutCoded(out, sets);
    return static_cast<size_t>(out.ByteCount());
}

std::uint64_t GetAll(const std::string& bytes, const eSets& sets) {
    proto::CodedInputStream in(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<int>(bytes.size()));
    return GetCoded(in, sets);
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const eSets sets = Sets(kilobytes);
        const size_t size = sets.Bytes();
        const double values = sets.Values();
        const auto room = std::make_shared<std::string>(size, '\0');
        suite.Add(RoomWork(kilobytes), values,
                  {"protobuf CodedOutputStream on an array",
                   eKind::Peer,
                   1.0,
                   size,
                   {},
                   [room, sets] { return PutAll(*room, sets); },
                   [room, sets] {
                       PutAll(*room, sets);
                       return SumOfBytes(*room);
                   }});
        const auto bytes = std::make_shared<const std::string>(EncodedSets(sets));
        suite.Add(ReadingWork(kilobytes), values,
                  {"protobuf CodedInputStream on an array",
                   eKind::Peer,
                   1.0,
                   size,
                   {},
                   [bytes, sets] { return GetAll(*bytes, sets); },
                   {}});
    }
});

} // namespace
} // namespace bench
