#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <qzl_io/sdl/keyword.h>

#include "sdl_scan.h"

namespace xSDL {

// Lower-cases the ASCII letters among eight characters.
inline std::uint64_t FoldCase(std::uint64_t characters) {
    constexpr std::uint64_t kEach = 0x0101010101010101u;
    const std::uint64_t low = characters & (0x7F * kEach);
    const std::uint64_t fromA = low + (0x80 - 'A') * kEach;
    const std::uint64_t beyondZ = low + (0x7F - 'Z') * kEach;
    return characters | ((fromA & ~beyondZ & ~characters & (0x80 * kEach)) >> 2);
}

// Words of names that differ in letter case alone change a hash in the same way.
inline std::uint64_t MixedIn(std::uint64_t hash, std::uint64_t word) {
    constexpr std::uint64_t kLetterCase = 0x2020202020202020u;
    constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15u;
    hash = (hash ^ (word | kLetterCase)) * kFactor;
    return hash ^ hash >> 32;
}

// Equal names of either letter case give equal values.
inline std::uint32_t HashName(const char* name, std::size_t length) {
    std::uint64_t hash = length;
    for (; length > 8; name += 8, length -= 8)
        hash = MixedIn(hash, Load8(name));
    return static_cast<std::uint32_t>(MixedIn(hash, LoadUpTo8(name, length)));
}

inline bool SameName(const char* left, const char* right, std::size_t length) {
    for (; length > 8; left += 8, right += 8, length -= 8)
        if (FoldCase(Load8(left)) != FoldCase(Load8(right)))
            return false;
    return FoldCase(LoadUpTo8(left, length)) == FoldCase(LoadUpTo8(right, length));
}

// Finds the first entry of a table with a given name.
//
// An open-addressed hash, at most half full. Searching takes no lock: a slot is written before its entry is published,
// and an index that has become too small stays alive behind the larger one that replaces it.
class eKeywordIndex {
public:
    // The capacity is a power of two. Holds the first entry alone.
    eKeywordIndex(const eSDLKeyword* first, std::size_t capacity);

    // Have entries been appended since?
    bool Outdated() const { return last.load(std::memory_order_acquire)->next != nullptr; }

    const eSDLKeyword* Find(const char* name, std::size_t length) const {
        if (length <= kShortName) {
            const std::uint64_t word = LoadUpTo8(name, length);
            return FindFrom(MixedIn(length, word), [length, folded = FoldCase(word)](const eSlot& slot, const auto*) {
                return slot.folded == folded && slot.length == length;
            });
        }
        const std::uint32_t hash = HashName(name, length);
        return FindFrom(hash, [=](const eSlot& slot, const eSDLKeyword* entry) {
            return slot.hash == hash && slot.length == length && SameName(entry->name, name, length);
        });
    }

    // Takes in the entries behind the last one, as many as there is room for. True when that was all. One thread at a
    // time.
    bool Extend();

    std::size_t Capacity() const { return mask + 1; }

    // Owns the index that this one replaces from now on.
    void Replace(eKeywordIndex* smaller) { replaced.reset(smaller); }

private:
    static constexpr std::size_t kShortName = 8; // names up to here are compared in their slot

    struct eSlot {
        std::uint64_t folded = 0; // a short name's characters in lower case
        std::uint32_t hash = 0;
        std::size_t length = 0;
        std::atomic<const eSDLKeyword*> entry{nullptr};
    };

    template <class Matches>
    const eSDLKeyword* FindFrom(std::uint64_t hash, Matches matches) const {
        for (std::size_t at = hash & mask;; at = (at + 1) & mask) {
            const eSDLKeyword* entry = slots[at].entry.load(std::memory_order_acquire);
            if (!entry || matches(slots[at], entry))
                return entry;
        }
    }

    void Insert(const eSDLKeyword* entry);

    std::size_t mask;
    std::size_t used = 0;
    std::unique_ptr<eSlot[]> slots;
    std::atomic<const eSDLKeyword*> last;
    std::unique_ptr<eKeywordIndex> replaced; // searches that began in it may still be at work
};

} // namespace xSDL
