#pragma once

#include <memory>

#include "platform/pure/answer.h"
#include "platform/pure/entry_kind.h"
#include "platform/pure/file_id.h"

namespace IO::Platform {

// One entry of a folder's listing. The name is in the system's own form, which only folders opened in the same way
// understand; it is valid until the folder that listed it moves on or goes.
struct eEntry {
    eEntryKind kind = eEntryKind::File;
    const void* name = nullptr;
};

// Whether a name may be a link to what is meant.
enum class eNamedLink { Follow, Refuse };

// An open folder. Everything is done within this very folder: whoever exchanges it, or one above it, for a link in the
// meantime cannot lead it elsewhere. Names passed in may come from the listing of another folder.
class eFolder {
public:
    virtual ~eFolder() = default;

    // The next entry other than "." and ".."; false when there are no more.
    virtual bool Next(eEntry* entry) = 0;

    // Opens the subfolder of that name. Refused when it is missing, may not be listed or has become a link.
    virtual eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) = 0;

    virtual eAnswer RemoveFile(const eEntry& entry) = 0;
    virtual eAnswer RemoveLink(const eEntry& entry) = 0;   // never what it points to
    virtual eAnswer RemoveFolder(const eEntry& entry) = 0; // an empty one
    // Makes a subfolder, with the permissions of the source's entry as far as the system gives them to new folders,
    // and opens it. Its owner may fill it all the same: what the source's owner may not do ends with the opened
    // folder. Refused for an existing one, too.
    virtual eAnswer Make(const eEntry& entry, eFolder& source, std::unique_ptr<eFolder>* opened) = 0;
    // The same end for a folder that was made by its name, like the source.
    virtual void EndLike(eFolder& source) = 0;
    // Copies a file's content; with Follow the entry is a link, and a file behind it is meant. Nobody asks whether it
    // worked, only whether it is Busy.
    virtual eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link) = 0;
    virtual eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) = 0; // the link itself

    // With the final name where it has no number; empty when the system tells nothing.
    virtual const eFileId& Id() = 0;

    // Gives back what the system counts (a descriptor) while the walk is far below. Until woken it has no entries and
    // refuses everything.
    virtual void Rest() = 0;
    // Takes it again, by way of an open folder directly within. It rests on when that is no longer within this one.
    virtual void Wake(eFolder& child) = 0;
};

// Opens a folder by its name, which ends in "/". Refused when it is missing, may not be listed, or is a link refused.
template <class Char>
eAnswer OpenFolder(const Char* name, eNamedLink link, std::unique_ptr<eFolder>* opened);

// Makes one folder whose parent exists, with the permissions of `like` as Make gives them; of none, with those that
// new folders have. Done, too, when something of that name exists.
template <class Char>
eAnswer MakeFolder(const Char* name, eFolder* like);

// Removes an empty folder.
template <class Char>
eAnswer RemoveFolder(const Char* name);

// Removes a link to a folder, where RemoveFolder has not done so already; false for anything else.
template <class Char>
bool RemoveFolderLink(const Char* name);

} // namespace IO::Platform
