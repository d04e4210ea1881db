// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <string>

namespace xStandard {

// std::filesystem::path if its characters are of that type. Told by what it has, as its header is a large one.
template <class T, class eCharacter>
concept ePathOf = std::same_as<typename T::value_type, eCharacter> && requires(const T& path) {
    { path.native() } -> std::same_as<const std::basic_string<eCharacter>&>;
    { path.lexically_normal() } -> std::same_as<T>;
};

template <class T>
concept ePath = ePathOf<T, char> || ePathOf<T, wchar_t>;

} // namespace xStandard
