// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/file_copy.h"

#include <cerrno>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/copy_content.h"
#include "platform/posix/failure.h"
#include "platform/posix/replacement.h"

namespace IO::Platform {

namespace {

using System::eCopyEnd;

struct eOpened {
    eDescriptor file;
    struct stat facts {};

    eOpened(ePlace place, int flags) : file(OpenAtOnce(place.folder, place.name, flags)) {
        if (file.IsOpen() && !AskFacts(file.Get(), &facts))
            file.Close();
    }

    bool IsRegular() const { return file.IsOpen() && S_ISREG(facts.st_mode); }
};

bool IsSame(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

void Remove(int folder, const char* name) {
    Uninterrupted([&] { return ::unlinkat(folder, name, 0); });
}

// Refused if the file belongs to another user.
void KeepTime(int target, const struct stat& source) {
    const timespec times[] = {{0, UTIME_OMIT}, source.st_mtim};
    Uninterrupted([&] { return ::futimens(target, times); });
}

// Copies the content, and the time of its last change, to an empty file.
eCopyEnd CopyWithTime(const eOpened& source, int target, const eCopyWatch& watch) {
    const eCopyEnd end = CopyContent(source.file.Get(), source.facts, target, eCopyHoles::Keep, watch);
    if (end == eCopyEnd::Complete)
        KeepTime(target, source.facts);
    return end;
}

// During its lifetime, the calling thread survives a pipe whose reader goes away.
class eBrokenPipeSurvived {
public:
    eBrokenPipeSurvived() {
        sigemptyset(&signal);
        sigaddset(&signal, SIGPIPE);
        sigset_t pending;
        ::sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &signal, &before);
    }
    ~eBrokenPipeSurvived() {
        const timespec atOnce{};
        if (!wasPending)
            Uninterrupted([&] { return ::sigtimedwait(&signal, nullptr, &atOnce); });
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    }
    eBrokenPipeSurvived(const eBrokenPipeSurvived&) = delete;
    eBrokenPipeSurvived& operator=(const eBrokenPipeSurvived&) = delete;

private:
    sigset_t signal{};
    sigset_t before{};
    bool wasPending;
};

// One copy to a target that exists.
class eOverwriting {
public:
    eOverwriting(const eOpened& from, const eOpened& to, const eRealPlace* toPlace, const eCopyWatch& copyWatch)
        : source(from), target(to), place(toPlace), watch(copyWatch) {}

    void Run() {
        if (!place || !target.IsRegular() || target.facts.st_nlink != 1 || !Replace())
            WriteInPlace();
    }

private:
    // False if the target can only be written in place.
    bool Replace() {
        eReplacement replacement(*place, kOwnersAlone);
        if (!replacement.IsOpen())
            return !IsForbidden(errno);
        if (!replacement.Resemble(target.file.Get(), target.facts))
            return false;
        const eCopyEnd end = CopyWithTime(source, replacement.Get(), watch);
        if (end == eCopyEnd::Stopped)
            Remove(place->folder.Get(), place->name.c_str());
        return end != eCopyEnd::Complete || replacement.TakePlace() || !IsForbidden(errno);
    }

    // Whether this process, or every process there, may not replace the file (for example a file that is a mount point,
    // or a folder that cannot change), or the file system does not know the operation.
    static bool IsForbidden(int error) {
        return error == EACCES || error == EPERM || error == EBUSY || error == EROFS || error == ENOSYS ||
               error == EOPNOTSUPP;
    }

    void WriteInPlace() {
        const eBrokenPipeSurvived survived;
        const int to = target.file.Get();
        const bool rewound = Uninterrupted([&] { return ::lseek(source.file.Get(), 0, SEEK_SET); }) == 0;
        if (!rewound || !LetWait(target.file))
            return;
        const eCopyEnd end = CopyContent(source.file.Get(), source.facts, to, eCopyHoles::Fill, watch);
        if (!target.IsRegular())
            return;
        const off_t arrived = Uninterrupted([&] { return ::lseek(to, 0, SEEK_CUR); });
        if (end == eCopyEnd::Stopped && place)
            Remove(place->folder.Get(), place->name.c_str());
        else if (end == eCopyEnd::Complete || arrived > 0)
            Uninterrupted([&] { return ::ftruncate(to, arrived); });
        if (end == eCopyEnd::Complete)
            KeepTime(to, source.facts);
    }

    const eOpened& source;
    const eOpened& target;
    const eRealPlace* place;
    const eCopyWatch& watch;
};

// Replaces whatever has the name, and writes through no link. False, with errno, if it does not get the name.
bool CopyAnew(const eOpened& source, const eRealPlace& place, const eCopyWatch& watch) {
    eReplacement target(place, source.facts.st_mode & kPermissionBits);
    return target.IsOpen() && CopyWithTime(source, target.Get(), watch) == eCopyEnd::Complete && target.TakePlace();
}

void CopyOpened(const eOpened& source, ePlace to, const eCopyWatch& watch) {
    const eOpened existing(to, O_WRONLY);
    const bool isNew = !existing.file.IsOpen() && errno == ENOENT;
    if (!isNew && (!existing.file.IsOpen() || IsSame(existing.facts, source.facts)))
        return;
    const auto place = RealPlace(to);
    if (isNew && place)
        CopyAnew(source, *place, watch);
    else if (!isNew)
        eOverwriting(source, existing,
                     place && StandsAt({place->folder.Get(), place->name.c_str()}, existing.facts) ? &*place : nullptr,
                     watch)
            .Run();
}

} // namespace

void CopyRegularFile(ePlace from, ePlace to, const eCopyWatch& watch) {
    const eOpened source(from, O_RDONLY);
    if (source.IsRegular())
        CopyOpened(source, to, watch);
}

bool CopyNewFile(ePlace from, ePlace to, eNamedLink link, const eCopyWatch& watch) {
    const eOpened source(from, O_RDONLY | (link == eNamedLink::Refuse ? O_NOFOLLOW : 0));
    if (!source.IsRegular())
        return Refused(source.file.IsOpen() ? ENOTSUP : errno);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL;
    eDescriptor target = OpenAtOnce(to.folder, to.name, kFlags, source.facts.st_mode & kPermissionBits);
    if (!target.IsOpen() && errno == EEXIST)
        return CopyAnew(source, {OpenPlace(to.folder, "."), to.name}, watch) || Refused(errno);
    if (!target.IsOpen())
        return Refused(errno);
    if (CopyWithTime(source, target.Get(), watch) == eCopyEnd::Complete && target.Close())
        return true;
    const int reason = errno;
    Remove(to.folder, to.name);
    return Refused(reason);
}

} // namespace IO::Platform
