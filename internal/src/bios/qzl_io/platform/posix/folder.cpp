#include "../folder.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "descriptor.h"
#include "entries.h"
#include "file_copy.h"
#include "native_name.h"

namespace IO::Platform {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr mode_t newFolderMode = 0777;

eDescriptor OpenDescriptor(int parent, const char* name, int flags) {
    return eDescriptor(Uninterrupted([&] { return ::openat(parent, name, folderFlags | flags); }));
}

eAnswer Told(bool done) {
    return done ? eAnswer::Done : eAnswer::Refused;
}

const char* NameOf(const eEntry& entry) {
    return static_cast<const char*>(entry.name);
}

/// Lists itself as a whole at the first Next: what is removed or added meanwhile cannot confuse the listing, and it can
/// rest from then on.
class ePosixFolder final : public eFolder {
public:
    explicit ePosixFolder(eDescriptor opened) : folder(std::move(opened)) {}

    bool Next(eEntry* entry) override {
        if (!folder.IsOpen())
            return false;
        if (!listed)
            List();
        if (position == listing.size())
            return false;
        entry->kind = static_cast<eEntryKind>(listing[position]);
        const char* name = listing.data() + position + 1;
        entry->name = name;
        position += std::strlen(name) + 2;
        return true;
    }

    static eAnswer Open(int parent, const char* name, eNamedLink link, std::unique_ptr<eFolder>* opened) {
        eDescriptor descriptor = OpenDescriptor(parent, name, link == eNamedLink::Refuse ? O_NOFOLLOW : 0);
        if (!descriptor.IsOpen())
            return eAnswer::Refused;
        *opened = std::make_unique<ePosixFolder>(std::move(descriptor));
        return eAnswer::Done;
    }

    eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) override {
        return Open(folder.Get(), NameOf(entry), eNamedLink::Refuse, opened);
    }

    eAnswer RemoveFile(const eEntry& entry) override { return Told(::unlinkat(folder.Get(), NameOf(entry), 0) == 0); }
    eAnswer RemoveLink(const eEntry& entry) override { return RemoveFile(entry); }
    eAnswer RemoveFolder(const eEntry& entry) override {
        return Told(::unlinkat(folder.Get(), NameOf(entry), AT_REMOVEDIR) == 0);
    }
    eAnswer MakeFolder(const eEntry& entry) override {
        return Told(::mkdirat(folder.Get(), NameOf(entry), newFolderMode) == 0);
    }

    eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link) override {
        CopyNewFile({folder.Get(), NameOf(entry)}, {Descriptor(target), NameOf(entry)}, link);
        return eAnswer::Done;
    }

    eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) override {
        std::vector<char> text(PATH_MAX + 1);
        const ssize_t length = ::readlinkat(folder.Get(), NameOf(entry), text.data(), PATH_MAX);
        return Told(length > 0 && ::symlinkat(text.data(), Descriptor(target), NameOf(entry)) == 0);
    }

    const eFileId& Id() override {
        struct stat status {};
        if (!id.IsNumbered() && ::fstat(folder.Get(), &status) == 0)
            id = IdOf(status);
        return id;
    }

    void Rest() override {
        Id();
        folder.Close();
    }

    void Wake(eFolder& child) override {
        eDescriptor opened = OpenDescriptor(Descriptor(child), "..", 0);
        struct stat status {};
        if (opened.IsOpen() && ::fstat(opened.Get(), &status) == 0 && AreOneFolder(Id(), IdOf(status)))
            folder = std::move(opened);
    }

private:
    /// Each entry is its kind, its name and a zero.
    void List() {
        listed = true;
        eEntryReader reader;
        while (const dirent64* entry = reader.Next(folder.Get())) {
            if (IsDots(entry->d_name))
                continue;
            listing.push_back(static_cast<char>(KindOf(*entry)));
            listing.insert(listing.end(), entry->d_name, entry->d_name + std::strlen(entry->d_name) + 1);
        }
    }

    eEntryKind KindOf(const dirent64& entry) const {
        switch (entry.d_type) {
        case DT_DIR:
            return eEntryKind::Folder;
        case DT_LNK:
            return eEntryKind::Link;
        case DT_UNKNOWN:
            return AskedKind(entry.d_name);
        default:
            return eEntryKind::File;
        }
    }

    eEntryKind AskedKind(const char* name) const {
        struct stat status {};
        if (::fstatat(folder.Get(), name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            return eEntryKind::File;
        if (S_ISLNK(status.st_mode))
            return eEntryKind::Link;
        return S_ISDIR(status.st_mode) ? eEntryKind::Folder : eEntryKind::File;
    }

    static eFileId IdOf(const struct stat& status) { return {status.st_dev, 0, status.st_ino, {}}; }

    static int Descriptor(eFolder& other) { return static_cast<ePosixFolder&>(other).folder.Get(); }

    eDescriptor folder;
    eFileId id; ///< of no folder until asked for
    bool listed = false;
    std::vector<char> listing;
    std::size_t position = 0;
};

/// The system looks behind a link whose name ends in "/" or "/.", and removes no folder by the latter: the name without
/// these means the link or the folder itself.
std::string OwnName(const char* name) {
    std::string text(name);
    while (text.size() > 1 && (text.back() == '/' || text.ends_with("/.")))
        text.pop_back();
    return text;
}

} // namespace

template <class Char>
eAnswer OpenFolder(const Char* name, eNamedLink link, std::unique_ptr<eFolder>* opened) {
    return ePosixFolder::Open(AT_FDCWD, OwnName(eNativeName(name).c_str()).c_str(), link, opened);
}

template <class Char>
eAnswer MakeFolder(const Char* name) {
    return Told(::mkdir(eNativeName(name).c_str(), newFolderMode) == 0 || errno == EEXIST);
}

template <class Char>
eAnswer RemoveFolder(const Char* name) {
    return Told(::rmdir(OwnName(eNativeName(name).c_str()).c_str()) == 0);
}

template <class Char>
bool RemoveFolderLink(const Char* name) {
    const std::string link = OwnName(eNativeName(name).c_str());
    struct stat own {
    }, target{};
    return ::lstat(link.c_str(), &own) == 0 && S_ISLNK(own.st_mode) && ::stat(link.c_str(), &target) == 0 &&
           S_ISDIR(target.st_mode) && ::unlink(link.c_str()) == 0;
}

template eAnswer OpenFolder(const char*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer OpenFolder(const wchar_t*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer MakeFolder(const char*);
template eAnswer MakeFolder(const wchar_t*);
template eAnswer RemoveFolder(const char*);
template eAnswer RemoveFolder(const wchar_t*);
template bool RemoveFolderLink(const char*);
template bool RemoveFolderLink(const wchar_t*);

} // namespace IO::Platform
