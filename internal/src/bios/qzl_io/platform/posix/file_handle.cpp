// SPDX-License-Identifier: BSL-1.0
#include "platform/file_handle.h"

#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/failure.h"
#include "platform/posix/native_name.h"
#include "platform/pure/file_id.h"

namespace IO::Platform {
namespace {

// The run-time's numbers for the parts of the flags.
constexpr int kReadWrite = 0x0002;
constexpr int kCreate = 0x0100;
constexpr int kTruncate = 0x0200;

int NotOpened(int failure) noexcept {
    Refused(failure);
    return -1;
}

eDescriptor OpenForWriting(const char* name, int openFlags) noexcept {
    int flags = O_CLOEXEC | O_RDWR;
    flags |= (openFlags & kCreate) ? O_CREAT : 0;
    flags |= (openFlags & kTruncate) ? O_TRUNC : 0;
    return eDescriptor(Uninterrupted([&] { return ::openat(AT_FDCWD, name, flags, kNewFileMode); }));
}

ssize_t WriteSome(int handle, const char* source, unsigned long long n, unsigned long long position) {
    const ssize_t written = ::pwrite(handle, source, n, static_cast<off_t>(position));
    return written < 0 && errno == ESPIPE ? ::write(handle, source, n) : written;
}

} // namespace

int OpenFile(const char* name, int openFlags) {
    const bool writes = (openFlags & kReadWrite) != 0;
    eDescriptor file = writes ? OpenForWriting(name, openFlags) : OpenAtOnce(AT_FDCWD, name, O_RDONLY);
    struct stat facts = {};
    if (!file.IsOpen() || !AskFacts(file.Get(), &facts))
        return NotOpened(errno);
    if (S_ISDIR(facts.st_mode))
        return NotOpened(EISDIR);
    if (!writes && S_ISFIFO(facts.st_mode))
        return NotOpened(ENOTSUP);
    if (!writes && !S_ISREG(facts.st_mode) && !LetWait(file))
        return NotOpened(errno);
    return file.Release();
}

int OpenFile(const wchar_t* name, int openFlags) {
    return OpenFile(eNativeName(name).c_str(), openFlags);
}

int TakeRefusal() noexcept {
    return std::exchange(lastFailure, 0);
}

std::string RefusalText(int refusal) {
    return refusal != 0 ? std::system_category().message(refusal) : std::string();
}

bool CloseFile(int handle) noexcept {
    return eDescriptor(handle).Close() || Refused(errno);
}

bool ReadAt(int handle, void* target, unsigned long long n, unsigned long long position,
            unsigned long long* arrived) noexcept {
    *arrived = 0;
    while (*arrived < n) {
        const ssize_t read = Uninterrupted([&] {
            return ::pread(handle, static_cast<char*>(target) + *arrived, n - *arrived,
                           static_cast<off_t>(position + *arrived));
        });
        if (read < 0)
            return Refused(errno);
        if (read == 0)
            break;
        *arrived += static_cast<unsigned long long>(read);
    }
    return true;
}

bool WriteAt(int handle, const void* source, unsigned long long n, unsigned long long position) noexcept {
    unsigned long long done = 0;
    while (done < n) {
        const ssize_t written = Uninterrupted(
            [&] { return WriteSome(handle, static_cast<const char*>(source) + done, n - done, position + done); });
        if (written <= 0)
            return Refused(written < 0 ? errno : ENOSPC);
        done += static_cast<unsigned long long>(written);
    }
    return true;
}

unsigned long long CopyBetween(int source, unsigned long long from, int target, unsigned long long to,
                               unsigned long long n) noexcept {
    auto at = static_cast<off_t>(from);
    auto goal = static_cast<off_t>(to);
    unsigned long long done = 0;
    while (done < n) {
        const ssize_t copied =
            Uninterrupted([&] { return ::copy_file_range(source, &at, target, &goal, n - done, 0); });
        if (copied <= 0)
            break;
        done += static_cast<unsigned long long>(copied);
    }
    return done;
}

bool MayBeOneFile(int one, int other) noexcept {
    const auto id = [](int handle) {
        eFileId told;
        struct stat facts = {};
        if (AskFacts(handle, &facts)) {
            told.volume = facts.st_dev;
            told.low = facts.st_ino;
        }
        return told;
    };
    return IO::MayBeOneFile(id(one), id(other));
}

bool FileLength(int handle, unsigned long long* length) noexcept {
    struct stat facts = {};
    if (!AskFacts(handle, &facts))
        return Refused(errno);
    *length = static_cast<unsigned long long>(facts.st_size);
    return true;
}

bool SetFileLength(int handle, unsigned long long length) noexcept {
    return Uninterrupted([&] { return ::ftruncate(handle, static_cast<off_t>(length)); }) == 0 || Refused(errno);
}

} // namespace IO::Platform
