// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>

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
    std::string name; // up to 127 bytes, so that its length takes one byte on a stream

    size_t Bytes() const { return 4 + 1 + 4 + 8 + 8 + 1 + name.size(); }
};

using eTypedValuesInTurn = std::array<eTypedValues, 256>;

// Sets of values that are written in turn, again and again.
struct eSets {
    static constexpr double kValuesInSet = 6;

    const char* name;
    unsigned kilobytes; // what the sets take, about
    const eTypedValuesInTurn* turn;
    size_t count;

    double Values() const { return static_cast<double>(count) * kValuesInSet; }
    size_t Bytes() const {
        const auto sum = [this](size_t sets) {
            return std::accumulate(turn->begin(), turn->begin() + static_cast<std::ptrdiff_t>(sets), size_t{0},
                                   [](size_t bytes, const eTypedValues& set) { return bytes + set.Bytes(); });
        };
        return count / turn->size() * sum(turn->size()) + sum(count % turn->size());
    }
};

// The values, with the name that `nameOf` gives each set.
template <class T>
eTypedValuesInTurn TypedValues(T nameOf) {
    eTypedValuesInTurn values;
    for (size_t i = 0; i < values.size(); ++i) {
        const int number = static_cast<int>(i * 2654435761u);
        values[i] = {number,
                     static_cast<unsigned char>(i),
                     static_cast<float>(i) / 7,
                     static_cast<double>(number) / 3,
                     number * 1'000'003LL,
                     nameOf(i)};
    }
    return values;
}

// As many sets as are in about that many thousand bytes.
inline eSets SetsInTurn(const char* name, unsigned kilobytes, const eTypedValuesInTurn& turn) {
    const size_t bytes = eSets{name, kilobytes, &turn, turn.size()}.Bytes();
    return {name, kilobytes, &turn, size_t{kilobytes} * 1000 * turn.size() / bytes};
}

// Sets of one size, with names of 12 bytes.
inline eSets Sets(unsigned kilobytes) {
    static const eTypedValuesInTurn turn = TypedValues([](size_t i) { return "object" + std::to_string(100'000 + i); });
    return SetsInTurn("typed values", kilobytes, turn);
}

// Sets of 26 to 153 bytes, in no order: a quarter has no name, a quarter a short one, a quarter one of up to 40 bytes.
inline eSets MixedSets(unsigned kilobytes) {
    static const eTypedValuesInTurn turn = TypedValues([](size_t i) {
        const size_t chance = i * 2654435761u >> 8;
        constexpr std::array<size_t, 4> kLongest{0, 8, 40, 127};
        return std::string(chance / 4 % (kLongest[chance % 4] + 1), static_cast<char>('a' + i % 26));
    });
    return SetsInTurn("records of mixed sizes", kilobytes, turn);
}

// The bytes that every contender has to write and to read.
inline std::string EncodedSets(const eSets& sets) {
    std::string bytes;
    bytes.reserve(sets.Bytes());
    const auto add = [&](const auto& value) { bytes.append(reinterpret_cast<const char*>(&value), sizeof value); };
    for (size_t i = 0; i < sets.count; ++i) {
        const eTypedValues& set = (*sets.turn)[i % sets.turn->size()];
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
void PutSets(const eSets& sets, T put) {
    const eTypedValuesInTurn& values = *sets.turn;
    for (size_t left = sets.count; left > 0;) {
        const size_t turn = std::min(left, values.size());
        for (const eTypedValues* set = values.data(); set != values.data() + turn; ++set)
            put(*set);
        left -= turn;
    }
}

// The checksum of the sets that `get` fills.
template <class T>
std::uint64_t GetSets(const eSets& sets, T get) {
    eChecksum sum;
    eTypedValues set{};
    for (size_t i = 0; i < sets.count; ++i) {
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
