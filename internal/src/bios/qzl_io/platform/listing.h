#pragma once

#include <memory>
#include <string>

namespace IO::Platform {

// What a listing tells of one entry.
template <class Char>
struct eListedEntry {
    std::basic_string<Char> name; // up to its first NUL; what is after it is room for longer names

    bool kindPending = false; // the next two are still to be asked for
    bool isFolder = false;    // or a link to one
    bool isLink = false;      // what leads elsewhere

    bool detailsPending = false;     // the next two are still to be asked for
    unsigned long long size = 0;     // in bytes; 0 for anything but a file
    unsigned long long modified = 0; // in steps of 100 ns since 1601-01-01 UTC
};

// An open listing of one folder. The last owner releases it.
class eListing;

// Begins to list what matches a pattern and tells the first entry. Null when there is none.
template <class Char>
std::shared_ptr<eListing> FirstEntry(const Char* pattern, eListedEntry<Char>* entry);

// Tells the next entry; false, and what was told before left as it is, when there are no more.
template <class Char>
bool NextEntry(eListing& listing, eListedEntry<Char>* entry);

// Ask for what is pending. What has vanished is a file without size or time.
template <class Char>
void CompleteKind(eListing& listing, eListedEntry<Char>* entry);
template <class Char>
void CompleteDetails(eListing& listing, eListedEntry<Char>* entry);

} // namespace IO::Platform
