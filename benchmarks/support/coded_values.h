// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <google/protobuf/io/coded_stream.h>

#include <bit>
#include <cstdint>

#include "../typed_values/values.h"

namespace bench {

// Writes the sets through protobuf's coded streams, as the bytes that all contenders write.
inline void PutCoded(google::protobuf::io::CodedOutputStream& out, const eSets& sets) {
    PutSets(sets, [&](const eTypedValues& set) {
        out.WriteLittleEndian32(static_cast<std::uint32_t>(set.integer));
        out.WriteRaw(&set.byte, 1);
        out.WriteLittleEndian32(std::bit_cast<std::uint32_t>(set.real));
        out.WriteLittleEndian64(std::bit_cast<std::uint64_t>(set.precise));
        out.WriteLittleEndian64(static_cast<std::uint64_t>(set.large));
        out.WriteVarint32(static_cast<std::uint32_t>(set.name.size()));
        out.WriteRaw(set.name.data(), static_cast<int>(set.name.size()));
    });
}

inline std::uint64_t GetCoded(google::protobuf::io::CodedInputStream& in, const eSets& sets) {
    return GetSets(sets, [&](eTypedValues& set) {
        std::uint32_t word = 0;
        std::uint64_t wide = 0;
        in.ReadLittleEndian32(&word);
        set.integer = static_cast<int>(word);
        in.ReadRaw(&set.byte, 1);
        in.ReadLittleEndian32(&word);
        set.real = std::bit_cast<float>(word);
        in.ReadLittleEndian64(&wide);
        set.precise = std::bit_cast<double>(wide);
        in.ReadLittleEndian64(&wide);
        set.large = static_cast<long long>(wide);
        in.ReadVarint32(&word);
        in.ReadString(&set.name, static_cast<int>(word));
    });
}

} // namespace bench
