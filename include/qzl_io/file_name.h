#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include <qzl_io/export.h>

namespace IO {
class eStream;
}

// A piece of a name, by the examples "c:/data/archive.tar.gz", "a.b/c" and "readme" ("-" is empty):
enum eFileNameItem : int {
    Folder = 0,           // up to and including the last "/":              "c:/data/"        "a.b/"   -
    Title = 1,            // the last component up to its first ".":        "archive"         "c"      "readme"
    Extension = 2,        // the last component from its last "." on:       ".gz"             -        -
    ExtensionOrWhole = 3, // the same, but all where "/" stands before ".": ".gz"             "a.b/c"  -
    NameExt = 4           // the last component:                            "archive.tar.gz"  "c"      "readme"
};

// The name of a file or a folder. Its text never holds a back slash: construction and assignment turn each into "/",
// and change nothing else. A text that ends in "/" names a folder, one that begins with "/" is rooted. Values are held
// and copied as such; a null pointer counts as the empty text.
//
// The template holds the logic; eFileName and eFileNameW say what their characters are.
template <class T>
class QZL_IO_API eFileNameBase {
public:
    using eText = std::basic_string<T>;

    // True for a text that can be a single component: neither empty nor "." nor "..", and every character is valid.
    virtual bool IsValidName() const;
    virtual bool IsCharValidForName(T character) const = 0;

protected:
    virtual T DelimiterWin() const = 0; // back slash
    virtual T Delimiter() const = 0;    // slash
    virtual T Dot() const = 0;
    // As the C library's strncmp.
    virtual int StrNCmp(const T* left, const T* right, unsigned long long count) const = 0;

public:
    // Assigns and turns back slashes into slashes.
    eFileNameBase& operator=(const eFileNameBase& other) { return Set(other), *this; }
    eFileNameBase& operator=(const eText& other) { return Set(other), *this; }
    eFileNameBase& operator=(const T* other) { return Set(other), *this; }

    bool IsPath() const noexcept; // ends in "/"
    bool IsRoot() const noexcept; // begins with "/"

    // Puts the piece into the target's text, which may be this one's; another number than those above leaves it as it
    // was.
    void GetItemTo(eFileNameBase* target, eFileNameItem item) const { GetItem(&target->text, item); }

    // Exactly, character by character.
    bool operator==(const eFileNameBase& other) const noexcept { return text == other.text; }
    bool operator!=(const eFileNameBase& other) const noexcept { return text != other.text; }
    bool operator<(const eFileNameBase& other) const noexcept { return text < other.text; }

    const T* c_str() const noexcept { return text.c_str(); }
    const eText& str() const noexcept { return text; }
    bool empty() const noexcept { return text.empty(); }
    unsigned long long length() const noexcept { return text.size(); } // in characters
    unsigned long long size() const noexcept { return text.size(); }
    void clear() noexcept { text.clear(); }

protected:
    eFileNameBase() = default;
    eFileNameBase(const eFileNameBase&) = default; // the text as it stands
    eFileNameBase(eFileNameBase&& other) noexcept : text(std::exchange(other.text, eText())) {}
    ~eFileNameBase() = default;

    void Set(const eFileNameBase& other);
    void Set(const eText& other);
    void Set(const T* other);
    void Take(eFileNameBase&& other) noexcept; // leaves the other empty
    void Validate() noexcept;                  // turns back slashes into slashes
    void Path();
    void Unpath() noexcept;
    void Add(const eText& other);
    void Trim(const eText& base);
    void Item(eFileNameItem item);
    void GetItem(eText* out, eFileNameItem item) const;

    // What stream operators read into.
    eText& Text() noexcept { return text; }

private:
    std::size_t LastComponent() const noexcept;

    eText text;
};

// A name in bytes.
class QZL_IO_API eFileName : public eFileNameBase<char> {
public:
    eFileName() = default;
    eFileName(const eFileName& other) : eFileNameBase(other) { Validate(); }
    eFileName(eFileName&& other) noexcept = default; // the text as it stands
    eFileName(const eText& other) { Set(other); }
    eFileName(const char* other) { Set(other); }
    ~eFileName() = default;

    using eFileNameBase::operator=;
    eFileName& operator=(const eFileName& other) { return Set(other), *this; }
    eFileName& operator=(eFileName&& other) noexcept { return Take(std::move(other)), *this; }

    // Valid are the ASCII letters and digits and the characters [](){}@$%^-+._ ! and blank; no byte from 128 up.
    bool IsCharValidForName(char character) const override;

    // Makes it a folder: appends "/" unless the text ends in one. The empty text becomes "/".
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

    // Appends the other text as it stands: no "/" is put in between.
    eFileName& Add(const eFileName& other) { return eFileNameBase::Add(other.str()), *this; }
    eFileName GetAdd(const eFileName& other) const {
        eFileName sum(*this);
        sum.Add(other);
        return sum;
    }

    // Removes the base from the beginning, if the text begins with it (letter case counts).
    eFileName& Trim(const eFileName& base) { return eFileNameBase::Trim(base.str()), *this; }

    // Replaces the text by a piece of it, as it stands; another number than those of eFileNameItem gives the empty
    // text.
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
    eFileNameW(eFileNameW&& other) noexcept = default; // the text as it stands
    eFileNameW(const eText& other) { Set(other); }
    eFileNameW(const wchar_t* other) { Set(other); }
    ~eFileNameW() = default;

    using eFileNameBase::operator=;
    eFileNameW& operator=(const eFileNameW& other) { return Set(other), *this; }
    eFileNameW& operator=(eFileNameW&& other) noexcept { return Take(std::move(other)), *this; }

    // Valid is every character but \ / : * ? " < > and |.
    bool IsCharValidForName(wchar_t character) const override;

    // Makes it a folder: appends "/" unless the text ends in one. The empty text becomes "/".
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

    // Appends the other text as it stands: no "/" is put in between.
    eFileNameW& Add(const eFileNameW& other) { return eFileNameBase::Add(other.str()), *this; }
    eFileNameW GetAdd(const eFileNameW& other) const {
        eFileNameW sum(*this);
        sum.Add(other);
        return sum;
    }

    // Removes the base from the beginning, if the text begins with it (letter case counts).
    eFileNameW& Trim(const eFileNameW& base) { return eFileNameBase::Trim(base.str()), *this; }

    // Replaces the text by a piece of it, as it stands; another number than those of eFileNameItem gives the empty
    // text.
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

// The text as the stream writes a const char*.
QZL_IO_API IO::eStream& operator<<(IO::eStream& stream, const eFileName& name);
// The text as the stream reads a std::string. Back slashes stay until the value is next assigned.
QZL_IO_API IO::eStream& operator>>(IO::eStream& stream, eFileName& name);
