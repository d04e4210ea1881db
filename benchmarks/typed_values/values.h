// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "../support/checksum.h"
#include "../support/documents.h"
#include "../support/suite.h"

namespace bench {

// One value of each kind, as applications write them to streams in turn.
struct eTypedValues {
    int integer;
    unsigned char byte;
    float real;
    double precise;
    long long large;
    std::string name; // 12 bytes
};

// Bytes of one set of values on a stream; the string's length takes one.
inline constexpr size_t kBytesOfSet = 4 + 1 + 4 + 8 + 8 + 1 + 12;
inline constexpr double kValuesInSet = 6;

// The sets that are written in turn, again and again.
inline const std::array<eTypedValues, 256>& TypedValues() {
    static const auto made = [] {
        std::array<eTypedValues, 256> values;
        for (size_t i = 0; i < values.size(); ++i) {
            const int number = static_cast<int>(i * 2654435761u);
            const std::string digits = std::to_string(100'000 + i);
            values[i] = {number,
                         static_cast<unsigned char>(i),
                         static_cast<float>(i) / 7,
                         static_cast<double>(number) / 3,
                         number * 1'000'003LL,
                         "object" + digits.substr(digits.size() - 6)};
        }
        return values;
    }();
    return made;
}

// The number of sets in about that many thousand bytes.
inline size_t Sets(unsigned kilobytes) {
    return size_t{kilobytes} * 1000 / kBytesOfSet;
}

// The bytes that every contender has to write and to read.
inline std::string EncodedSets(size_t sets) {
    std::string bytes;
    bytes.reserve(sets * kBytesOfSet);
    const auto add = [&](const auto& value) { bytes.append(reinterpret_cast<const char*>(&value), sizeof value); };
    for (size_t i = 0; i < sets; ++i) {
        const eTypedValues& set = TypedValues()[i % TypedValues().size()];
        add(set.integer);
        add(set.byte);
        add(set.real);
        add(set.precise);
        add(set.large);
        add(static_cast<unsigned char>(set.name.size()));
        bytes += set.name;
    }
    return bytes;
}

// A checksum of all the bytes.
inline std::uint64_t SumOfBytes(std::string_view bytes) {
    eChecksum sum;
    for (size_t at = 0; at < bytes.size(); at += 16)
        sum.Text(bytes.substr(at, 16));
    return sum.Value();
}

// Passes the sets to `put`, one after the other.
template <class T>
void PutSets(size_t sets, T put) {
    const auto& values = TypedValues();
    for (size_t left = sets; left > 0;) {
        const size_t turn = std::min(left, values.size());
        for (const eTypedValues* set = values.data(); set != values.data() + turn; ++set)
            put(*set);
        left -= turn;
    }
}

// The checksum of the sets that `get` fills.
template <class T>
std::uint64_t GetSets(size_t sets, T get) {
    eChecksum sum;
    eTypedValues set{};
    for (size_t i = 0; i < sets; ++i) {
        get(set);
        sum.Integer(set.integer);
        sum.Integer(set.byte);
        sum.Real(set.real);
        sum.Real(set.precise);
        sum.Integer(set.large);
        sum.Text(set.name);
    }
    return sum.Value();
}

inline std::string RoomWork(unsigned kilobytes) {
    return "typed values into a memory stream with room, " + SizeName(kilobytes);
}
inline std::string GrowingWork(unsigned kilobytes) {
    return "typed values into a growing stream, " + SizeName(kilobytes);
}
inline std::string ReadingWork(unsigned kilobytes) {
    return "typed values read from memory, " + SizeName(kilobytes);
}

} // namespace bench
