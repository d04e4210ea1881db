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
    // Needs room for twice the text.
    void Escaped(std::string_view text) {
        unsigned char escaped = 0;
        for (const char c : text)
            escaped |= static_cast<unsigned char>((c == '"') | (c == '\\') | (c == '\n'));
        if (!escaped)
            return Put(text);
        for (const char c : text) {
            if (c == '"' || c == '\\' || c == '\n')
                *next++ = '\\';
            *next++ = c == '\n' ? 'n' : c;
        }
    }
    void Line(size_t depth) {
        *next++ = '\r';
        *next++ = '\n';
        std::memset(next, '\t', depth);
        next += depth;
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

void Write(eBytes& out, const eTextBlock& block) {
    out.Room(16);
    out.Put("\r\n\t{text");
    for (const std::string& text : block.texts) {
        out.Room(2 * text.size() + 16);
        out.Put("\r\n\t\t\"");
        out.Escaped(text);
        out.Put('"');
    }
    out.Room(16);
    out.Put("\r\n\t}");
}

void Write(eBytes& out, const eNumberRow& row) {
    out.Room(2 * kNumbersOfEachKind * kNumberRoom + 16);
    out.Put("\r\n\t{row");
    for (int i = 0; i < kNumbersOfEachKind; ++i) {
        out.Put(' ');
        out.Number(row.ints[i]);
        out.Put(' ');
        out.Number(row.floats[i]);
    }
    out.Put('}');
}

void Write(eBytes& out, const eNodeChain& chain) {
    for (size_t i = 0; i < kChainDepth; ++i) {
        out.Room(chain.names[i].size() + kNumberRoom + kChainDepth + 16);
        out.Line(i + 1);
        out.Put("{node ");
        out.Number(chain.numbers[i]);
        out.Put(" \"");
        out.Put(chain.names[i]);
        out.Put('"');
    }
    out.Room(kChainDepth * (kChainDepth + 4));
    out.Put('}');
    for (size_t depth = kChainDepth - 1; depth >= 1; --depth) {
        out.Line(depth);
        out.Put('}');
    }
}

template <class eItems>
eBytes WriteAll(eItems items) {
    eBytes out;
    out.Room(16);
    out.Put("{scene");
    for (const auto& item : items)
        Write(out, item);
    out.Room(16);
    out.Put("\r\n}\r\n");
    return out;
}

template <class eItems>
size_t Size(eItems items) {
    return WriteAll(items).Size();
}

template <class eItems>
std::uint64_t Check(eItems items) {
    eBytes out = WriteAll(items);
    out.Room(1);
    out.Put('\0');
    return ReadBare(out.Data());
}

const eContender contender(2, [](eSuite& suite) {
    ForEachScene(suite, [&](const eScene& scene, auto items) {
        const auto size = [=] { return SizeOfAll(scene, items, [](auto each) { return Size(each); }); };
        const auto check = [=] { return CheckOfAll(scene, items, [](auto each) { return Check(each); }); };
        suite.Add(scene.work, scene.values,
                  {"appending by hand with to_chars", eKind::Limit, 1.2, size(), {}, size, check});
    });
});

} // namespace
} // namespace bench
