// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <type_traits>

// The types that the operators of streams accept.

namespace IO {

// Small character and integer types that would be written as an int by mistake. One byte is char or unsigned char.
template <class T>
concept eWrittenTooWide = std::same_as<T, signed char> || std::same_as<T, wchar_t> || std::same_as<T, char8_t> ||
    std::same_as<T, char16_t> || std::same_as<T, char32_t>;

// These, and types that would be written as a bool: functions (including manipulators of other classes) and all
// pointers except those to characters.
template <class T>
concept eNotAValue = eWrittenTooWide<T> || std::is_member_pointer_v<T> || requires(T value) {
    requires std::is_pointer_v<decltype(+value)> && !std::convertible_to<T, const char*>;
};

// The 64-bit integers of <cstdint> where they are long; they are written and read like long long.
template <class T>
concept eLongOf64Bits = sizeof(T) == 8 && (std::same_as<T, long> || std::same_as<T, unsigned long>);

template <class T, class... Types>
concept eOneOf = (std::same_as<T, Types> || ...);

// The types whose values always take the same number of bytes.
template <class T>
concept eFixedWidth = eLongOf64Bits<T> || eOneOf<T, bool, char, unsigned char, short, unsigned short, int, unsigned int,
                                                 long long, unsigned long long, float, double>;

} // namespace IO
