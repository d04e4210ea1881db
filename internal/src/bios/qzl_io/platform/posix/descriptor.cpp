// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/descriptor.h"

#include <array>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

namespace IO::Platform {

namespace {

// Another process holds a lease on the file and is asked to release it. We wait for that, as every program does,
// through a descriptor that opens nothing, so that no pipe can replace the file meanwhile.
eDescriptor OpenLeased(int folder, const char* name, int flags) noexcept {
    const int whichLink = flags & O_NOFOLLOW;
    const eDescriptor place(Uninterrupted([&] { return ::openat(folder, name, O_PATH | O_CLOEXEC | whichLink); }));
    struct stat status {};
    if (!place.IsOpen() || Uninterrupted([&] { return ::fstat(place.Get(), &status); }) != 0 ||
        !S_ISREG(status.st_mode))
        return eDescriptor();
    std::array<char, 32> own{};
    static_cast<void>(std::snprintf(own.data(), own.size(), "/proc/self/fd/%d", place.Get()));
    return eDescriptor(Uninterrupted([&] { return ::open(own.data(), (flags & ~O_NOFOLLOW) | O_CLOEXEC); }));
}

} // namespace

eDescriptor OpenAtOnce(int folder, const char* name, int flags, mode_t mode) noexcept {
    constexpr int kAlone = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    eDescriptor file(Uninterrupted([&] { return ::openat(folder, name, flags | kAlone, mode); }));
    return file.IsOpen() || errno != EWOULDBLOCK ? std::move(file) : OpenLeased(folder, name, flags);
}

bool LetWait(const eDescriptor& file) noexcept {
    return Uninterrupted([&] { return ::fcntl(file.Get(), F_SETFL, 0); }) == 0;
}

bool AskFacts(int file, struct stat* facts) noexcept {
    return Uninterrupted([=] { return ::fstat(file, facts); }) == 0;
}

} // namespace IO::Platform
