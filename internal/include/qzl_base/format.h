// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <qzl_base/export.h>

// A text with placeholders for arguments:
//     std::string text = format("%1% - open error!") % name;
//
// "%1%" to "%9%" stand for the first to the ninth argument and may occur any number of times, in any order. A
// placeholder without an argument, an argument without a placeholder, and any other use of "%" ("%%", "%0%", "100%")
// change nothing. Arguments are inserted unchanged: what looks like a placeholder in an argument is not replaced.
class QZL_BASE_API format {
public:
    explicit format(const char* pattern); // null is empty
    explicit format(std::string pattern);

    // The text with the next argument; this one is unchanged. Numbers are inserted as decimal texts (floats as the
    // shortest text that keeps their value), values of plain enumerations as their numbers, wide texts as UTF-8, a bool
    // as 1 or 0, a null text as nothing, and whatever has c_str() as that text.
    [[nodiscard]] friend format operator%(format text, const std::string& argument) {
        return std::move(text.Add(argument));
    }
    [[nodiscard]] friend format operator%(format text, std::string_view argument) {
        return std::move(text.Add(std::string(argument)));
    }
    [[nodiscard]] friend format operator%(format text, const char* argument) {
        return std::move(text.Add(argument ? std::string(argument) : std::string()));
    }
    [[nodiscard]] friend format operator%(format text, const std::wstring& argument) {
        return std::move(text.AddWide(argument));
    }
    [[nodiscard]] friend format operator%(format text, const wchar_t* argument) {
        return std::move(text.AddWide(argument ? std::wstring_view(argument) : std::wstring_view()));
    }
    [[nodiscard]] friend format operator%(format text, char argument) {
        return std::move(text.Add(std::string(1, argument)));
    }
    template <std::integral T>
    [[nodiscard]] friend format operator%(format text, T argument) {
        if constexpr (std::signed_integral<T>)
            return std::move(text.AddSigned(argument));
        else
            return std::move(text.AddUnsigned(argument));
    }
    template <class T>
    requires(std::is_enum_v<T>&& std::convertible_to<T, long long>) [[nodiscard]] friend format operator%(format text,
                                                                                                          T argument) {
        return std::move(text) % +static_cast<std::underlying_type_t<T>>(argument);
    }
    [[nodiscard]] friend format operator%(format text, float argument) { return std::move(text.AddFloat(argument)); }
    [[nodiscard]] friend format operator%(format text, double argument) { return std::move(text.AddDouble(argument)); }
    template <class T>
    requires requires(const T& value) {
        { value.c_str() } -> std::same_as<const char*>;
    }
    [[nodiscard]] friend format operator%(format text, const T& argument) {
        return std::move(text.Add(argument.c_str()));
    }
    template <class T>
    requires requires(const T& value) {
        { value.c_str() } -> std::same_as<const wchar_t*>;
    }
    [[nodiscard]] friend format operator%(format text, const T& argument) {
        return std::move(text.AddWide(argument.c_str()));
    }

    // The text with the arguments so far in their places.
    [[nodiscard]] std::string str() const;
    operator std::string() const { return str(); }

private:
    format& Add(std::string argument);
    format& AddWide(std::wstring_view argument);
    format& AddSigned(long long argument);
    format& AddUnsigned(unsigned long long argument);
    format& AddFloat(float argument);
    format& AddDouble(double argument);

    std::string pattern;
    std::vector<std::string> arguments;
};
