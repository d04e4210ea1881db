// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>

#include <qzl_io/streams.h>

#include "../typed_values/values.h"

namespace bench {

// Writes the sets through the operators of any stream.
inline void PutOnStream(IO::eStream& out, const eSets& sets) {
    PutSets(sets, [&](const eTypedValues& set) {
        out << set.integer << set.byte << set.real << set.precise << set.large << set.name;
    });
}

inline std::uint64_t GetFromStream(IO::eStream& in, const eSets& sets) {
    return GetSets(sets, [&](eTypedValues& set) {
        in >> set.integer >> set.byte >> set.real >> set.precise >> set.large >> set.name;
    });
}

} // namespace bench
