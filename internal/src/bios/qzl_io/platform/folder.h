#pragma once

#include <memory>
#include <string>

namespace IO::Platform {

/// What an entry of a folder is to those who walk a tree. A link is what leads elsewhere (a symbolic link, a junction,
/// any other folder that is a reparse point): nobody enters it.
enum class eEntryKind : unsigned char { File, Folder, Link };

/// One entry of a folder's listing. The name is in the system's own form, which only folders opened in the same way
/// understand; it is valid until the folder that listed it moves on or goes.
struct eEntry {
    eEntryKind kind = eEntryKind::File;
    const void* name = nullptr;
};

/// Tells folders apart, whatever names lead to them.
struct eFolderId {
    unsigned long long volume = 0;
    unsigned long long number = 0;

    friend constexpr bool operator==(const eFolderId&, const eFolderId&) = default;
};

/// An open folder. Everything is done within this very folder: whoever exchanges it, or one above it, for a link in the
/// meantime cannot lead it elsewhere. Names passed in may come from the listing of another folder.
class eFolder {
public:
    virtual ~eFolder() = default;

    /// The next entry other than "." and ".."; false when there are no more.
    virtual bool Next(eEntry* entry) = 0;

    /// Opens the subfolder of that name. Null when it is missing, may not be listed or has become a link.
    virtual std::unique_ptr<eFolder> Enter(const eEntry& entry) = 0;

    // Each of these gives false, or does nothing, where the system refuses.
    virtual bool RemoveFile(const eEntry& entry) = 0;
    virtual bool RemoveLink(const eEntry& entry) = 0;   ///< never what it points to
    virtual bool RemoveFolder(const eEntry& entry) = 0; ///< an empty one
    virtual bool MakeFolder(const eEntry& entry) = 0;   ///< false for an existing one too
    virtual void CopyFileTo(eFolder& target, const eEntry& entry) = 0;
    virtual void CopyLinkTo(eFolder& target, const eEntry& entry) = 0; ///< the link itself

    virtual eFolderId Id() = 0;

    /// Gives back what the system counts (a descriptor) while the walk is far below. Until woken it has no entries and
    /// refuses everything.
    virtual void Rest() = 0;
    /// Takes it again, by way of an open folder directly within. It rests on when that is no longer within this one.
    virtual void Wake(eFolder& child) = 0;
};

/// Whether a folder's own name may be a link to it.
enum class eNamedLink { Follow, Refuse };

/// Opens a folder by its name, which ends in "/". Null when it is missing, may not be listed, or is a link refused.
template <class Char>
std::unique_ptr<eFolder> OpenFolder(const Char* name, eNamedLink link);

enum class eMadeFolder { Made, Existed, Refused };

/// Makes one folder whose parent exists. Something else of that name counts as existed.
template <class Char>
eMadeFolder MakeFolder(const Char* name);

/// Removes an empty folder; false where the system refuses.
template <class Char>
bool RemoveFolder(const Char* name);

/// Removes a link to a folder, where RemoveFolder has not done so already; false for anything else.
template <class Char>
bool RemoveFolderLink(const Char* name);

} // namespace IO::Platform
