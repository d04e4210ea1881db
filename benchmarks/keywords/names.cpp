// SPDX-License-Identifier: BSL-1.0
#include "names.h"

#include <map>
#include <string_view>

namespace bench {
namespace {

constexpr std::array<std::string_view, 10> kParts{"light", "pos", "size", "color", "mesh",
                                                  "path",  "key", "view", "sound", "map"};

// A word for a number of up to three digits.
std::string Word(int index) {
    std::string word;
    for (int place = 1; place < kTableSizes.back(); place *= 10)
        word += kParts[static_cast<size_t>(index / place % 10)];
    return word;
}

std::string OtherCase(std::string word) {
    for (size_t i = 0; i < word.size(); i += 2)
        word[i] = static_cast<char>(word[i] - 'a' + 'A');
    return word;
}

std::vector<std::string> MakeNames(int entries) {
    std::vector<std::string> names;
    for (int i = 0; i < entries; ++i)
        names.push_back(Word(i * (kTableSizes.back() / entries)));
    return names;
}

std::vector<std::string> MakeLookedUp(int entries) {
    std::vector<std::string> words;
    unsigned state = 12345;
    for (size_t i = 0; i < kLookUps; ++i) {
        state = state * 1664525 + 1013904223;
        const std::string& name = TableNames(entries)[(state >> 8) % static_cast<unsigned>(entries)];
        words.push_back(i % 4 == 3 ? name + "_x" : i % 2 == 0 ? name : OtherCase(name));
    }
    return words;
}

} // namespace

const std::vector<std::string>& TableNames(int entries) {
    static std::map<int, std::vector<std::string>> made;
    auto& names = made[entries];
    if (names.empty())
        names = MakeNames(entries);
    return names;
}

const std::vector<std::string>& LookedUp(int entries) {
    static std::map<int, std::vector<std::string>> made;
    auto& words = made[entries];
    if (words.empty())
        words = MakeLookedUp(entries);
    return words;
}

std::string LookUpWork(int entries) {
    return "keyword look-up, table of " + std::to_string(entries);
}

} // namespace bench
