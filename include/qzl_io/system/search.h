// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/system/file_time.h>

namespace IO {

// A cursor over the entries of one folder that match a mask:
//
//     for (IO::eSearch search("c:/data/", "*.*"); search.Valid(); search.Next())
//         if (search.IsFile()) Use(search.Name(), search.Size());
//
//     IO::eSearch search("c:/data/", "*.*");
//     for (const auto& entry : search)    // the search itself, at each of its entries from the current one on
//         if (entry.IsFile()) Use(entry.Name(), entry.Size());
//
// The pattern consists of the folder and the mask, joined as they are, so the folder must end in "/": "dir" with "*.*"
// is the pattern "dir*.*", which finds the entries whose names begin with "dir". Only the last component may contain
// wild cards. The order is the system's; "." and ".." are listed like other entries. No operation reports an error: a
// folder that is missing or may not be read has no entries.
//
// A mask means the same on both systems; ASCII letter case is ignored, on Windows all letter case. A "?" stands for one
// character, on Linux a code point. On Windows volumes that keep short names, an entry is found by its short name, too:
// "*.htm" then finds "page.html", whose short name is "PAGE~1.HTM".
//
// | mask    | matches                                                                        |
// |---------|--------------------------------------------------------------------------------|
// | "*.*"   | every name, as does "*"; so "a*.*" is every name that begins with "a"           |
// | "*.txt" | names whose last extension is ".txt"                                           |
// | "a.*"   | "a" and every name that begins with "a."                                       |
// | "*."    | names without a dot                                                            |
// | "?"     | one character other than a dot; none before a dot or the end: "a??.c" has "a.c" |
// | "?a."   | as "?a": dots and blanks at the end do not count, except for the dot of "*."    |
// | "a."    | "a." and nothing else: a mask without wild cards is a name                      |
// | ""      | nothing                                                                        |
//
// The masks "." and ".." find the folder and its parent: on Linux by these names, on Windows by their own names.
//
// A link to a folder is a subfolder, as Windows lists it, and any other link is a file; size and time are those of the
// link itself. Sizes of anything but files are 0. On Linux, size and time are queried when one of them is first called
// or the search is copied: call them before the entry is deleted, renamed or written to. They are 0 for an entry that
// has vanished since it was listed.
//
// Copies have the same state and share the listing, so Next on one of them moves it for all. The last owner releases
// it. A search and its copies together are used by one thread at a time. A search that was moved from is not valid and
// has no entry; it may still be queried, ended, assigned to and started again.
template <class Char, class FileName>
class QZL_IO_API eSearchOf {
public:
    eSearchOf(const FileName& folder, const FileName& mask); // begins
    eSearchOf(const eSearchOf& other);
    eSearchOf(eSearchOf&& other) noexcept;
    eSearchOf& operator=(const eSearchOf& other);
    eSearchOf& operator=(eSearchOf&& other) noexcept;
    ~eSearchOf();

    // Starts a new search and releases an earlier one.
    void Begin(const FileName& folder, const FileName& mask);

    // Moves to the next entry; Valid tells whether there is one. If not, the last entry's name and facts remain.
    void Next();

    // Releases the listing and forgets the entry, but leaves Valid unchanged: call End after Valid has become false, or
    // do not call Valid afterwards.
    void End();

    // Whether there is a current entry.
    bool Valid() const { return valid; }

    bool IsFile() const;

    // True for a folder other than "." and "..".
    bool IsSubfolder() const;

    // True for an entry that leads elsewhere: a symbolic link, on Windows also a junction. It is also a file or a
    // subfolder. A walk that enters links leaves the tree, or never ends.
    bool IsLink() const;

    // The entry's name without the folder; empty without an entry. Valid until the search moves on.
    const Char* Name() const;

    // The file's length in bytes.
    unsigned long long Size() const;

    // The time when the entry was last written to.
    eFileTime ModifyTime() const;

    // Moves the search, which it refers to.
    class eIterator {
    public:
        using value_type = eSearchOf;
        using difference_type = std::ptrdiff_t;

        explicit eIterator(eSearchOf& movedSearch) : search(&movedSearch) {}
        const eSearchOf& operator*() const { return *search; }
        eIterator& operator++() { return search->Next(), *this; }
        void operator++(int) { search->Next(); }
        friend bool operator==(const eIterator& at, std::default_sentinel_t) { return !at.search->Valid(); }

    private:
        eSearchOf* search;
    };
    eIterator begin() { return eIterator(*this); }
    std::default_sentinel_t end() const { return {}; }

private:
    class eCursor;

    std::unique_ptr<eCursor> cursor; // null: no listing and no entry
    bool valid = false;
};

// A search with narrow names. On Windows each name leads back to its entry and contains none of / \ : * ? " < > | : if
// the code page lacks a character of the name, or if one of its bytes is a backslash, Name returns the short name; on
// volumes without short names the entry is left out. eSearchW lists every entry.
class eSearch : public eSearchOf<char, eFileName> {
public:
    using eSearchOf::eSearchOf;
};

// A search with wide names. On Linux a byte of a name that is not UTF-8 appears as U+DC00 plus its value, and becomes
// that byte again wherever such a name is used.
class eSearchW : public eSearchOf<wchar_t, eFileNameW> {
public:
    using eSearchOf::eSearchOf;
};

} // namespace IO
