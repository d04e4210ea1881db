// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "../support/suite.h"
#include "names.h"

namespace bench {
namespace {

unsigned char Fold(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + 32) : byte;
}

struct eFoldHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const {
        size_t hash = 14695981039346656037u;
        for (const char c : text)
            hash = (hash ^ Fold(c)) * 1099511628211u;
        return hash;
    }
};

struct eFoldEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const {
        if (a.size() != b.size())
            return false;
        for (size_t i = 0; i < a.size(); ++i)
            if (Fold(a[i]) != Fold(b[i]))
                return false;
        return true;
    }
};

using eTable = std::unordered_map<std::string, int, eFoldHash, eFoldEqual>;

const eTable& Table(int entries) {
    static std::unordered_map<int, eTable> made;
    eTable& table = made[entries];
    if (table.empty())
        for (int i = 0; i < entries; ++i)
            table.emplace(TableNames(entries)[static_cast<size_t>(i)], i + 1);
    return table;
}

std::uint64_t FindAll(const eTable& table, const std::vector<std::string>& words) {
    std::uint64_t sum = 0;
    for (const std::string& word : words) {
        const auto found = table.find(std::string_view(word.c_str()));
        sum += found == table.end() ? 0 : static_cast<unsigned>(found->second);
    }
    return sum;
}

const eContender contender(1, [](eSuite& suite) {
    for (const int entries : kTableSizes)
        suite.Add(LookUpWork(entries), kLookUps,
                  {"std::unordered_map, folding hash",
                   eKind::Peer,
                   1.0,
                   0,
                   {},
                   [entries] { return FindAll(Table(entries), LookedUp(entries)); },
                   {}},
                  "look-up");
});

} // namespace
} // namespace bench
