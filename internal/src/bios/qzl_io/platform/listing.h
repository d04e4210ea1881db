// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

namespace IO::Platform {

// The facts that a listing gives about one entry.
template <class Char>
struct eListedEntry {
    std::basic_string<Char> name; // up to its first NUL; the rest is room for longer names

    bool kindPending = false; // the next two have yet to be queried
    bool isFolder = false;    // or a link to one
    bool isLink = false;      // the entry leads elsewhere

    bool detailsPending = false;     // the next two have yet to be queried
    unsigned long long size = 0;     // in bytes; 0 for anything but a file
    unsigned long long modified = 0; // in steps of 100 ns since 1601-01-01 UTC
};

// An open listing of one folder. The last owner releases it.
class eListing;

// Begins to list the matches of a pattern and gets the first entry. Null if there is none.
template <class Char>
std::shared_ptr<eListing> FirstEntry(const Char* pattern, eListedEntry<Char>* entry);

// Gets the next entry. False, with the entry unchanged, if there are no more.
template <class Char>
bool NextEntry(eListing& listing, eListedEntry<Char>* entry);

// Query what is pending. An entry that has vanished is a file without size or time.
template <class Char>
void CompleteKind(eListing& listing, eListedEntry<Char>* entry);
template <class Char>
void CompleteDetails(eListing& listing, eListedEntry<Char>* entry);

} // namespace IO::Platform
