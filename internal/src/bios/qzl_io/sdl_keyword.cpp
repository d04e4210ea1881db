#include <qzl_io/sdl/keyword.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <mutex>

#include "sdl_keyword.h"

namespace xSDL {

namespace {

constexpr std::size_t kLeastCapacity = 64;
constexpr std::size_t kRoomForEach = 4;

// Makes and extends the indices of all tables, which happens once per table or so.
std::mutex indexMutex;

std::size_t NameLength(const eSDLKeyword& entry) {
    return entry.name ? std::strlen(entry.name) : 0;
}

std::size_t CapacityFor(const eSDLKeyword* entry) {
    std::size_t entries = 0;
    for (; entry; entry = entry->next)
        ++entries;
    return std::max(kLeastCapacity, std::bit_ceil(entries * kRoomForEach));
}

// Of names of more than eight characters; the last eight overlap those before.

std::uint64_t HashName(const char* name, std::size_t length) {
    std::uint64_t hash = length;
    for (std::size_t at = 0; at < length - 8; at += 8)
        hash = MixedIn(hash, Load8(name + at));
    return MixedIn(hash, LoadLast8(name, length));
}

bool SameName(const char* left, const char* right, std::size_t length) {
    for (std::size_t at = 0; at < length - 8; at += 8)
        if (FoldCase(Load8(left + at)) != FoldCase(Load8(right + at)))
            return false;
    return FoldCase(LoadLast8(left, length)) == FoldCase(LoadLast8(right, length));
}

} // namespace

eKeywordIndex::eKeywordIndex(const eSDLKeyword* first)
    : mask(CapacityFor(first) - 1), slots(std::make_unique<eSlot[]>(mask + 1)), last(first) {
    Insert(first);
    Extend();
}

bool eKeywordIndex::Extend() {
    const eSDLKeyword* newest = last.load(std::memory_order_relaxed);
    for (; newest->next && used <= mask / kRoomForEach; newest = newest->next)
        Insert(newest->next);
    last.store(newest, std::memory_order_release);
    return !newest->next;
}

void eKeywordIndex::Insert(const eSDLKeyword* entry) {
    const char* const name = entry->name;
    const std::size_t length = NameLength(*entry);
    eSlot& slot = slots[PlaceOf(name, length)];
    if (slot.entry)
        return;
    slot.head = FoldCase(LoadUpTo8(name, length));
    slot.tail = length > 8 ? FoldCase(LoadLast8(name, length)) : 0;
    slot.length = length;
    slot.entry = entry;
    ++used;
}

std::size_t eKeywordIndex::PlaceOfLong(const char* name, std::size_t length) const {
    return PlaceFrom(HashName(name, length), [=](const eSlot& slot) {
        return slot.length == length && SameName(slot.entry->name, name, length);
    });
}

} // namespace xSDL

// Never inlined: a compiler that sees the whole program would take `next`, which only static storage sets, for
// undefined.
[[gnu::noinline]] eSDLKeyword::eSDLKeyword(eSDLKeyword*& head, const char* keywordName, int keywordId)
    : name(keywordName), id(keywordId), index(nullptr) {
    eSDLKeyword** end = &head;
    while (*end)
        end = &(*end)->next;
    *end = this;
}

eSDLKeyword::~eSDLKeyword() {
    delete index.exchange(nullptr);
}

const xSDL::eKeywordIndex& eSDLKeyword::RefreshIndex() const {
    std::lock_guard lock(xSDL::indexMutex);
    xSDL::eKeywordIndex* current = index.load(std::memory_order_relaxed);
    if (current && current->Extend())
        return *current;
    auto larger = std::make_unique<xSDL::eKeywordIndex>(this);
    larger->Replace(current);
    index.store(larger.get(), std::memory_order_release);
    return *larger.release();
}

int eSDLKeyword::FindIn(const eSDLKeyword* table, const char* name) {
    return name ? FindIn(table, name, std::strlen(name)) : 0;
}

int eSDLKeyword::FindIn(const eSDLKeyword* table, const char* name, std::size_t length) {
    if (!table)
        return 0;
    const xSDL::eKeywordIndex* index = table->index.load(std::memory_order_acquire);
    if (!index || index->Outdated())
        index = &table->RefreshIndex();
    const eSDLKeyword* entry = index->Find(name, length);
    return entry ? entry->id : 0;
}

const char* eSDLKeyword::FindIn(const eSDLKeyword* table, int id) {
    for (const eSDLKeyword* entry = table; entry; entry = entry->next)
        if (entry->id == id)
            return entry->name;
    return nullptr;
}
