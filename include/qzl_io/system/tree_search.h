// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <span>
#include <string>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/system/file_time.h>

namespace IO {

// A cursor over everything below a folder, at any depth, whose name matches one of the masks:
//
//     for (const auto& entry : IO::eTreeSearch("c:/data", {"*.sdl", "*.json"}))
//         if (entry.IsFile()) Use(entry.FullName(), entry.Size());
//
// Masks are those of eSearch and are compared with each entry's own name, never with a short name. They choose what is
// listed, not where the search goes: every folder is entered, whether its name matches or not. A folder comes before
// what is in it; otherwise the order is the system's. "." and ".." are not listed.
//
// Links are listed and never entered, even if one takes a folder's place during the search; only the folder that the
// search begins with may be a link. The search works at any depth and keeps a limited number of folders open. A folder
// that is missing or may not be read has no entries; Unread counts such folders. Nothing else is reported.
//
// On Windows the narrow search leaves out what no narrow name leads to, and what is below it; eTreeSearchW lists it.
//
// A search is used by one thread at a time. It can be moved but not copied; one that was moved from is not valid.
template <class Char, class FileName>
class QZL_IO_API eTreeSearchOf {
public:
    using eText = std::basic_string<Char>;

    // Begins. The folder's name may end in "/" or not. Without masks, nothing matches.
    eTreeSearchOf(const FileName& folder, const FileName& mask);
    eTreeSearchOf(const FileName& folder, std::initializer_list<FileName> masks);
    eTreeSearchOf(const FileName& folder, std::span<const FileName> masks);
    eTreeSearchOf(eTreeSearchOf&& other) noexcept;
    eTreeSearchOf& operator=(eTreeSearchOf&& other) noexcept;
    ~eTreeSearchOf();

    // Whether there is a current entry. Without one, the texts below are empty, the numbers 0 and the answers false.
    bool Valid() const noexcept;

    // Moves to the next entry, if there is one.
    void Next();

    // Keeps the search from entering the current folder.
    void Skip() noexcept;

    // As with eSearch, a link to a folder is a subfolder and any other link a file.
    bool IsFile() const;
    bool IsSubfolder() const;
    bool IsLink() const;

    // The entry's name: "file.txt".
    const Char* Name() const;
    // The names from the folder to the entry: "sub/file.txt".
    const eText& Path() const;
    // With the folder as it was given: "c:/data/sub/file.txt".
    FileName FullName() const;
    // The number of folders between: 0 for what is directly in the folder.
    std::size_t Depth() const;

    // The file's length in bytes, and the time when the entry was last written to. Queried at each call; zeros for an
    // entry that has vanished.
    unsigned long long Size() const;
    eFileTime ModifyTime() const;

    // The number of folders so far that could not be read, or not to their end.
    unsigned long long Unread() const;

    // Moves the search, which it refers to.
    class eIterator {
    public:
        using value_type = eTreeSearchOf;
        using difference_type = std::ptrdiff_t;

        explicit eIterator(eTreeSearchOf& movedSearch) : search(&movedSearch) {}
        eTreeSearchOf& operator*() const { return *search; }
        eIterator& operator++() { return search->Next(), *this; }
        void operator++(int) { search->Next(); }
        friend bool operator==(const eIterator& at, std::default_sentinel_t) { return !at.search->Valid(); }

    private:
        eTreeSearchOf* search;
    };
    eIterator begin() { return eIterator(*this); }
    std::default_sentinel_t end() const { return {}; }

private:
    class eWalk;

    std::unique_ptr<eWalk> walk;
};

// A recursive search with narrow names.
class eTreeSearch : public eTreeSearchOf<char, eFileName> {
public:
    using eTreeSearchOf::eTreeSearchOf;
};

// A recursive search with wide names.
class eTreeSearchW : public eTreeSearchOf<wchar_t, eFileNameW> {
public:
    using eTreeSearchOf::eTreeSearchOf;
};

} // namespace IO
