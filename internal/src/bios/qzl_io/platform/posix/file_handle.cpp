#include "platform/file_handle.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/native_name.h"

namespace IO::Platform {
namespace {

// The run-time's numbers for what the flags ask.
constexpr int kReadWrite = 0x0002;
constexpr int kCreate = 0x0100;
constexpr int kTruncate = 0x0200;

constexpr mode_t kPermissions = 0666;

int SystemFlags(int openFlags) {
    int flags = O_CLOEXEC | ((openFlags & kReadWrite) ? O_RDWR : O_RDONLY);
    flags |= (openFlags & kCreate) ? O_CREAT : 0;
    flags |= (openFlags & kTruncate) ? O_TRUNC : 0;
    return flags;
}

bool IsFolder(int handle) {
    struct stat facts = {};
    return fstat(handle, &facts) == 0 && S_ISDIR(facts.st_mode);
}

ssize_t WriteSome(int handle, const char* source, unsigned long long n, unsigned long long position) {
    const ssize_t written = pwrite(handle, source, n, static_cast<off_t>(position));
    return written < 0 && errno == ESPIPE ? write(handle, source, n) : written;
}

bool Interrupted(ssize_t result) {
    return result < 0 && errno == EINTR;
}

} // namespace

int OpenFile(const char* name, int openFlags) noexcept {
    int handle = -1;
    do
        handle = open(name, SystemFlags(openFlags), kPermissions);
    while (Interrupted(handle));
    if (handle < 0 || !IsFolder(handle))
        return handle;
    CloseFile(handle);
    return -1;
}

int OpenFile(const wchar_t* name, int openFlags) {
    return OpenFile(eNativeName(name).c_str(), openFlags);
}

void CloseFile(int handle) noexcept {
    close(handle);
}

unsigned long long ReadAt(int handle, void* target, unsigned long long n, unsigned long long position) noexcept {
    unsigned long long done = 0;
    while (done < n) {
        const ssize_t read =
            pread(handle, static_cast<char*>(target) + done, n - done, static_cast<off_t>(position + done));
        if (read > 0)
            done += static_cast<unsigned long long>(read);
        else if (!Interrupted(read))
            break;
    }
    return done;
}

bool WriteAt(int handle, const void* source, unsigned long long n, unsigned long long position) noexcept {
    unsigned long long done = 0;
    while (done < n) {
        const ssize_t written = WriteSome(handle, static_cast<const char*>(source) + done, n - done, position + done);
        if (written > 0)
            done += static_cast<unsigned long long>(written);
        else if (!Interrupted(written))
            return false;
    }
    return true;
}

unsigned long long CopyBetween(int source, unsigned long long from, int target, unsigned long long to,
                               unsigned long long n) noexcept {
    auto at = static_cast<off_t>(from);
    auto goal = static_cast<off_t>(to);
    unsigned long long done = 0;
    while (done < n) {
        const ssize_t copied = copy_file_range(source, &at, target, &goal, n - done, 0);
        if (copied > 0)
            done += static_cast<unsigned long long>(copied);
        else if (!Interrupted(copied))
            break;
    }
    return done;
}

bool MayBeOneFile(int one, int other) noexcept {
    struct stat first = {};
    struct stat second = {};
    const bool told = fstat(one, &first) == 0 && fstat(other, &second) == 0;
    return !told || (first.st_dev == second.st_dev && first.st_ino == second.st_ino);
}

unsigned long long FileLength(int handle) noexcept {
    struct stat facts = {};
    return fstat(handle, &facts) == 0 ? static_cast<unsigned long long>(facts.st_size) : 0;
}

bool SetFileLength(int handle, unsigned long long length) noexcept {
    int result = -1;
    do
        result = ftruncate(handle, static_cast<off_t>(length));
    while (Interrupted(result));
    return result == 0;
}

} // namespace IO::Platform
