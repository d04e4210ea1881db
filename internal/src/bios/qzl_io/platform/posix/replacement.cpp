#include "platform/posix/replacement.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>
#include <time.h>
#include <unistd.h>

namespace IO::Platform {

namespace {

constexpr char kAccessList[] = "system.posix_acl_access";

std::string NewName() {
    static std::atomic<unsigned> counter = 0;
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return ".qzl_" + std::to_string(::getpid()) + "_" + std::to_string(now.tv_nsec) + "_" + std::to_string(++counter);
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

// Empty if the file system has no attributes.
std::vector<char> AttributeNames(int file) {
    std::vector<char> names;
    AskSized(&names, [file](char* list, std::size_t size) { return ::flistxattr(file, list, size); });
    return names;
}

bool CopyAttribute(int from, int to, const char* name) {
    std::vector<char> value;
    return AskSized(&value, [=](char* bytes, std::size_t size) { return ::fgetxattr(from, name, bytes, size); }) &&
           Uninterrupted([&] { return ::fsetxattr(to, name, value.data(), value.size(), 0); }) == 0;
}

// Calls `each` with every name, and returns whether all calls returned true.
template <class Each>
bool ForAll(const std::vector<char>& names, Each each) {
    bool all = true;
    for (std::size_t at = 0; at < names.size(); at += std::string_view(names.data() + at).size() + 1)
        all = each(names.data() + at) && all;
    return all;
}

} // namespace

eReplacement::eReplacement(const eRealPlace& target, mode_t mode) : place(target) {
    constexpr int kMostTries = 100;
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    for (int tries = 0; tries < kMostTries && !file.IsOpen(); ++tries) {
        name = NewName();
        file = eDescriptor(Uninterrupted([&] { return ::openat(place.folder.Get(), name.c_str(), kFlags, mode); }));
        if (!file.IsOpen() && errno != EEXIST)
            break;
    }
    pending = file.IsOpen();
}

// Tries twice, since nobody else would ever remove the file.
eReplacement::~eReplacement() {
    const auto remove = [this] { return ::unlinkat(place.folder.Get(), name.c_str(), 0); };
    if (pending && Uninterrupted(remove) != 0)
        Uninterrupted(remove);
}

bool eReplacement::Resemble(int replaced, const struct stat& facts) {
    struct stat own {};
    if (Uninterrupted([&] { return ::fstat(Get(), &own); }) != 0)
        return false;
    const bool owned = own.st_uid == facts.st_uid && own.st_gid == facts.st_gid;
    if (!owned && Uninterrupted([&] { return ::fchown(Get(), facts.st_uid, facts.st_gid); }) != 0)
        return false;
    // The folder may give its new files rights that the replaced file does not have.
    const bool plain = ForAll(AttributeNames(Get()), [this](std::string_view attribute) {
        return attribute != kAccessList || Uninterrupted([&] { return ::fremovexattr(Get(), kAccessList); }) == 0;
    });
    if (!plain || Uninterrupted([&] { return ::fchmod(Get(), facts.st_mode & kPermissionBits); }) != 0)
        return false;
    return ForAll(AttributeNames(replaced), [&](const char* attribute) {
        return SpeaksOfContent(attribute) || CopyAttribute(replaced, Get(), attribute) || !SpeaksOfAccess(attribute);
    });
}

bool eReplacement::TakePlace() {
    const int folder = place.folder.Get();
    if (!file.Close() ||
        Uninterrupted([&] { return ::renameat(folder, name.c_str(), folder, place.name.c_str()); }) != 0)
        return false;
    pending = false;
    return true;
}

} // namespace IO::Platform
