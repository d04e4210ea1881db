// SPDX-License-Identifier: BSL-1.0
#include "watched_calls.h"

#include <atomic>
#include <cerrno>
#include <utility>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <iconv.h>
#include <pthread.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

thread_local eCallWatcher* watcherOfThread = nullptr;
std::atomic<eCallWatcher*> watcherOfAll = nullptr;

bool Takes(const char* function, eWatchedCall call) {
    eCallWatcher* const watcher = watcherOfThread ? watcherOfThread : watcherOfAll.load();
    call.function = function;
    return watcher && watcher->Takes(call);
}

eWatchedCall OnName() {
    return {};
}

eWatchedCall On(int descriptor, int second = -1) {
    return {.descriptor = descriptor, .second = second};
}

eWatchedCall Unstoppable() {
    return {.interruptible = false};
}

eWatchedCall ForRoom(int descriptor, bool takesRoom = true) {
    return {.descriptor = descriptor, .takesRoom = takesRoom};
}

eWatchedCall Reading(int descriptor, std::size_t* bytes) {
    return {.descriptor = descriptor, .bytes = bytes};
}

eWatchedCall Writing(int descriptor, std::size_t* bytes, int second = -1) {
    return {.descriptor = descriptor, .second = second, .takesRoom = true, .bytes = bytes};
}

} // namespace

eCallWatcher* WatchThread(eCallWatcher* watcher) {
    return std::exchange(watcherOfThread, watcher);
}

eCallWatcher* WatchAll(eCallWatcher* watcher) {
    return watcherOfAll.exchange(watcher);
}

// Each function is defined under the system's name and under a local one, so that it need not match the exceptions and
// attributes that the system's headers declare.
#define DEFINED(result, name, parameters)                                                                              \
    extern "C" [[gnu::visibility("default")]] result Watched_##name parameters __asm__(#name);                         \
    result Watched_##name parameters
#define THE_SYSTEMS(result, name, parameters)                                                                          \
    static const auto passOn = reinterpret_cast<result(*) parameters>(::dlsym(RTLD_NEXT, #name))
#define WATCHED(result, name, parameters, facts, ...)                                                                  \
    DEFINED(result, name, parameters) {                                                                                \
        THE_SYSTEMS(result, name, parameters);                                                                         \
        return Takes(#name, facts) ? static_cast<result>(-1) : passOn(__VA_ARGS__);                                    \
    }

WATCHED(int, open, (const char* name, int flags, mode_t mode), ForRoom(-1, (flags & O_CREAT) != 0), name, flags, mode)
WATCHED(int, openat, (int folder, const char* name, int flags, mode_t mode), ForRoom(folder, (flags & O_CREAT) != 0),
        folder, name, flags, mode)
WATCHED(ssize_t, read, (int file, void* target, std::size_t n), Reading(file, &n), file, target, n)
WATCHED(ssize_t, pread, (int file, void* target, std::size_t n, off_t at), Reading(file, &n), file, target, n, at)
WATCHED(ssize_t, write, (int file, const void* source, std::size_t n), Writing(file, &n), file, source, n)
WATCHED(ssize_t, pwrite, (int file, const void* source, std::size_t n, off_t at), Writing(file, &n), file, source, n,
        at)
WATCHED(off_t, lseek, (int file, off_t offset, int from), On(file), file, offset, from)
WATCHED(int, ftruncate, (int file, off_t length), ForRoom(file), file, length)
WATCHED(int, fcntl, (int file, int command, void* argument), On(file), file, command, argument)
WATCHED(ssize_t, copy_file_range, (int source, off_t* from, int target, off_t* to, std::size_t n, unsigned flags),
        Writing(source, &n, target), source, from, target, to, n, flags)
WATCHED(ssize_t, sendfile, (int target, int source, off_t* from, std::size_t n), Writing(target, &n, source), target,
        source, from, n)
WATCHED(ssize_t, getdents64, (int folder, void* entries, std::size_t n), On(folder), folder, entries, n)
WATCHED(int, stat, (const char* name, struct stat* status), OnName(), name, status)
WATCHED(int, lstat, (const char* name, struct stat* status), OnName(), name, status)
WATCHED(int, fstat, (int file, struct stat* status), On(file), file, status)
WATCHED(int, fstatat, (int folder, const char* name, struct stat* status, int flags), On(folder), folder, name, status,
        flags)
WATCHED(int, access, (const char* name, int mode), OnName(), name, mode)
WATCHED(int, faccessat, (int folder, const char* name, int mode, int flags), On(folder), folder, name, mode, flags)
WATCHED(int, mkdir, (const char* name, mode_t mode), ForRoom(-1), name, mode)
WATCHED(int, mkdirat, (int folder, const char* name, mode_t mode), ForRoom(folder), folder, name, mode)
WATCHED(int, rmdir, (const char* name), OnName(), name)
WATCHED(int, unlink, (const char* name), OnName(), name)
WATCHED(int, unlinkat, (int folder, const char* name, int flags), On(folder), folder, name, flags)
WATCHED(int, rename, (const char* from, const char* to), ForRoom(-1), from, to)
WATCHED(int, renameat, (int source, const char* from, int target, const char* to), On(source, target), source, from,
        target, to)
WATCHED(int, renameat2, (int source, const char* from, int target, const char* to, unsigned flags), On(source, target),
        source, from, target, to, flags)
WATCHED(ssize_t, readlink, (const char* name, char* text, std::size_t n), OnName(), name, text, n)
WATCHED(ssize_t, readlinkat, (int folder, const char* name, char* text, std::size_t n), On(folder), folder, name, text,
        n)
WATCHED(int, symlinkat, (const char* text, int folder, const char* name), ForRoom(folder), text, folder, name)
WATCHED(int, fsync, (int file), ForRoom(file), file)
WATCHED(int, syncfs, (int file), ForRoom(file), file)
WATCHED(int, flock, (int file, int operation), On(file), file, operation)
WATCHED(int, fchmod, (int file, mode_t mode), On(file), file, mode)
WATCHED(int, fchown, (int file, uid_t user, gid_t group), On(file), file, user, group)
WATCHED(int, futimens, (int file, const timespec* times), On(file), file, times)
WATCHED(ssize_t, flistxattr, (int file, char* names, std::size_t n), On(file), file, names, n)
WATCHED(ssize_t, fgetxattr, (int file, const char* name, void* value, std::size_t n), On(file), file, name, value, n)
WATCHED(int, fsetxattr, (int file, const char* name, const void* value, std::size_t n, int flags), ForRoom(file), file,
        name, value, n, flags)
WATCHED(int, fremovexattr, (int file, const char* name), On(file), file, name)
WATCHED(int, gethostname, (char* name, std::size_t n), Unstoppable(), name, n)
WATCHED(int, madvise, (void* block, std::size_t n, int advice), Unstoppable(), block, n, advice)

// --- Functions that tell of a failure in another way ---

DEFINED(int, close, (int file)) {
    THE_SYSTEMS(int, close, (int));
    const int result = passOn(file);
    return Takes("close", On(file)) ? -1 : result;
}

DEFINED(iconv_t, iconv_open, (const char* to, const char* from)) {
    THE_SYSTEMS(iconv_t, iconv_open, (const char*, const char*));
    return Takes("iconv_open", Unstoppable()) ? reinterpret_cast<iconv_t>(-1) : passOn(to, from);
}

// The thread sanitizer calls it before it has started itself.
#ifndef QZL_THREADS_SANITIZED
DEFINED(void*, mmap, (void* place, std::size_t n, int protection, int flags, int file, off_t at)) {
    THE_SYSTEMS(void*, mmap, (void*, std::size_t, int, int, int, off_t));
    return Takes("mmap", Unstoppable()) ? MAP_FAILED : passOn(place, n, protection, flags, file, at);
}
#endif

DEFINED(int, getpwuid_r, (uid_t user, passwd* record, char* room, std::size_t n, passwd** found)) {
    THE_SYSTEMS(int, getpwuid_r, (uid_t, passwd*, char*, std::size_t, passwd**));
    return Takes("getpwuid_r", OnName()) ? errno : passOn(user, record, room, n, found);
}

// The thread sanitizer calls these before it has started itself.
#ifndef QZL_THREADS_SANITIZED
DEFINED(int, pthread_key_create, (pthread_key_t * key, void (*destroy)(void*))) {
    THE_SYSTEMS(int, pthread_key_create, (pthread_key_t*, void (*)(void*)));
    return Takes("pthread_key_create", Unstoppable()) ? errno : passOn(key, destroy);
}

DEFINED(int, pthread_setspecific, (pthread_key_t key, const void* value)) {
    THE_SYSTEMS(int, pthread_setspecific, (pthread_key_t, const void*));
    return Takes("pthread_setspecific", Unstoppable()) ? errno : passOn(key, value);
}
#endif
