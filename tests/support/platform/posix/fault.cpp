#include "fault.h"

#include <cstddef>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <iconv.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <qzl_io/system/file.h>

namespace {

thread_local eFault* latest = nullptr;

int LastCall(int first, int times) {
    return times > eFault::kAlways - first ? eFault::kAlways : first + times - 1;
}

} // namespace

eFault::eFault(std::string function, int error, int first, int times)
    : watched(std::move(function)),
      failure(error),
      firstCall(first),
      lastCall(LastCall(first, times)),
      previous(std::exchange(latest, this)) {}

eFault::eFault(std::string function, int first, std::function<void()> before)
    : watched(std::move(function)),
      firstCall(first),
      lastCall(first),
      action(std::move(before)),
      previous(std::exchange(latest, this)) {}

eFault::~eFault() {
    latest = previous;
}

bool eFault::Counts(const char* function) {
    if (!watched.empty() && watched != function)
        return false;
    ++calls;
    trace.emplace_back(function);
    return calls >= firstCall && calls <= lastCall;
}

bool eFault::Takes(const char* function) {
    eFault* const fault = latest;
    if (!fault || !fault->Counts(function))
        return false;
    fault->struck = true;
    if (fault->action) {
        latest = nullptr;
        fault->action();
        latest = fault;
        return false;
    }
    errno = fault->failure;
    return true;
}

bool eFault::ReachesLibraries() {
    const eFault watch("", 0, 0);
    IO::System::File::Size(eFileName("/"));
    return watch.Calls() != 0;
}

// Each function is defined under the system's name and under a local one, so that it need not match the exceptions and
// attributes that the system's headers declare.
#define WATCHED(result, name, parameters, ...)                                                                         \
    extern "C" [[gnu::visibility("default")]] result Watched_##name parameters __asm__(#name);                         \
    result Watched_##name parameters {                                                                                 \
        static const auto passOn = reinterpret_cast<result(*) parameters>(::dlsym(RTLD_NEXT, #name));                  \
        return eFault::Takes(#name) ? static_cast<result>(-1) : passOn(__VA_ARGS__);                                   \
    }

WATCHED(int, open, (const char* name, int flags, mode_t mode), name, flags, mode)
WATCHED(int, openat, (int folder, const char* name, int flags, mode_t mode), folder, name, flags, mode)
WATCHED(ssize_t, read, (int file, void* target, std::size_t n), file, target, n)
WATCHED(ssize_t, pread, (int file, void* target, std::size_t n, off_t at), file, target, n, at)
WATCHED(ssize_t, write, (int file, const void* source, std::size_t n), file, source, n)
WATCHED(ssize_t, pwrite, (int file, const void* source, std::size_t n, off_t at), file, source, n, at)
WATCHED(off_t, lseek, (int file, off_t offset, int from), file, offset, from)
WATCHED(int, ftruncate, (int file, off_t length), file, length)
WATCHED(int, fcntl, (int file, int command, void* argument), file, command, argument)
WATCHED(ssize_t, copy_file_range, (int source, off_t* from, int target, off_t* to, std::size_t n, unsigned flags),
        source, from, target, to, n, flags)
WATCHED(ssize_t, sendfile, (int target, int source, off_t* from, std::size_t n), target, source, from, n)
WATCHED(ssize_t, getdents64, (int folder, void* entries, std::size_t n), folder, entries, n)
WATCHED(int, stat, (const char* name, struct stat* status), name, status)
WATCHED(int, lstat, (const char* name, struct stat* status), name, status)
WATCHED(int, fstat, (int file, struct stat* status), file, status)
WATCHED(int, fstatat, (int folder, const char* name, struct stat* status, int flags), folder, name, status, flags)
WATCHED(int, access, (const char* name, int mode), name, mode)
WATCHED(int, faccessat, (int folder, const char* name, int mode, int flags), folder, name, mode, flags)
WATCHED(int, mkdir, (const char* name, mode_t mode), name, mode)
WATCHED(int, mkdirat, (int folder, const char* name, mode_t mode), folder, name, mode)
WATCHED(int, rmdir, (const char* name), name)
WATCHED(int, unlink, (const char* name), name)
WATCHED(int, unlinkat, (int folder, const char* name, int flags), folder, name, flags)
WATCHED(int, rename, (const char* from, const char* to), from, to)
WATCHED(int, renameat, (int source, const char* from, int target, const char* to), source, from, target, to)
WATCHED(ssize_t, readlink, (const char* name, char* text, std::size_t n), name, text, n)
WATCHED(ssize_t, readlinkat, (int folder, const char* name, char* text, std::size_t n), folder, name, text, n)
WATCHED(int, symlinkat, (const char* text, int folder, const char* name), text, folder, name)
WATCHED(int, renameat2, (int source, const char* from, int target, const char* to, unsigned flags), source, from,
        target, to, flags)
WATCHED(int, fsync, (int file), file)
WATCHED(int, syncfs, (int file), file)
WATCHED(int, flock, (int file, int operation), file, operation)
WATCHED(int, fchmod, (int file, mode_t mode), file, mode)
WATCHED(int, fchown, (int file, uid_t user, gid_t group), file, user, group)
WATCHED(ssize_t, flistxattr, (int file, char* names, std::size_t n), file, names, n)
WATCHED(ssize_t, fgetxattr, (int file, const char* name, void* value, std::size_t n), file, name, value, n)
WATCHED(int, fremovexattr, (int file, const char* name), file, name)
WATCHED(int, fsetxattr, (int file, const char* name, const void* value, std::size_t n, int flags), file, name, value, n,
        flags)

extern "C" [[gnu::visibility("default")]] int Watched_close(int file) __asm__("close");
int Watched_close(int file) {
    static const auto passOn = reinterpret_cast<int (*)(int)>(::dlsym(RTLD_NEXT, "close"));
    const int result = passOn(file);
    return eFault::Takes("close") ? -1 : result;
}

extern "C" [[gnu::visibility("default")]] iconv_t Watched_iconv_open(const char* to,
                                                                     const char* from) __asm__("iconv_open");
iconv_t Watched_iconv_open(const char* to, const char* from) {
    static const auto passOn =
        reinterpret_cast<iconv_t (*)(const char*, const char*)>(::dlsym(RTLD_NEXT, "iconv_open"));
    return eFault::Takes("iconv_open") ? reinterpret_cast<iconv_t>(-1) : passOn(to, from);
}
