// SPDX-License-Identifier: BSL-1.0
#include "platform/folder.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/entries.h"
#include "platform/posix/failure.h"
#include "platform/posix/file_copy.h"
#include "platform/posix/file_time.h"
#include "platform/posix/native_name.h"
#include "platform/pure/entry_kind.h"

namespace IO::Platform {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr mode_t kNewFolderMode = 0777;
constexpr mode_t kPermissionsOfFolders = 01777;
constexpr mode_t kAllOfMode = 07777;

eDescriptor OpenDescriptor(int parent, const char* name, int flags) {
    return eDescriptor(Uninterrupted([&] { return ::openat(parent, name, kFolderFlags | flags); }));
}

// The answer to a call that has just been made.
eAnswer Told(bool done) {
    return done || Refused(errno) ? eAnswer::Done : eAnswer::Refused;
}

// Makes a call that a signal may interrupt, and returns whether it succeeded.
template <class Call>
bool Worked(Call call) {
    return Uninterrupted(call) == 0;
}

const char* NameOf(const eEntry& entry) {
    return static_cast<const char*>(entry.name);
}

} // namespace

template <class Char>
bool EntryText(const eEntry& entry, std::basic_string<Char>* text) {
    *text = NameText<Char>(NameOf(entry));
    return true;
}

namespace {

// Reads its whole listing at the first Next, so that what is removed or added meanwhile cannot confuse it, and so that
// the folder can rest from then on.
class ePosixFolder final : public eFolder {
public:
    explicit ePosixFolder(eDescriptor opened) : folder(std::move(opened)) {}
    ~ePosixFolder() override {
        struct stat status {};
        if (surplus != 0 && Worked([&] { return ::fstat(folder.Get(), &status); }))
            Worked([&] { return ::fchmod(folder.Get(), status.st_mode & kAllOfMode & ~surplus); });
    }
    ePosixFolder(const ePosixFolder&) = delete;
    ePosixFolder& operator=(const ePosixFolder&) = delete;

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

    bool IsListedWhole() override { return notListed == 0 || Refused(notListed); }

    eEntryFacts Facts(const eEntry& entry) override {
        struct stat status {};
        const auto ask = [&](int flags) { return ::fstatat(folder.Get(), NameOf(entry), &status, flags); };
        if (!Worked([&] { return ask(AT_SYMLINK_NOFOLLOW); }))
            return {};
        eEntryFacts facts{S_ISDIR(status.st_mode), 0, TicksOf(status.st_mtim)};
        if (S_ISREG(status.st_mode))
            facts.size = static_cast<unsigned long long>(status.st_size);
        if (S_ISLNK(status.st_mode))
            facts.isFolder = Worked([&] { return ask(0); }) && S_ISDIR(status.st_mode);
        return facts;
    }

    bool ReachableName(const eEntry& entry, std::string* name) override { return EntryText(entry, name); }

    static eAnswer Open(int parent, const char* name, eNamedLink link, std::unique_ptr<eFolder>* opened) {
        eDescriptor descriptor = OpenDescriptor(parent, name, link == eNamedLink::Refuse ? O_NOFOLLOW : 0);
        if (!descriptor.IsOpen())
            return Told(false);
        *opened = std::make_unique<ePosixFolder>(std::move(descriptor));
        return eAnswer::Done;
    }

    eAnswer Enter(const eEntry& entry, std::unique_ptr<eFolder>* opened) override {
        return Open(folder.Get(), NameOf(entry), eNamedLink::Refuse, opened);
    }

    eAnswer RemoveFile(const eEntry& entry) override { return Remove(entry, 0); }
    eAnswer RemoveLink(const eEntry& entry) override { return RemoveFile(entry); }
    eAnswer RemoveFolder(const eEntry& entry) override { return Remove(entry, AT_REMOVEDIR); }

    eAnswer Make(const eEntry& entry, eFolder& source, std::unique_ptr<eFolder>* opened) override {
        const char* name = NameOf(entry);
        struct stat like {};
        const int from = Descriptor(source);
        const bool told = Worked([&] { return ::fstatat(from, name, &like, AT_SYMLINK_NOFOLLOW); });
        const mode_t mode = told ? like.st_mode : mode_t{S_IRWXU};
        if (!Worked([&] { return ::mkdirat(folder.Get(), name, ToBeFilled(mode)); }))
            return Told(false);
        const eAnswer answer = Enter(entry, opened);
        if (answer == eAnswer::Done)
            static_cast<ePosixFolder&>(**opened).EndWith(mode);
        return answer;
    }

    void EndLike(eFolder& source) override { EndWith(static_cast<ePosixFolder&>(source).Mode()); }

    // The owner of a folder may do everything in it until it is complete.
    static mode_t ToBeFilled(mode_t mode) { return (mode & kPermissionsOfFolders) | S_IRWXU; }

    // If the system does not tell the mode, only the owner has access.
    mode_t Mode() const {
        struct stat status {};
        return Worked([&] { return ::fstat(folder.Get(), &status); }) ? status.st_mode : mode_t{S_IRWXU};
    }

    eAnswer CopyFileTo(eFolder& target, const eEntry& entry, eNamedLink link, const eCopyWatch& watch) override {
        const bool copied =
            CopyNewFile({folder.Get(), NameOf(entry)}, {Descriptor(target), NameOf(entry)}, link, watch);
        return copied ? eAnswer::Done : eAnswer::Refused;
    }

    eAnswer CopyLinkTo(eFolder& target, const eEntry& entry) override {
        std::vector<char> text(PATH_MAX + 1);
        const char* name = NameOf(entry);
        const ssize_t length = Uninterrupted([&] { return ::readlinkat(folder.Get(), name, text.data(), PATH_MAX); });
        const int to = Descriptor(target);
        return Told(length > 0 && Worked([&] { return ::symlinkat(text.data(), to, name); }));
    }

    const eFileId& Id() override {
        struct stat status {};
        if (!id.IsNumbered() && Worked([&] { return ::fstat(folder.Get(), &status); }))
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
        const bool told = opened.IsOpen() && Worked([&] { return ::fstat(opened.Get(), &status); });
        if (told && AreOneFolder(Id(), IdOf(status)))
            folder = std::move(opened);
        else
            notListed = ESTALE;
    }

private:
    eAnswer Remove(const eEntry& entry, int flags) const {
        return Told(Worked([&] { return ::unlinkat(folder.Get(), NameOf(entry), flags); }));
    }

    void EndWith(mode_t mode) { surplus = S_IRWXU & ~mode; }

    // Each entry consists of its kind, its name and a zero.
    void List() {
        listed = true;
        eEntryReader reader;
        while (const dirent64* entry = reader.Next(folder.Get())) {
            if (IsDots(entry->d_name))
                continue;
            listing.push_back(static_cast<char>(KindOf(*entry)));
            listing.insert(listing.end(), entry->d_name, entry->d_name + std::strlen(entry->d_name) + 1);
        }
        notListed = reader.Failure();
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
        if (!Worked([&] { return ::fstatat(folder.Get(), name, &status, AT_SYMLINK_NOFOLLOW); }))
            return eEntryKind::File;
        if (S_ISLNK(status.st_mode))
            return eEntryKind::Link;
        return S_ISDIR(status.st_mode) ? eEntryKind::Folder : eEntryKind::File;
    }

    static eFileId IdOf(const struct stat& status) { return {status.st_dev, 0, status.st_ino, {}}; }

    static int Descriptor(eFolder& other) { return static_cast<ePosixFolder&>(other).folder.Get(); }

    eDescriptor folder;
    eFileId id;         // empty until asked for
    mode_t surplus = 0; // permissions of the owner that are removed in the end
    bool listed = false;
    int notListed = 0; // why entries are missing from the listing
    std::vector<char> listing;
    std::size_t position = 0;
};

// The name without a "/" or "/." at its end, which stands for the link or the folder itself. With "/" the system would
// follow a link, and with "/." it removes no folder.
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
eAnswer MakeFolder(const Char* name, eFolder* like) {
    const mode_t mode = like ? ePosixFolder::ToBeFilled(static_cast<ePosixFolder&>(*like).Mode()) : kNewFolderMode;
    const eNativeName native(name);
    return Told(Worked([&] { return ::mkdir(native.c_str(), mode); }) || errno == EEXIST);
}

template <class Char>
eAnswer RemoveFolder(const Char* name) {
    const std::string own = OwnName(eNativeName(name).c_str());
    return Told(Worked([&] { return ::rmdir(own.c_str()); }));
}

template <class Char>
bool RemoveFolderLink(const Char* name) {
    const std::string link = OwnName(eNativeName(name).c_str());
    struct stat own {};
    struct stat target {};
    const bool isLink = Worked([&] { return ::lstat(link.c_str(), &own); }) && S_ISLNK(own.st_mode);
    const bool leadsToFolder =
        isLink && Worked([&] { return ::stat(link.c_str(), &target); }) && S_ISDIR(target.st_mode);
    return leadsToFolder && Worked([&] { return ::unlink(link.c_str()); });
}

template bool EntryText(const eEntry&, std::string*);
template bool EntryText(const eEntry&, std::wstring*);
template eAnswer OpenFolder(const char*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer OpenFolder(const wchar_t*, eNamedLink, std::unique_ptr<eFolder>*);
template eAnswer MakeFolder(const char*, eFolder*);
template eAnswer MakeFolder(const wchar_t*, eFolder*);
template eAnswer RemoveFolder(const char*);
template eAnswer RemoveFolder(const wchar_t*);
template bool RemoveFolderLink(const char*);
template bool RemoveFolderLink(const wchar_t*);

} // namespace IO::Platform
