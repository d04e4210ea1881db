// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

#include <qzl_io/detail/path_type.h>
#include <qzl_io/export.h>

namespace IO {
class eStream;
}

// A piece of a name, shown for "c:/data/archive.tar.gz", "a.b/c" and "readme" ("-" is empty):
enum eFileNameItem : int {
    Folder = 0,           // up to and including the last "/":              "c:/data/"        "a.b/"   -
    Title = 1,            // the last component up to its first ".":        "archive"         "c"      "readme"
    Extension = 2,        // the last component from its last "." on:       ".gz"             -        -
    ExtensionOrWhole = 3, // Extension, or if none all of a text with "/":  ".gz"             "a.b/c"  -
    NameExt = 4           // the last component:                            "archive.tar.gz"  "c"      "readme"
};

// The name of a file or a folder. Its text never contains a backslash: construction and assignment turn each backslash
// into "/" and change nothing else. A text that ends in "/" names a folder; one that begins with "/" is rooted. A null
// pointer counts as the empty text.
//
// A std::filesystem::path becomes a name, and a name a path, where both have the same characters: eFileName on Linux,
// eFileNameW on Windows. <qzl_io/standard.h> makes names usable with std::format.
//
// The template implements names; eFileName and eFileNameW define their characters.
template <class T>
class QZL_IO_API eFileNameBase {
public:
    using eText = std::basic_string<T>;

    // True if the text can be a single component: it is neither empty nor "." nor "..", and every character is valid.
    virtual bool IsValidName() const;
    virtual bool IsCharValidForName(T character) const = 0;

protected:
    virtual T DelimiterWin() const = 0; // backslash
    virtual T Delimiter() const = 0;    // slash
    virtual T Dot() const = 0;
    // Compares like the C library's strncmp.
    virtual int StrNCmp(const T* left, const T* right, unsigned long long count) const = 0;

public:
    // Assigns the text and turns backslashes into slashes.
    eFileNameBase& operator=(const eFileNameBase& other) { return Set(other), *this; }
    eFileNameBase& operator=(const eText& other) { return Set(other), *this; }
    eFileNameBase& operator=(const T* other) { return Set(other), *this; }

    bool IsPath() const noexcept; // ends in "/"
    bool IsRoot() const noexcept; // begins with "/"

    // Assigns the piece to the target, which may be this name. A number that is not an eFileNameItem changes nothing.
    const eFileNameBase& GetItemTo(eFileNameBase* target, eFileNameItem item) const {
        return GetItem(&target->text, item), *this;
    }

    // Comparisons are exact, character by character.
    bool operator==(const eFileNameBase& other) const noexcept { return text == other.text; }
    bool operator!=(const eFileNameBase& other) const noexcept { return text != other.text; }
    bool operator<(const eFileNameBase& other) const noexcept { return text < other.text; }
    // With a text that is not turned into a name: no name equals a text that contains a backslash.
    friend bool operator==(const eFileNameBase& name, std::basic_string_view<T> other) noexcept {
        return name.text == other;
    }

    // The text as a path: std::filesystem::path(name).
    template <xStandard::ePathOf<T> ePath>
    explicit operator ePath() const {
        return ePath(text);
    }

    const T* c_str() const noexcept { return text.c_str(); }
    const eText& str() const noexcept { return text; }
    bool empty() const noexcept { return text.empty(); }
    unsigned long long length() const noexcept { return text.size(); } // in characters
    unsigned long long size() const noexcept { return text.size(); }
    eFileNameBase& clear() noexcept { return text.clear(), *this; }

protected:
    eFileNameBase() = default;
    eFileNameBase(const eFileNameBase&) = default; // the text unchanged
    eFileNameBase(eFileNameBase&& other) noexcept : text(std::exchange(other.text, eText())) {}
    ~eFileNameBase() = default;

    void Set(const eFileNameBase& other);
    void Set(const eText& other);
    void Set(const T* other);
    void Take(eFileNameBase&& other) noexcept; // leaves the other name empty
    void Validate() noexcept;                  // turns backslashes into slashes
    void Path();
    void Unpath() noexcept;
    void Add(const eText& other);
    void Trim(const eText& base);
    void Item(eFileNameItem item);
    void GetItem(eText* out, eFileNameItem item) const;

    // The text that stream operators read into.
    eText& Text() noexcept { return text; }

private:
    std::size_t LastComponent() const noexcept;

    eText text;
};

// A name in narrow characters.
class QZL_IO_API eFileName : public eFileNameBase<char> {
public:
    eFileName() = default;
    eFileName(const eFileName& other) : eFileNameBase(other) { Validate(); }
    eFileName(eFileName&& other) noexcept : eFileNameBase(std::move(other)) { Validate(); }
    eFileName(const eText& other) { Set(other); }
    eFileName(const char* other) { Set(other); }
    eFileName(std::same_as<std::string_view> auto other) { Set(eText(other)); }
    eFileName(const xStandard::ePathOf<char> auto& path) { Set(path.native()); }
    ~eFileName() = default;

    using eFileNameBase::operator=;
    eFileName& operator=(const eFileName& other) { return Set(other), *this; }
    eFileName& operator=(eFileName&& other) noexcept { return Take(std::move(other)), *this; }

    // Valid are the ASCII letters and digits, the characters [](){}@$%^-+._ ! and the blank; no byte from 128 up.
    bool IsCharValidForName(char character) const override;

    eFileName& clear() noexcept { return eFileNameBase::clear(), *this; }

    // Makes the name a folder: appends "/" unless the text ends in one. The empty text becomes "/".
    eFileName& Path() { return eFileNameBase::Path(), *this; }
    // Removes one "/" from the end, if there is one.
    eFileName& Unpath() noexcept { return eFileNameBase::Unpath(), *this; }
    eFileName GetPath() const {
        eFileName path(*this);
        path.Path();
        return path;
    }
    eFileName GetUnpath() const {
        eFileName name(*this);
        name.Unpath();
        return name;
    }

    // Appends the other text unchanged, without a "/" in between.
    eFileName& Add(const eFileName& other) { return eFileNameBase::Add(other.str()), *this; }
    eFileName GetAdd(const eFileName& other) const {
        eFileName sum(*this);
        sum.Add(other);
        return sum;
    }

    // Removes the base from the beginning, if the text begins with it (case-sensitive).
    eFileName& Trim(const eFileName& base) { return eFileNameBase::Trim(base.str()), *this; }

    // Replaces the text by a piece of it, unchanged. A number that is not an eFileNameItem gives the empty text.
    eFileName& Item(eFileNameItem item) { return eFileNameBase::Item(item), *this; }
    eFileName GetItem(eFileNameItem item) const {
        eFileName piece;
        GetItemTo(&piece, item);
        return piece;
    }

protected:
    char DelimiterWin() const override;
    char Delimiter() const override;
    char Dot() const override;
    int StrNCmp(const char* left, const char* right, unsigned long long count) const override;

private:
    friend QZL_IO_API IO::eStream& operator>>(IO::eStream& stream, eFileName& name);
};

// A name in wide characters.
class QZL_IO_API eFileNameW : public eFileNameBase<wchar_t> {
public:
    eFileNameW() = default;
    eFileNameW(const eFileNameW& other) : eFileNameBase(other) { Validate(); }
    eFileNameW(eFileNameW&& other) noexcept : eFileNameBase(std::move(other)) { Validate(); }
    eFileNameW(const eText& other) { Set(other); }
    eFileNameW(const wchar_t* other) { Set(other); }
    eFileNameW(std::same_as<std::wstring_view> auto other) { Set(eText(other)); }
    eFileNameW(const xStandard::ePathOf<wchar_t> auto& path) { Set(path.native()); }
    ~eFileNameW() = default;

    using eFileNameBase::operator=;
    eFileNameW& operator=(const eFileNameW& other) { return Set(other), *this; }
    eFileNameW& operator=(eFileNameW&& other) noexcept { return Take(std::move(other)), *this; }

    // Valid is every character except \ / : * ? " < > and |.
    bool IsCharValidForName(wchar_t character) const override;

    eFileNameW& clear() noexcept { return eFileNameBase::clear(), *this; }

    // Makes the name a folder: appends "/" unless the text ends in one. The empty text becomes "/".
    eFileNameW& Path() { return eFileNameBase::Path(), *this; }
    // Removes one "/" from the end, if there is one.
    eFileNameW& Unpath() noexcept { return eFileNameBase::Unpath(), *this; }
    eFileNameW GetPath() const {
        eFileNameW path(*this);
        path.Path();
        return path;
    }
    eFileNameW GetUnpath() const {
        eFileNameW name(*this);
        name.Unpath();
        return name;
    }

    // Appends the other text unchanged, without a "/" in between.
    eFileNameW& Add(const eFileNameW& other) { return eFileNameBase::Add(other.str()), *this; }
    eFileNameW GetAdd(const eFileNameW& other) const {
        eFileNameW sum(*this);
        sum.Add(other);
        return sum;
    }

    // Removes the base from the beginning, if the text begins with it (case-sensitive).
    eFileNameW& Trim(const eFileNameW& base) { return eFileNameBase::Trim(base.str()), *this; }

    // Replaces the text by a piece of it, unchanged. A number that is not an eFileNameItem gives the empty text.
    eFileNameW& Item(eFileNameItem item) { return eFileNameBase::Item(item), *this; }
    eFileNameW GetItem(eFileNameItem item) const {
        eFileNameW piece;
        GetItemTo(&piece, item);
        return piece;
    }

protected:
    wchar_t DelimiterWin() const override;
    wchar_t Delimiter() const override;
    wchar_t Dot() const override;
    int StrNCmp(const wchar_t* left, const wchar_t* right, unsigned long long count) const override;
};

// Writes the text as a const char*.
QZL_IO_API IO::eStream& operator<<(IO::eStream& stream, const eFileName& name);
// Reads the text as a std::string. Backslashes remain until the name is next copied or assigned.
QZL_IO_API IO::eStream& operator>>(IO::eStream& stream, eFileName& name);
// Writes the characters of a std::filesystem::path as a std::string or a std::wstring.
template <std::same_as<IO::eStream> eTarget, xStandard::ePath T>
eTarget& operator<<(eTarget& stream, const T& path) {
    return stream << path.native();
}

// Writes the text to a stream of the standard library.
template <class T, class eTraits>
std::basic_ostream<T, eTraits>& operator<<(std::basic_ostream<T, eTraits>& out, const eFileNameBase<T>& name) {
    return out << name.str();
}

template <>
struct std::hash<eFileName> {
    std::size_t operator()(const eFileName& name) const noexcept { return std::hash<std::string>()(name.str()); }
};
template <>
struct std::hash<eFileNameW> {
    std::size_t operator()(const eFileNameW& name) const noexcept { return std::hash<std::wstring>()(name.str()); }
};
