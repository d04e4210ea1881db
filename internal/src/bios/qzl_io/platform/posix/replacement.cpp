// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/replacement.h"

#include <cerrno>
#include <cstdio>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/pure/beside_name.h"

namespace IO::Platform {

namespace {

constexpr char kAccessList[] = "system.posix_acl_access";

// False if another program holds the lock, or if the file system has no locks.
bool Lock(int file) {
    return Uninterrupted([=] { return ::flock(file, LOCK_EX | LOCK_NB); }) == 0;
}

// Attributes that vouch for a file's content do not apply to other content.
bool SpeaksOfContent(std::string_view attribute) {
    return attribute == "security.capability" || attribute == "security.ima" || attribute == "security.evm";
}

// The access control lists.
bool SpeaksOfAccess(std::string_view attribute) {
    return attribute.starts_with("system.");
}

// Queries the size, then the bytes. False if the system refuses either.
template <class Call>
bool AskSized(std::vector<char>* bytes, Call call) {
    const ssize_t size = Uninterrupted([&] { return call(nullptr, std::size_t{0}); });
    bytes->resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    if (size <= 0)
        return size == 0;
    const ssize_t filled = Uninterrupted([&] { return call(bytes->data(), bytes->size()); });
    bytes->resize(filled > 0 ? static_cast<std::size_t>(filled) : 0);
    return filled >= 0;
}

// Looks for the name first on file systems that cannot refuse to replace a file.
bool RenameToFree(int folder, const char* from, const char* to) {
    if (Uninterrupted([=] { return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE); }) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    struct stat facts {};
    if (Uninterrupted([&] { return ::fstatat(folder, to, &facts, AT_SYMLINK_NOFOLLOW); }) == 0)
        errno = EEXIST;
    return errno == ENOENT && Uninterrupted([=] { return ::renameat(folder, from, folder, to); }) == 0;
}

bool CopyAttribute(int from, int to, const char* name) {
    std::vector<char> value;
    return AskSized(&value, [=](char* bytes, std::size_t size) { return ::fgetxattr(from, name, bytes, size); }) &&
           Uninterrupted([&] { return ::fsetxattr(to, name, value.data(), value.size(), 0); }) == 0;
}

// Calls `each` with the name of every attribute, none if the file system has no attributes. False if the system does
// not tell the names, or if a call returned false.
template <class Each>
bool ForAttributes(int file, Each each) {
    std::vector<char> names;
    bool all = AskSized(&names, [=](char* list, std::size_t size) { return ::flistxattr(file, list, size); }) ||
               errno == ENOTSUP || errno == ENOSYS;
    for (std::size_t at = 0; at < names.size(); at += std::string_view(names.data() + at).size() + 1)
        all = each(names.data() + at) && all;
    return all;
}

} // namespace

eReplacement::eReplacement(const eRealPlace& target, mode_t mode) : place(target) {
    constexpr unsigned kMostTries = 100;
    for (unsigned tries = 0; tries < kMostTries; ++tries) {
        name = System::BesideName(".", place.name, ".saving", tries);
        if (Create(mode) || (errno == EEXIST && RemoveLeftOver() && Create(mode)) || errno != EEXIST)
            break;
    }
    pending = file.IsOpen();
}

bool eReplacement::Create(mode_t mode) {
    constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
    file = eDescriptor(Uninterrupted([&] { return ::openat(place.folder.Get(), name.c_str(), kFlags, mode); }));
    return file.IsOpen() && LockOwn();
}

// Before a new file is locked, another program may take it for a leftover, lock it and remove it.
bool eReplacement::LockOwn() {
    const bool locked = Lock(file.Get());
    if ((locked || errno != EWOULDBLOCK) && Names(file.Get()))
        return true;
    file.Close();
    errno = EEXIST;
    return false;
}

// Also true if another program has just removed the file. Anything but a regular file is left alone.
bool eReplacement::RemoveLeftOver() {
    const eDescriptor other = OpenAtOnce(place.folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW);
    if (!other.IsOpen() && errno == ENOENT)
        return true;
    struct stat facts {};
    const bool left = other.IsOpen() && AskFacts(other.Get(), &facts) && S_ISREG(facts.st_mode) && Lock(other.Get()) &&
                      Names(other.Get());
    const bool removed = left && Uninterrupted([&] { return ::unlinkat(place.folder.Get(), name.c_str(), 0); }) == 0;
    if (!removed)
        errno = EEXIST;
    return removed;
}

bool eReplacement::Names(int opened) const {
    struct stat facts {};
    return AskFacts(opened, &facts) && StandsAt({place.folder.Get(), name.c_str()}, facts);
}

// Tries twice, since nobody else would remove the file soon.
eReplacement::~eReplacement() {
    if (pending)
        Discard();
}

void eReplacement::Discard() {
    const auto remove = [this] { return ::unlinkat(place.folder.Get(), name.c_str(), 0); };
    if (Uninterrupted(remove) != 0)
        Uninterrupted(remove);
    pending = false;
}

bool eReplacement::Resemble(int replaced, const struct stat& facts) {
    struct stat own {};
    if (!AskFacts(Get(), &own))
        return false;
    const bool owned = own.st_uid == facts.st_uid && own.st_gid == facts.st_gid;
    if (!owned && Uninterrupted([&] { return ::fchown(Get(), facts.st_uid, facts.st_gid); }) != 0)
        return false;
    // The folder may give its new files rights that the replaced file does not have.
    const bool plain = ForAttributes(Get(), [this](std::string_view attribute) {
        return attribute != kAccessList || Uninterrupted([&] { return ::fremovexattr(Get(), kAccessList); }) == 0;
    });
    if (!plain || Uninterrupted([&] { return ::fchmod(Get(), facts.st_mode & kPermissionBits); }) != 0)
        return false;
    return ForAttributes(replaced, [&](const char* attribute) {
        return SpeaksOfContent(attribute) || CopyAttribute(replaced, Get(), attribute) || !SpeaksOfAccess(attribute);
    });
}

// Some file systems report only when a descriptor is closed that they could not store what was written. The file's own
// descriptor stays open, and the file locked, until it has replaced the target.
bool eReplacement::TakePlace() {
    const int folder = place.folder.Get();
    eDescriptor other(Uninterrupted([&] { return ::fcntl(Get(), F_DUPFD_CLOEXEC, 0); }));
    if (!other.IsOpen() || !other.Close() ||
        Uninterrupted([&] { return ::renameat(folder, name.c_str(), folder, place.name.c_str()); }) != 0)
        return false;
    pending = false;
    return true;
}

bool eReplacement::Keep() {
    constexpr unsigned kMostTries = 1000;
    const int folder = place.folder.Get();
    for (unsigned number = 0; number < kMostTries; ++number) {
        std::string kept = System::BesideName("", place.name, ".unsaved", number);
        if (RenameToFree(folder, name.c_str(), kept.c_str())) {
            pending = false;
            name.swap(kept);
            return true;
        }
        if (errno != EEXIST)
            break;
    }
    pending = false;
    return false;
}

} // namespace IO::Platform
