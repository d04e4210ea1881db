// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams.h>

#include <cstdint>
#include <memory>

#include "../support/stream_values.h"

namespace bench {
namespace {

std::uint64_t SumOf(const IO::eStream& stream) {
    return SumOfBytes({reinterpret_cast<const char*>(stream.Buffer()), stream.Size()});
}

size_t PutAgain(IO::eMemoryStream& stream, const eSets& sets) {
    stream.Clear();
    PutOnStream(stream, sets);
    return stream.Size();
}

const eContender contender(0, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const eSets sets = Sets(kilobytes);
        const size_t size = sets.Bytes();
        const double values = sets.Values();
        const auto room = std::make_shared<IO::eMemoryStream>(size + 64, 0);
        suite.Add(RoomWork(kilobytes), values,
                  {"eMemoryStream <<",
                   eKind::Ours,
                   0,
                   size,
                   {},
                   [room, sets] { return PutAgain(*room, sets); },
                   [room] { return SumOf(*room); }});
        suite.Add(GrowingWork(kilobytes), values,
                  {"eMemoryStream <<, from 256 bytes",
                   eKind::Ours,
                   0,
                   size,
                   {},
                   [sets] {
                       IO::eMemoryStream growing;
                       PutOnStream(growing, sets);
                       return growing.Size();
                   },
                   [sets] {
                       IO::eMemoryStream growing;
                       PutOnStream(growing, sets);
                       return SumOf(growing);
                   }});
        const auto filled = std::make_shared<IO::eMemoryStream>(size + 64, 0);
        PutOnStream(*filled, sets);
        suite.Add(ReadingWork(kilobytes), values,
                  {"eMemoryStream >>",
                   eKind::Ours,
                   0,
                   size,
                   {},
                   [filled, sets] {
                       filled->Reset();
                       return GetFromStream(*filled, sets);
                   },
                   {}});
    }
});

} // namespace
} // namespace bench
