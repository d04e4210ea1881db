// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <string_view>

namespace bench {

// The twelve names that every reader looks up.
enum eSceneWord { wordItem = 1, wordCount, wordPos, wordTag, wordIds, wordText, wordRow, wordNode, wordScene };
inline constexpr std::array<const char*, 12> kSceneWords{"item", "count", "pos",   "tag",   "ids",  "text",
                                                         "row",  "node",  "scene", "light", "mesh", "camera"};

// A table of these names for contenders without a table of their own: open addressing, letter case folded.
class eSceneWords {
public:
    eSceneWords() {
        for (size_t i = 0; i < kSceneWords.size(); ++i) {
            size_t slot = Slot(kSceneWords[i]);
            while (!slots[slot].name.empty())
                slot = (slot + 1) % slots.size();
            slots[slot] = {kSceneWords[i], static_cast<int>(i) + 1};
        }
    }

    // The word's number; 0 if it is not one of the names.
    int Find(std::string_view word) const {
        if (word.empty())
            return 0;
        for (size_t slot = Slot(word); !slots[slot].name.empty(); slot = (slot + 1) % slots.size())
            if (IsEqual(slots[slot].name, word))
                return slots[slot].id;
        return 0;
    }

private:
    struct eSlot {
        std::string_view name;
        int id = 0;
    };

    static unsigned Fold(char c) { return static_cast<unsigned char>(c) | 0x20u; }
    size_t Slot(std::string_view word) const {
        return (Fold(word.front()) * 7 + Fold(word.back()) * 3 + word.size()) % slots.size();
    }
    static bool IsEqual(std::string_view name, std::string_view word) {
        if (name.size() != word.size())
            return false;
        for (size_t i = 0; i < name.size(); ++i)
            if (Fold(name[i]) != Fold(word[i]))
                return false;
        return true;
    }

    std::array<eSlot, 64> slots;
};

} // namespace bench
