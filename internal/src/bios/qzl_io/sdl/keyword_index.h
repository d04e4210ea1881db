// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <qzl_io/detail/compiler.h>
#include <qzl_io/sdl/keyword.h>

#include "sdl/scan.h"

namespace xSDL {

// Lower-cases the ASCII letters among eight characters.
inline std::uint64_t FoldCase(std::uint64_t characters) {
    constexpr std::uint64_t kEach = 0x0101010101010101u;
    const std::uint64_t low = characters & (0x7F * kEach);
    const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
    const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
    return characters | ((fromA & ~beyondZ & ~characters & (0x80 * kEach)) >> 2);
}

// Changes a hash in the same way for words of names that differ only in letter case.
inline std::uint64_t MixedIn(std::uint64_t hash, std::uint64_t word) {
    constexpr std::uint64_t kLetterCase = 0x2020202020202020u;
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    hash = (hash ^ (word | kLetterCase)) * kFactor;
    return hash ^ hash >> 32;
}

// The last eight characters of a name that has at least eight.
inline std::uint64_t LoadLast8(const char* name, std::size_t length) {
    return Load8(name + length - 8);
}

// Finds the first entry of a table, or of its part from one of its entries on, with a given name or id.
//
// Both hash tables use open addressing and are at most a quarter full. The table of names compares names of up to 16
// characters in its slots: most searches, even unsuccessful ones, touch one slot, however large the table is. Entries
// of one name, or of one id, form a chain, so that a search from any of them finds the next one. Searching takes no
// lock: an entry is added before the last one is published, ids before they are, and an index that has become too small
// stays alive, owned by the larger one that replaces it. All memory is there before the first entry is added, so that
// no addition is left half done.
class eKeywordIndex {
public:
    // An index of the table that begins with `first`.
    explicit eKeywordIndex(const eSDLKeyword* first);

    // Whether entries have been appended since.
    bool Outdated() const { return last.load(std::memory_order_acquire)->next != nullptr; }

    const eSDLKeyword* Find(const char* name, std::size_t length) const { return slots[PlaceOf(name, length)].entry; }
    // Likewise without a call. False if it takes one, as a long name does.
    QZL_IO_ALWAYS_INLINE bool FindAtOnce(const char* name, std::size_t length, const eSDLKeyword** found) const {
        if (length > kCompared)
            return false;
        *found = slots[PlaceOfShort(name, length)].entry;
        return true;
    }
    // Call only if HasNumbers; the table of ids is built on demand.
    const eSDLKeyword* Find(int id) const { return numbers[PlaceOf(id)].entry; }
    bool HasNumbers() const { return hasNumbers.load(std::memory_order_acquire); }
    // For one thread at a time.
    void MakeNumbers();

    // Whether the entry is still where its constructor put it, as are all others; only then may a search begin there.
    bool Knows(const eSDLKeyword& entry) const {
        return inOrder && entry.place < count && entries[entry.place] == &entry;
    }
    const eSDLKeyword* FindFrom(const eSDLKeyword& entry, const char* name, std::size_t length) const;
    const eSDLKeyword* FindFrom(const eSDLKeyword& entry, int id) const;

    // Adds the entries after the last one, as many as there is room for. True if these were all. For one thread at a
    // time.
    bool Extend();

    // Owns the replaced index from now on.
    void Replace(eKeywordIndex* smaller) { replaced.reset(smaller); }

private:
    static constexpr std::size_t kRoomForEach = 4; // slots
    static constexpr std::size_t kCompared = 16;   // characters that are compared in a slot

    struct eSlot {
        std::uint64_t head = 0; // the name's first eight characters, combined with the last eight if it has more
        std::uint64_t tail = 0;
        std::size_t length = 0;
        const eSDLKeyword* entry = nullptr; // null: the slot is free
    };

    struct eNumbered {
        const eSDLKeyword* entry = nullptr; // null: the slot is free
        int id = 0;
    };

    // The next entry of the same name or of the same id, by its number counted from 1; 0 for none. The first one of a
    // chain knows the last.
    struct eFollowing {
        unsigned next = 0;
        unsigned last = 0;
    };

    std::size_t Room() const { return (mask + 1) / kRoomForEach; }

    std::size_t PlaceOf(int id) const {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
        std::size_t at = (static_cast<std::uint64_t>(static_cast<unsigned>(id)) * kFactor >> 32) & mask;
        while (numbers[at].entry && numbers[at].id != id)
            at = (at + 1) & mask;
        return at;
    }

    // The slot of a name or, if the index does not contain it, the free slot where it belongs.
    std::size_t PlaceOf(const char* name, std::size_t length) const {
        return length > kCompared ? PlaceOfLong(name, length) : PlaceOfShort(name, length);
    }

    QZL_IO_ALWAYS_INLINE std::size_t PlaceOfShort(const char* name, std::size_t length) const {
        const std::uint64_t head = LoadUpTo8(name, length);
        std::uint64_t hash = MixedIn(length, head);
        std::uint64_t tail = 0;
        if (length > 8) {
            tail = LoadLast8(name, length);
            hash = MixedIn(hash, tail);
        }
        return PlaceFrom(hash, [length, head = FoldCase(head), tail = FoldCase(tail)](const eSlot& slot) {
            return slot.head == head && slot.tail == tail && slot.length == length;
        });
    }

    std::size_t PlaceOfLong(const char* name, std::size_t length) const;

    template <class Matches>
    std::size_t PlaceFrom(std::uint64_t hash, Matches matches) const {
        std::size_t at = hash & mask;
        while (slots[at].entry && !matches(slots[at]))
            at = (at + 1) & mask;
        return at;
    }

    void Insert(const eSDLKeyword* entry) noexcept;
    void InsertName(const eSDLKeyword* entry) noexcept;
    void InsertId(std::size_t number) noexcept;
    void Chain(eFollowing* chains, std::size_t first, std::size_t added) const noexcept;
    const eSDLKeyword* From(const eSDLKeyword& entry, const eSDLKeyword* first, const eFollowing* chains) const;

    const eSDLKeyword* table;
    std::size_t mask;
    std::unique_ptr<eSlot[]> slots;
    std::unique_ptr<eNumbered[]> numbers;
    std::unique_ptr<eFollowing[]> sameId; // of each entry, made together with `numbers`
    std::atomic<bool> hasNumbers = false;
    std::unique_ptr<const eSDLKeyword*[]> entries; // in the order of the table
    std::unique_ptr<eFollowing[]> sameName;        // of each entry
    std::size_t count = 0;
    bool inOrder = true; // every entry was constructed for this table and is where it was put
    std::atomic<const eSDLKeyword*> last;
    std::unique_ptr<eKeywordIndex> replaced; // searches that began in it may still be running
};

} // namespace xSDL

QZL_IO_ALWAYS_INLINE bool eSDLKeyword::FindAtOnce(const eSDLKeyword* table, std::string_view name, int* id) {
    *id = 0;
    if (!table)
        return true;
    const xSDL::eKeywordIndex* const found = table->index.load(std::memory_order_acquire);
    const eSDLKeyword* entry;
    if (!found || found->Outdated() || !found->FindAtOnce(name.data(), name.size(), &entry))
        return false;
    if (entry)
        *id = entry->id;
    return true;
}
