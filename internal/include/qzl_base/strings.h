// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A text as an element of a string list and as a key of an ordered map. It owns its characters. Texts compare character
// by character (bytes as unsigned numbers), case-sensitive, whatever the locale.
template <class T>
class eStringKeyBase {
public:
    eStringKeyBase() = default;
    // A null pointer is the empty text.
    eStringKeyBase(const T* characters) : text(characters ? characters : std::basic_string<T>()) {}
    eStringKeyBase(const std::basic_string<T>& characters) : text(characters) {}
    eStringKeyBase(std::basic_string<T>&& characters) noexcept : text(std::move(characters)) {}
    eStringKeyBase(std::same_as<std::basic_string_view<T>> auto characters) : text(characters) {}

    const std::basic_string<T>& str() const noexcept { return text; }
    const T* c_str() const noexcept { return text.c_str(); }
    bool empty() const noexcept { return text.empty(); }
    std::size_t size() const noexcept { return text.size(); } // in characters

    friend bool operator==(const eStringKeyBase&, const eStringKeyBase&) = default;
    // NOLINTNEXTLINE(modernize-use-nullptr): taken for one that the compiler makes of the default
    friend std::strong_ordering operator<=>(const eStringKeyBase&, const eStringKeyBase&) = default;

private:
    std::basic_string<T> text;
};

// An ordered list of texts. The flag passed to the constructor decides how AddUnique and Find compare: exactly, or
// ignoring the case of ASCII letters, whatever the locale. Indices start at 0; references and iterators are valid until
// the list next changes.
template <class T>
class eStringsBase {
public:
    using eKey = eStringKeyBase<T>;

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    explicit eStringsBase(bool caseSensitive = true) : exact(caseSensitive) {}

    // Appends the text.
    void Add(const eKey& text) { items.push_back(text); }
    void Add(eKey&& text) { items.push_back(std::move(text)); }

    // Appends the text unless the list contains an equal one. True if it was appended.
    bool AddUnique(eKey text) {
        if (Find(text) != npos)
            return false;
        items.push_back(std::move(text));
        return true;
    }

    // The index of the first text equal to the given one; npos if there is none.
    std::size_t Find(const eKey& text) const noexcept {
        for (std::size_t index = 0; index < items.size(); ++index)
            if (Equal(items[index].str(), text.str()))
                return index;
        return npos;
    }

    // Removes one text, and later ones move up. An index beyond the list does nothing.
    void Delete(std::size_t index) {
        if (index < items.size())
            items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    }

    // Removes all texts.
    void Clear() noexcept { items.clear(); }
    // Reserves room for `count` texts in all, without changing the list.
    void Reserve(std::size_t count) { items.reserve(count); }

    std::size_t size() const noexcept { return items.size(); }
    bool empty() const noexcept { return items.empty(); }

    // The index must be below size().
    const eKey& operator[](std::size_t index) const noexcept { return items[index]; }
    eKey& operator[](std::size_t index) noexcept { return items[index]; }

    auto begin() const noexcept { return items.begin(); }
    auto end() const noexcept { return items.end(); }
    auto begin() noexcept { return items.begin(); }
    auto end() noexcept { return items.end(); }

    // Whether the lists contain equal texts in the same order, compared exactly.
    friend bool operator==(const eStringsBase& left, const eStringsBase& right) { return left.items == right.items; }

private:
    using eView = std::basic_string_view<T>;

    static constexpr T Fold(T letter) noexcept {
        return letter >= T('A') && letter <= T('Z') ? static_cast<T>(letter - T('A') + T('a')) : letter;
    }

    static bool EqualFolded(eView left, eView right) noexcept {
        for (std::size_t index = 0; index < left.size(); ++index)
            if (Fold(left[index]) != Fold(right[index]))
                return false;
        return true;
    }

    bool Equal(eView left, eView right) const noexcept {
        if (left.size() != right.size())
            return false;
        return exact ? left == right : EqualFolded(left, right);
    }

    std::vector<eKey> items;
    bool exact; // case-sensitive
};

using eStringKey = eStringKeyBase<char>;
using eStringKeyW = eStringKeyBase<wchar_t>;
using eStrings = eStringsBase<char>;
using eStringsW = eStringsBase<wchar_t>;
