// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/keyword.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>

#include <qzl_io/detail/compiler.h>

#include "qzl_base/shared/ascii.h"
#include "sdl/keyword_index.h"

namespace xSDL {

namespace {

constexpr std::size_t kLeastCapacity = 64;

// Held to create and extend the index of any table, which happens about once per table.
std::mutex indexMutex;

std::size_t CountFrom(const eSDLKeyword* entry) {
    std::size_t entries = 0;
    for (; entry; entry = entry->next)
        ++entries;
    return entries;
}

// For names of more than eight characters; the last eight overlap those before.
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

bool Matches(const eSDLKeyword& entry, int id) {
    return entry.id == id;
}

bool Matches(const eSDLKeyword& entry, const char* name, std::size_t length) {
    return entry.name && std::strlen(entry.name) == length &&
           std::equal(name, name + length, entry.name,
                      [&](char a, char b) { return ascii::ToLower(a) == ascii::ToLower(b); });
}

} // namespace

eKeywordIndex::eKeywordIndex(const eSDLKeyword* first)
    : table(first),
      mask(std::max(kLeastCapacity, std::bit_ceil(CountFrom(first) * kRoomForEach)) - 1),
      slots(std::make_unique<eSlot[]>(mask + 1)),
      entries(std::make_unique_for_overwrite<const eSDLKeyword*[]>(Room())),
      sameName(std::make_unique<eFollowing[]>(Room())),
      last(first) {
    Insert(first);
    Extend();
}

bool eKeywordIndex::Extend() {
    const eSDLKeyword* newest = last.load(std::memory_order_relaxed);
    for (; newest->next && count < Room(); newest = newest->next)
        Insert(newest->next);
    last.store(newest, std::memory_order_release);
    return !newest->next;
}

void eKeywordIndex::Insert(const eSDLKeyword* entry) noexcept {
    inOrder = inOrder && entry->table == table && entry->place == count;
    entries[count++] = entry;
    if (entry->name)
        InsertName(entry);
    if (numbers)
        InsertId(count);
}

void eKeywordIndex::InsertName(const eSDLKeyword* entry) noexcept {
    const char* const name = entry->name;
    const std::size_t length = std::strlen(name);
    eSlot& slot = slots[PlaceOf(name, length)];
    if (slot.entry) {
        Chain(sameName.get(), slot.entry->place, count);
        return;
    }
    slot.head = FoldCase(LoadUpTo8(name, length));
    slot.tail = length > 8 ? FoldCase(LoadLast8(name, length)) : 0;
    slot.length = length;
    slot.entry = entry;
}

void eKeywordIndex::MakeNumbers() {
    if (numbers)
        return;
    sameId = std::make_unique<eFollowing[]>(Room());
    numbers = std::make_unique<eNumbered[]>(mask + 1);
    for (std::size_t number = 1; number <= count; ++number)
        InsertId(number);
    hasNumbers.store(true, std::memory_order_release);
}

void eKeywordIndex::InsertId(std::size_t number) noexcept {
    const eSDLKeyword* const entry = entries[number - 1];
    eNumbered& slot = numbers[PlaceOf(entry->id)];
    if (slot.entry)
        Chain(sameId.get(), slot.entry->place, number);
    else
        slot = {entry, entry->id};
}

// Adds an entry, by its number counted from 1, to the chain that begins with the first one.
void eKeywordIndex::Chain(eFollowing* chains, std::size_t first, std::size_t added) const noexcept {
    if (!inOrder)
        return;
    unsigned& tail = chains[first].last;
    chains[tail != 0 ? tail - 1 : first].next = static_cast<unsigned>(added);
    tail = static_cast<unsigned>(added);
}

const eSDLKeyword* eKeywordIndex::From(const eSDLKeyword& entry, const eSDLKeyword* first,
                                       const eFollowing* chains) const {
    while (first && first->place < entry.place) {
        const unsigned number = chains[first->place].next;
        first = number != 0 ? entries[number - 1] : nullptr;
    }
    return first;
}

const eSDLKeyword* eKeywordIndex::FindFrom(const eSDLKeyword& entry, const char* name, std::size_t length) const {
    return From(entry, Find(name, length), sameName.get());
}

const eSDLKeyword* eKeywordIndex::FindFrom(const eSDLKeyword& entry, int id) const {
    return From(entry, Find(id), sameId.get());
}

std::size_t eKeywordIndex::PlaceOfLong(const char* name, std::size_t length) const {
    return PlaceFrom(HashName(name, length), [=](const eSlot& slot) {
        return slot.length == length && SameName(slot.entry->name, name, length);
    });
}

} // namespace xSDL

// Never inlined: `next` is set only by static storage, and a compiler that sees the whole program would take it for
// undefined.
QZL_IO_NOINLINE eSDLKeyword::eSDLKeyword(eSDLKeyword*& head, const char* keywordName, int keywordId)
    : name(keywordName), id(keywordId), table(head ? head->table : this), last(this), index(nullptr) {
    if (!head) {
        head = this;
        return;
    }
    eSDLKeyword* end = table->last;
    while (end->next)
        end = end->next;
    end->next = this;
    place = end->place + 1;
    table->last = this;
}

eSDLKeyword::~eSDLKeyword() {
    delete index.exchange(nullptr);
}

const xSDL::eKeywordIndex& eSDLKeyword::Index(bool withNumbers) const {
    const xSDL::eKeywordIndex* const current = index.load(std::memory_order_acquire);
    const bool ready = current && !current->Outdated() && (!withNumbers || current->HasNumbers());
    return ready ? *current : RefreshIndex(withNumbers);
}

const xSDL::eKeywordIndex& eSDLKeyword::RefreshIndex(bool withNumbers) const {
    std::lock_guard lock(xSDL::indexMutex);
    xSDL::eKeywordIndex* current = index.load(std::memory_order_relaxed);
    if (!current || !current->Extend()) {
        auto larger = std::make_unique<xSDL::eKeywordIndex>(this);
        larger->Replace(current);
        current = larger.release();
        index.store(current, std::memory_order_release);
    }
    if (withNumbers)
        current->MakeNumbers();
    return *current;
}

// Searches from an entry anywhere in its table, which may have been moved to another list.
template <class... eSought>
const eSDLKeyword* eSDLKeyword::FindFrom(const eSDLKeyword* entry, eSought... sought) {
    const xSDL::eKeywordIndex& index = entry->table->Index(sizeof...(sought) == 1);
    if (entry == entry->table)
        return index.Find(sought...);
    if (index.Knows(*entry))
        return index.FindFrom(*entry, sought...);
    while (entry && !xSDL::Matches(*entry, sought...))
        entry = entry->next;
    return entry;
}

int eSDLKeyword::FindIn(const eSDLKeyword* table, const char* name) {
    return name ? FindIn(table, name, std::strlen(name)) : 0;
}

int eSDLKeyword::FindIn(const eSDLKeyword* table, const char* name, std::size_t length) {
    if (!table)
        return 0;
    const xSDL::eKeywordIndex* const found = table->index.load(std::memory_order_acquire);
    if (!found || found->Outdated()) [[unlikely]]
        return IdFrom(table, name, length);
    const eSDLKeyword* const entry = found->Find(name, length);
    return entry ? entry->id : 0;
}

QZL_IO_NOINLINE int eSDLKeyword::IdFrom(const eSDLKeyword* entry, const char* name, std::size_t length) {
    const eSDLKeyword* const found = FindFrom(entry, name, length);
    return found ? found->id : 0;
}

const char* eSDLKeyword::FindIn(const eSDLKeyword* table, int id) {
    if (!table)
        return nullptr;
    const xSDL::eKeywordIndex* const index = table->index.load(std::memory_order_acquire);
    const eSDLKeyword* const entry =
        index && !index->Outdated() && index->HasNumbers() ? index->Find(id) : FindFrom(table, id);
    return entry ? entry->name : nullptr;
}
