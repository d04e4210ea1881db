#include <qzl_io/sdl/keyword.h>

#include <cstring>
#include <mutex>

#include "sdl_keyword.h"

namespace xSDL {

namespace {

constexpr std::size_t kFirstCapacity = 32;

// Makes and extends the indices of all tables, which happens once per table or so.
std::mutex indexMutex;

std::size_t NameLength(const eSDLKeyword& entry) {
    return entry.name ? std::strlen(entry.name) : 0;
}

} // namespace

eKeywordIndex::eKeywordIndex(const eSDLKeyword* first, std::size_t capacity)
    : mask(capacity - 1), slots(std::make_unique<eSlot[]>(capacity)), last(first) {
    Insert(first);
}

bool eKeywordIndex::Extend() {
    const eSDLKeyword* entry = last.load(std::memory_order_relaxed)->next;
    for (; entry && used < Capacity() / 2; entry = entry->next) {
        Insert(entry);
        last.store(entry, std::memory_order_release);
    }
    return !entry;
}

void eKeywordIndex::Insert(const eSDLKeyword* entry) {
    const std::size_t length = NameLength(*entry);
    if (Find(entry->name, length))
        return;
    const std::uint32_t hash = HashName(entry->name, length);
    std::size_t at = hash & mask;
    while (slots[at].entry.load(std::memory_order_relaxed))
        at = (at + 1) & mask;
    slots[at].folded = FoldCase(LoadUpTo8(entry->name, length));
    slots[at].hash = hash;
    slots[at].length = length;
    slots[at].entry.store(entry, std::memory_order_release);
    ++used;
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
    while (!current || !current->Extend()) {
        const std::size_t capacity = current ? 2 * current->Capacity() : xSDL::kFirstCapacity;
        auto larger = std::make_unique<xSDL::eKeywordIndex>(this, capacity);
        larger->Replace(current);
        current = larger.release();
        index.store(current, std::memory_order_release);
    }
    return *current;
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
