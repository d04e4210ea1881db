// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <array>
#include <string>
#include <vector>

namespace bench {

inline constexpr std::array<int, 3> kTableSizes{10, 100, 1000};
inline constexpr size_t kLookUps = 4096;

// The names of a table with `entries` entries, as a data format has them: 9 to 15 letters in every table, all
// different.
const std::vector<std::string>& TableNames(int entries);

// The words to look up in that table: three in four are in the table, every other one of these in different letter
// case.
const std::vector<std::string>& LookedUp(int entries);

std::string LookUpWork(int entries);

} // namespace bench
