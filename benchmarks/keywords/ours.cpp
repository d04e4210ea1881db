// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "../support/suite.h"
#include "names.h"

namespace bench {
namespace {

// A table of `entries` keywords in storage that starts out zero, as static objects do.
template <int entries>
const eSDLKeyword* Table() {
    alignas(eSDLKeyword) static std::array<std::byte, sizeof(eSDLKeyword) * entries> storage;
    static const eSDLKeyword* const head = [] {
        eSDLKeyword* first = nullptr;
        for (int i = 0; i < entries; ++i)
            new (storage.data() + sizeof(eSDLKeyword) * static_cast<size_t>(i))
                eSDLKeyword(first, TableNames(entries)[static_cast<size_t>(i)].c_str(), i + 1);
        return first;
    }();
    return head;
}

std::uint64_t FindAll(const eSDLKeyword* table, const std::vector<std::string>& words) {
    std::uint64_t sum = 0;
    for (const std::string& word : words)
        sum += static_cast<unsigned>(table->Find(word.c_str()));
    return sum;
}

std::uint64_t CountFound(const eSDLKeyword* table, const std::vector<std::string>& words) {
    std::uint64_t found = 0;
    for (const std::string& word : words)
        found += table->Find(word.c_str()) != 0;
    return found;
}

// 1000 entries cost as much as 10; the allowance is for an index that does not fit into the first-level cache.
constexpr double kGrowthAllowed = 1.2;

template <int entries>
void Add(eSuite& suite) {
    const eSDLKeyword* table = Table<entries>();
    const std::vector<std::string>& words = LookedUp(entries);
    const auto pass = [table, &words] { return FindAll(table, words); };
    suite.Add(LookUpWork(entries), kLookUps, {"eSDLKeyword::Find", eKind::Ours, 0, 0, {}, pass, {}}, "look-up");
    suite.Add("keyword look-up, cost as the table grows", kLookUps,
              {"eSDLKeyword::Find",
               eKind::Ours,
               entries == kTableSizes.front() ? 0 : kGrowthAllowed,
               0,
               {},
               pass,
               [table, &words] { return CountFound(table, words); },
               false,
               0,
               entries},
              "look-up", "entries");
}

const eContender contender(0, [](eSuite& suite) {
    Add<10>(suite);
    Add<100>(suite);
    Add<1000>(suite);
});

} // namespace
} // namespace bench
