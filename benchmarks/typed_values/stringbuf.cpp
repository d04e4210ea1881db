// SPDX-License-Identifier: BSL-1.0
#include <sstream>

#include "values.h"

namespace bench {
namespace {

template <class T>
void Put(std::stringbuf& out, const T& value) {
    out.sputn(reinterpret_cast<const char*>(&value), sizeof value);
}

void PutAll(std::stringbuf& out, const eSets& sets) {
    PutSets(sets, [&](const eTypedValues& set) {
        Put(out, set.integer);
        Put(out, set.byte);
        Put(out, set.real);
        Put(out, set.precise);
        Put(out, set.large);
        Put(out, static_cast<unsigned char>(set.name.size()));
        out.sputn(set.name.data(), static_cast<std::streamsize>(set.name.size()));
    });
}

const eContender contender(1, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const eSets sets = Sets(kilobytes);
        suite.Add(GrowingWork(kilobytes), sets.Values(),
                  {"std::stringbuf::sputn",
                   eKind::Peer,
                   0.8,
                   sets.Bytes(),
                   {},
                   [sets] {
                       std::stringbuf out;
                       PutAll(out, sets);
                       return out.view().size();
                   },
                   [sets] {
                       std::stringbuf out;
                       PutAll(out, sets);
                       return SumOfBytes(out.view());
                   }});
    }
});

} // namespace
} // namespace bench
