// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

#include <qzl_io/export.h>

// The names of an enumeration's values in SDL texts.
//
//     enum class eShading { Flat, Smooth };
//     constexpr eSDLName<eShading> kShadings[] = {{"flat", eShading::Flat}, {"smooth", eShading::Smooth}};
//
//     const eShading shading = reader.GetName(kShadings);
//     writer << ident{NameOf(kShadings, shading)};
template <class T>
struct eSDLName {
    const char* name; // a word, read in any letter case
    T value;          // several names may have the same one; the first is written
};

namespace xSDL {

// An array, a vector or another range of names.
template <class T>
concept eNames = requires(const T& names) {
    { std::begin(names)->name } -> std::convertible_to<const char*>;
    std::begin(names)->value;
};

template <eNames T>
using eNamed = std::remove_cvref_t<decltype(std::begin(std::declval<const T&>())->value)>;

// Whether the words are the same, ignoring the case of ASCII letters.
QZL_IO_API bool IsSameWord(std::string_view left, std::string_view right) noexcept;

// The entry with that name; null if there is none.
template <eNames T>
auto FindName(const T& names, std::string_view name) -> decltype(&*std::begin(names)) {
    for (const auto& entry : names)
        if (IsSameWord(entry.name, name))
            return &entry;
    return nullptr;
}

} // namespace xSDL

// The first name of the value; null if it has none.
template <xSDL::eNames T>
const char* NameOf(const T& names, const xSDL::eNamed<T>& value) {
    for (const auto& entry : names)
        if (entry.value == value)
            return entry.name;
    return nullptr;
}
