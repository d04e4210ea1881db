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

    std::unique_ptr<eFolder> Enter(const eEntry& entry) override {
        eDescriptor opened = OpenDescriptor(folder.Get(), NameOf(entry), O_NOFOLLOW);
        return opened.IsOpen() ? std::make_unique<ePosixFolder>(std::move(opened)) : nullptr;
    }

    bool RemoveFile(const eEntry& entry) override { return ::unlinkat(folder.Get(), NameOf(entry), 0) == 0; }
    bool RemoveLink(const eEntry& entry) override { return ::unlinkat(folder.Get(), NameOf(entry), 0) == 0; }
    bool RemoveFolder(const eEntry& entry) override {
        return ::unlinkat(folder.Get(), NameOf(entry), AT_REMOVEDIR) == 0;
    }
    bool MakeFolder(const eEntry& entry) override { return ::mkdirat(folder.Get(), NameOf(entry), newFolderMode) == 0; }

    void CopyFileTo(eFolder& target, const eEntry& entry) override {
        CopyNewFile({folder.Get(), NameOf(entry)}, {Descriptor(target), NameOf(entry)});
    }

    void CopyLinkTo(eFolder& target, const eEntry& entry) override {
        std::vector<char> text(PATH_MAX + 1);
        const ssize_t length = ::readlinkat(folder.Get(), NameOf(entry), text.data(), PATH_MAX);
        if (length > 0) [[maybe_unused]]
            const int refused = ::symlinkat(text.data(), Descriptor(target), NameOf(entry));
    }

    eFolderId Id() override {
        struct stat status {};
        if (id == eFolderId() && ::fstat(folder.Get(), &status) == 0)
            id = {status.st_dev, status.st_ino};
        return id;
    }

    void Rest() override {
        Id();
        folder.Close();
    }

    void Wake(eFolder& child) override {
        eDescriptor opened = OpenDescriptor(Descriptor(child), "..", 0);
        struct stat status {};
        if (opened.IsOpen() && ::fstat(opened.Get(), &status) == 0 && Id() == eFolderId{status.st_dev, status.st_ino})
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

    static int Descriptor(eFolder& other) { return static_cast<ePosixFolder&>(other).folder.Get(); }

    eDescriptor folder;
    eFolderId id; ///< of no folder until asked for
    bool listed = false;
    std::vector<char> listing;
    std::size_t position = 0;
};

/// The system looks behind a link whose name ends in "/"; without it the link itself is meant.
std::string WithoutSlashes(const char* name) {
    std::string text(name);
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

} // namespace

template <class Char>
std::unique_ptr<eFolder> OpenFolder(const Char* name, eNamedLink link) {
    const std::string bytes = WithoutSlashes(eNativeName(name).c_str());
    eDescriptor opened = OpenDescriptor(AT_FDCWD, bytes.c_str(), link == eNamedLink::Refuse ? O_NOFOLLOW : 0);
    return opened.IsOpen() ? std::make_unique<ePosixFolder>(std::move(opened)) : nullptr;
}

template <class Char>
eMadeFolder MakeFolder(const Char* name) {
    if (::mkdir(eNativeName(name).c_str(), newFolderMode) == 0)
        return eMadeFolder::Made;
    return errno == EEXIST ? eMadeFolder::Existed : eMadeFolder::Refused;
}

template <class Char>
bool RemoveFolder(const Char* name) {
    return ::rmdir(eNativeName(name).c_str()) == 0;
}

template <class Char>
bool RemoveFolderLink(const Char* name) {
    const std::string link = WithoutSlashes(eNativeName(name).c_str());
    struct stat own {
    }, target{};
    return ::lstat(link.c_str(), &own) == 0 && S_ISLNK(own.st_mode) && ::stat(link.c_str(), &target) == 0 &&
           S_ISDIR(target.st_mode) && ::unlink(link.c_str()) == 0;
}

template std::unique_ptr<eFolder> OpenFolder(const char*, eNamedLink);
template std::unique_ptr<eFolder> OpenFolder(const wchar_t*, eNamedLink);
template eMadeFolder MakeFolder(const char*);
template eMadeFolder MakeFolder(const wchar_t*);
template bool RemoveFolder(const char*);
template bool RemoveFolder(const wchar_t*);
template bool RemoveFolderLink(const char*);
template bool RemoveFolderLink(const wchar_t*);

} // namespace IO::Platform
