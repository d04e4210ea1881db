#pragma once

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
// The pattern is the folder's text and the mask's, joined as they stand, so the folder ends in "/": "dir" with "*.*"
// is the pattern "dir*.*" and finds the neighbours whose names begin with "dir". Only the last component may hold wild
// cards. The order is the system's; "." and ".." come like any other entry. No operation reports an error: a folder
// that is missing or may not be read has no entries.
//
// A mask means the same on both systems; ASCII letter case is ignored, on Windows all letter case. A "?" stands for
// one character, a code point on Linux. On Windows an entry is found by its short name too, on volumes that keep such
// names: "*.htm" then finds "page.html", whose short name is "PAGE~1.HTM".
//
// | mask    | matches                                                                        |
// |---------|--------------------------------------------------------------------------------|
// | "*.*"   | every name, "*" likewise; so "a*.*" is every name that begins with "a"          |
// | "*.txt" | names whose last extension is ".txt"                                           |
// | "a.*"   | "a" and every name that begins with "a."                                       |
// | "*."    | names without a dot                                                            |
// | "?"     | one character other than a dot; none before a dot or the end: "a??.c" has "a.c" |
// | "?a."   | as "?a": dots and blanks at the end count for nothing, save for the dot of "*."  |
// | "a."    | "a." and nothing else: a mask without wild cards is a name                      |
// | ""      | nothing                                                                        |
//
// The masks "." and ".." find the folder and its parent: on Linux by these names, on Windows by those that they have.
//
// A link to a folder is a subfolder, as Windows lists it, any other link a file; size and time are the link's own.
// Sizes of anything but files are 0. On Linux, size and time are those of the moment when one of them is first asked
// for or the search is copied: ask before the entry is deleted, renamed or written to. They are 0 for an entry that
// has vanished since it was listed.
//
// Copies have the same state and share the listing, so Next on one of them moves on for all. It is released once, by
// its last owner. A search is used by one thread at a time, and so are its copies taken together. A search that was
// moved from is not valid and has no entry; it may still be asked, ended, assigned to and begun anew.
template <class Char, class FileName>
class QZL_IO_API eSearchOf {
public:
    eSearchOf(const FileName& folder, const FileName& mask); // begins
    eSearchOf(const eSearchOf& other);
    eSearchOf(eSearchOf&& other) noexcept;
    eSearchOf& operator=(const eSearchOf& other);
    eSearchOf& operator=(eSearchOf&& other) noexcept;
    ~eSearchOf();

    // Starts anew; what an earlier search held is released.
    void Begin(const FileName& folder, const FileName& mask);

    // Moves on; Valid tells whether there was another entry. Without one the last entry's name and facts stay.
    void Next();

    // Releases the listing and forgets the entry, but leaves Valid as it was: end a search after Valid has become
    // false, or do not ask it afterwards.
    void End();

    // Whether there is a current entry.
    bool Valid() const { return valid; }

    bool IsFile() const;

    // True for a folder other than "." and "..".
    bool IsSubfolder() const;

    // True for an entry that leads elsewhere: a symbolic link, on Windows a junction, too. It is a file or a subfolder
    // besides; a walk that goes down into subfolders leaves the tree, or never ends, where it goes down into links.
    bool IsLink() const;

    // The entry's name alone; empty without an entry. Valid until the search moves on.
    const Char* Name() const;

    // The file's length in bytes.
    unsigned long long Size() const;

    // When the entry was last written to.
    eFileTime ModifyTime() const;

private:
    class eCursor;

    std::unique_ptr<eCursor> cursor; // null: no listing and no entry
    bool valid = false;
};

// Search over narrow names. On Windows these lead back to the entry and hold none of / \ : * ? " < > | : where the
// code page lacks a character of the name, or where one of its bytes is a back slash, Name gives the short name; on
// volumes that keep none the entry is left out. eSearchW shows every entry.
class eSearch : public eSearchOf<char, eFileName> {
public:
    using eSearchOf::eSearchOf;
};

// Search over wide names. On Linux a byte of a name that is not UTF-8 appears as U+DC00 plus its value and turns back
// into that byte wherever such a name is used.
class eSearchW : public eSearchOf<wchar_t, eFileNameW> {
public:
    using eSearchOf::eSearchOf;
};

} // namespace IO
