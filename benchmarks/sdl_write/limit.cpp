// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "../support/read_bare.h"
#include "scene.h"

namespace bench {
namespace {

// Bytes that grow by doubling; room is reserved once for several items.
class eBytes {
public:
    void Room(size_t size) {
        if (static_cast<size_t>(limit - next) < size)
            Grow(size);
    }
    void Put(char c) { *next++ = c; }
    void Put(std::string_view text) {
        std::memcpy(next, text.data(), text.size());
        next += text.size();
    }
    template <class T>
    void Number(T value) {
        next = std::to_chars(next, limit, value).ptr;
    }
    size_t Size() const { return static_cast<size_t>(next - bytes.get()); }
    const char* Data() const { return bytes.get(); }

private:
    [[gnu::noinline]] void Grow(size_t size) {
        const size_t used = Size();
        const size_t capacity = std::max(2 * static_cast<size_t>(limit - bytes.get()), used + size + 1024);
        auto larger = std::make_unique_for_overwrite<char[]>(capacity);
        if (used > 0)
            std::memcpy(larger.get(), bytes.get(), used);
        bytes = std::move(larger);
        next = bytes.get() + used;
        limit = bytes.get() + capacity;
    }

    std::unique_ptr<char[]> bytes;
    char* next = nullptr;
    char* limit = nullptr;
};

constexpr size_t kNumberRoom = 32;

void Write(eBytes& out, const eRecord& record) {
    out.Room(record.name.size() + kNumberRoom + 16);
    out.Put("\r\n\t{item \"");
    out.Put(record.name);
    out.Put("\" ");
    out.Number(record.count);
    out.Room(3 * kNumberRoom + 16);
    out.Put("\r\n\t\t{pos ");
    out.Number(record.position[0]);
    out.Put(' ');
    out.Number(record.position[1]);
    out.Put(' ');
    out.Number(record.position[2]);
    const std::string_view tag = record.tag;
    out.Room(tag.size() + 3 * kNumberRoom + 32);
    out.Put("}\r\n\t\t{tag ");
    out.Put(tag);
    out.Put("}\r\n\t\t{ids ");
    out.Number(record.ids[0]);
    out.Put(' ');
    out.Number(record.ids[1]);
    out.Put(' ');
    out.Number(record.ids[2]);
    out.Put("}\r\n\t}");
}

eBytes WriteAll(eRecords records) {
    eBytes out;
    out.Room(16);
    out.Put("{scene");
    for (const eRecord& record : records)
        Write(out, record);
    out.Room(16);
    out.Put("\r\n}\r\n");
    return out;
}

std::uint64_t Check(eRecords records) {
    eBytes out = WriteAll(records);
    out.Room(1);
    out.Put('\0');
    return ReadBare(out.Data());
}

const eContender contender(2, [](eSuite& suite) {
    for (const unsigned kilobytes : suite.Options().kilobytes) {
        if (!suite.Wants(WriteWork(kilobytes)))
            continue;
        const size_t count = Items(eDocument::Records, kilobytes);
        suite.Add(WriteWork(kilobytes), Values(eDocument::Records, kilobytes),
                  {"appending by hand with to_chars",
                   eKind::Limit,
                   1.25,
                   WriteAll(Records(count)).Size(),
                   {},
                   [count] { return WriteAll(Records(count)).Size(); },
                   [count] { return Check(Records(count)); }});
    }
});

} // namespace
} // namespace bench
