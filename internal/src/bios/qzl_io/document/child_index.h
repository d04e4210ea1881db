// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "document/source.h"
#include "qzl_base/shared/ascii.h"

namespace xSDL {

// Which children of a block are counted: blocks of a name or any, values (all that are no blocks), or words of a text.
enum class eCounted : unsigned char { Named, Blocks, Values, Words };

// Places among the children of blocks, noted while the children are counted, from which later counts go on: so the next
// child sought by its index is found without counting all before it.
class eChildIndex {
public:
    // Children from one place to the next, as long as there is room.
    static constexpr std::size_t kEvery = 8;

    struct ePlace {
        eSpot child;
        std::size_t before = 0; // counted children before it
    };

    // The places in one block, for one way to count. The first one is the block's first child.
    struct ePlaces {
        std::vector<ePlace> list;
        std::size_t every = kEvery;

        // The last place before which no more than so many children are counted; null without places.
        const ePlace* Before(std::size_t index) const {
            const auto after =
                std::upper_bound(list.begin(), list.end(), index,
                                 [](std::size_t most, const ePlace& place) { return most < place.before; });
            return after == list.begin() ? nullptr : &*std::prev(after);
        }
        bool IsLast(const ePlace* place) const { return list.empty() || place == &list.back(); }
    };

    // All of it takes no more memory than about so many bytes.
    explicit eChildIndex(std::size_t bytes) : room(bytes / (2 * sizeof(ePlace))) {}

    // Good until the next call.
    ePlaces& Of(const eSpot& block, eCounted what, std::string_view name) {
        eKey key{block, what, ascii::LowerCased(std::string(name))};
        const auto known = blocks.find(key);
        if (known != blocks.end())
            return known->second;
        if (used + kBlockCost > room) {
            blocks.clear();
            used = 0;
        }
        used += kBlockCost;
        return blocks[std::move(key)];
    }

    // Passes a child that is so many after the last place, and returns how many the next one is.
    std::size_t Pass(ePlaces* places, const ePlace& child, std::size_t after) {
        if (after < places->every && !places->list.empty())
            return after + 1;
        if (used >= room)
            MakeRoom(places, &after);
        if (used >= room || (after < places->every && !places->list.empty()))
            return after + 1;
        places->list.push_back(child);
        ++used;
        return 1;
    }

    // The children of the block are others now.
    void Forget(const eSpot& block) {
        const auto first = blocks.lower_bound({block, eCounted{}, {}});
        auto last = first;
        for (; last != blocks.end() && std::get<eSpot>(last->first) == block; ++last)
            used -= kBlockCost + last->second.list.size();
        blocks.erase(first, last);
    }

private:
    using eKey = std::tuple<eSpot, eCounted, std::string>;
    using eBlocks = std::map<eKey, ePlaces>;

    static constexpr std::size_t kBlockCost = 8; // of a block without places

    // Other blocks are forgotten; where there are none, every second place of this one.
    void MakeRoom(ePlaces* places, std::size_t* after) {
        if (blocks.size() > 1) {
            std::erase_if(blocks, [&](const auto& block) { return &block.second != places; });
            used = kBlockCost + places->list.size();
            return;
        }
        std::vector<ePlace>& list = places->list;
        if (list.size() < 2)
            return;
        if (list.size() % 2 == 0)
            *after += places->every; // the last one goes
        for (std::size_t kept = 1; 2 * kept < list.size(); ++kept)
            list[kept] = list[2 * kept];
        list.resize((list.size() + 1) / 2);
        places->every *= 2;
        used = kBlockCost + list.size();
    }

    eBlocks blocks;
    std::size_t room;
    std::size_t used = 0; // in places
};

} // namespace xSDL
