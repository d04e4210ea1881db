// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

#include "platform/copy_watch.h"
#include "platform/pure/answer.h"
#include "platform/pure/entry_kind.h"
#include "platform/pure/file_id.h"

namespace IO::Platform {

// One entry of a folder's listing. The name is in the system's own form, which only folders opened in the same way
// understand. It is valid until the folder that listed it moves on or is closed.
struct eEntry {
    eEntryKind kind = eEntryKind::File;
    const void* name = nullptr;
};

// An entry's name as text. Always possible for wide names. A narrow name that would not lead back to the entry has a
// "?" for each character that the code page lacks, and the result is false.
template <class Char>
bool EntryText(const eEntry& entry, std::basic_string<Char>* text);

// What else the system knows about an entry.
struct eEntryFacts {
    bool isFolder = false;           // or a link to one
    unsigned long long size = 0;     // in bytes; 0 for anything but a file
    unsigned long long modified = 0; // in steps of 100 ns since 1601-01-01 UTC
};

// Whether a name may be a link to the thing meant.
enum class eNamedLink { Follow, Refuse };

// An open folder. All operations act on this very folder: replacing it, or a folder above it, by a link cannot lead
// them elsewhere. Names passed in may come from the listing of another folder. After an answer other than Done,
// TakeRefusal tells the system's error number.
class eFolder {
public:
    virtual ~eFolder() = default;

    // Gets the next entry other than "." and ".."; false if there are no more.
    virtual bool Next(eEntry* entry) = 0;

    // After the last entry: whether the system has listed everything. If not, TakeRefusal tells why.
    virtual bool IsListedWhole() = 0;

    // The facts of an entry of this folder; those of an entry that has vanished are empty.
    virtual eEntryFacts Facts(const eEntry& entry) = 0;

    // The name by which a caller reaches the entry that this folder has listed last; a narrow search leaves an entry
    // out if this is false.
    virtual bool ReachableName(const eEntry& entry, std::string* name) = 0;

    // Opens the subfolder of that name. Refused if it is missing, may not be listed or has become a link.
    virtual eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) = 0;

    virtual eAnswer RemoveFile(const eEntry& entry) = 0;
    virtual eAnswer RemoveLink(const eEntry& entry) = 0;   // never what the link points to
    virtual eAnswer RemoveFolder(const eEntry& entry) = 0; // only an empty one
    // Creates a subfolder and opens it. It gets the permissions of the source's entry as far as the system gives them
    // to new folders. Its owner may fill it in any case: permissions that the source's owner lacks are removed when the
    // opened folder is destroyed. Refused for an existing folder, too.
    virtual eAnswer Make(const eEntry& entry, eFolder& source, std::unique_ptr<eFolder>* opened) = 0;
    // Likewise removes permissions at the end from a folder that was created by its name, to be like the source.
    virtual void EndLike(eFolder& source) = 0;
    // Copies a file's content. With Follow the entry is a link, and the file that it points to is copied. Without a
    // complete copy there is no target.
    virtual eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link, const eCopyWatch& watch) = 0;
    virtual eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) = 0; // the link itself

    // The identity, with the final name if the folder has no number; empty if the system tells nothing.
    virtual const eFileId& Id() = 0;

    // Releases the limited resource of the system (a descriptor) while the walk is far below. Until woken, the folder
    // has no entries and refuses every request.
    virtual void Rest() = 0;
    // Opens the folder again, through an open folder directly in it. The folder stays at rest if that one is no longer
    // in it.
    virtual void Wake(eFolder& child) = 0;
};

// The functions by name note the reason of a refusal, too.

// Opens a folder by its name, which ends in "/". Refused if it is missing, may not be listed, or is a link although
// `link` refuses links.
template <class Char>
eAnswer OpenFolder(const Char* name, eNamedLink link, std::unique_ptr<eFolder>* opened);

// Creates one folder whose parent exists, with the permissions of `like` as in Make; if `like` is null, with those of
// new folders. Also Done if something of that name exists.
template <class Char>
eAnswer MakeFolder(const Char* name, eFolder* like);

// Removes an empty folder.
template <class Char>
eAnswer RemoveFolder(const Char* name);

// Removes a link to a folder, if RemoveFolder has not done so already; false for anything else.
template <class Char>
bool RemoveFolderLink(const Char* name);

} // namespace IO::Platform
