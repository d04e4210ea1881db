// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "../typed_values/values.h"

namespace bench {

// A target of fixed size.
class eHandRoom {
public:
    explicit eHandRoom(size_t size) : bytes(size) {}
    unsigned char* Begin() { return bytes.data(); }
    unsigned char* End() { return bytes.data() + bytes.size(); }
    [[gnu::noinline]] unsigned char* Grow(unsigned char*, size_t) { throw std::length_error("no room left"); }

private:
    std::vector<unsigned char> bytes;
};

// Copies typed values to bytes whose room grows by `Sink::Grow(size)`: one comparison for each value.
template <class Sink>
class eHandWriter {
public:
    explicit eHandWriter(Sink& target) : sink(target), next(target.Begin()), limit(target.End()) {}

    template <class T>
    void Put(T value) {
        Bytes(&value, sizeof value);
    }
    void Put(const std::string& text) {
        Put(static_cast<unsigned char>(text.size()));
        Bytes(text.data(), text.size());
    }
    unsigned char* Next() const { return next; }

private:
    void Bytes(const void* from, size_t size) {
        if (static_cast<size_t>(limit - next) < size) [[unlikely]] {
            next = sink.Grow(next, size);
            limit = sink.End();
        }
        std::memcpy(next, from, size);
        next += size;
    }

    Sink& sink;
    unsigned char* next;
    unsigned char* limit;
};

// Copies typed values from bytes; `Source::Refill(next)` moves the unread bytes to the front and appends those that
// follow.
template <class Source>
class eHandReader {
public:
    explicit eHandReader(Source& from) : source(from), next(from.Begin()), limit(from.End()) {}

    template <class T>
    void Get(T& value) {
        Need(sizeof value);
        std::memcpy(&value, next, sizeof value);
        next += sizeof value;
    }
    void Get(std::string& text) {
        unsigned char length = 0;
        Get(length);
        // If GCC 12 knows that the length is below 256, it copies with rep movs, which is three times as slow.
        size_t size = length;
        benchmark::DoNotOptimize(size);
        Need(size);
        text.assign(reinterpret_cast<const char*>(next), size);
        next += size;
    }

private:
    void Need(size_t size) {
        if (static_cast<size_t>(limit - next) < size) [[unlikely]] {
            next = source.Refill(next);
            limit = source.End();
        }
    }

    Source& source;
    const unsigned char* next;
    const unsigned char* limit;
};

// Copies the sets to a sink; returns the place after the last byte.
template <class Sink>
unsigned char* PutByHand(Sink& sink, const eSets& sets) {
    eHandWriter<Sink> out(sink);
    PutSets(sets, [&](const eTypedValues& set) {
        out.Put(set.integer);
        out.Put(set.byte);
        out.Put(set.real);
        out.Put(set.precise);
        out.Put(set.large);
        out.Put(set.name);
    });
    return out.Next();
}

template <class Source>
std::uint64_t GetByHand(Source& source, const eSets& sets) {
    eHandReader<Source> in(source);
    return GetSets(sets, [&](eTypedValues& set) {
        in.Get(set.integer);
        in.Get(set.byte);
        in.Get(set.real);
        in.Get(set.precise);
        in.Get(set.large);
        in.Get(set.name);
    });
}

} // namespace bench
