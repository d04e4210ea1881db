// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "../support/by_hand.h"
#include "values.h"

namespace bench {
namespace {

// Bytes that grow by doubling.
class eGrowing {
public:
    unsigned char* Begin() { return bytes.data(); }
    unsigned char* End() { return bytes.data() + bytes.size(); }
    [[gnu::noinline]] unsigned char* Grow(unsigned char* next, size_t size) {
        const auto used = next - bytes.data();
        bytes.resize(2 * bytes.size() + size + 256);
        return bytes.data() + used;
    }

private:
    std::vector<unsigned char> bytes;
};

// Bytes that are complete from the start.
class eWhole {
public:
    explicit eWhole(const std::string& from) : bytes(from) {}
    const unsigned char* Begin() const { return reinterpret_cast<const unsigned char*>(bytes.data()); }
    const unsigned char* End() const { return Begin() + bytes.size(); }
    [[gnu::noinline]] const unsigned char* Refill(const unsigned char*) { throw std::length_error("no bytes left"); }

private:
    const std::string& bytes;
};

template <class Sink>
size_t PutAll(Sink& sink, const eSets& sets) {
    const unsigned char* const end = PutByHand(sink, sets);
    return static_cast<size_t>(end - sink.Begin());
}

std::uint64_t GetAll(const std::string& bytes, const eSets& sets) {
    eWhole whole(bytes);
    return GetByHand(whole, sets);
}

template <class Sink>
std::uint64_t SumWritten(Sink sink, const eSets& sets) {
    const size_t size = PutAll(sink, sets);
    return SumOfBytes({reinterpret_cast<const char*>(sink.Begin()), size});
}

const eContender contender(2, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        const eSets sets = Sets(kilobytes);
        const size_t size = sets.Bytes();
        const double values = sets.Values();
        const auto room = std::make_shared<eHandRoom>(size);
        suite.Add(RoomWork(kilobytes), values,
                  {"memcpy by hand, one comparison each",
                   eKind::Limit,
                   1.25,
                   size,
                   {},
                   [room, sets] { return PutAll(*room, sets); },
                   [room, sets] { return SumWritten(*room, sets); }});
        suite.Add(GrowingWork(kilobytes), values,
                  {"a growing vector by hand",
                   eKind::Limit,
                   1.1,
                   size,
                   {},
                   [sets] {
                       eGrowing growing;
                       return PutAll(growing, sets);
                   },
                   [sets] { return SumWritten(eGrowing(), sets); }});
        const auto bytes = std::make_shared<const std::string>(EncodedSets(sets));
        suite.Add(ReadingWork(kilobytes), values,
                  {"memcpy by hand, one comparison each",
                   eKind::Limit,
                   1.25,
                   size,
                   {},
                   [bytes, sets] { return GetAll(*bytes, sets); },
                   {}});
    }
});

} // namespace
} // namespace bench
