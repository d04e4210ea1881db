// SPDX-License-Identifier: BSL-1.0
#include "platform/saved_file.h"

#include <cerrno>
#include <climits>
#include <optional>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_handle.h"
#include "platform/posix/copy_content.h"
#include "platform/posix/failure.h"
#include "platform/posix/native_name.h"
#include "platform/posix/replacement.h"

namespace IO::Platform {
namespace {

bool Sync(int file) {
    return Uninterrupted([=] { return ::fsync(file); }) == 0;
}

// A folder that may be entered but not read cannot be opened for this; its whole file system is flushed instead.
bool SyncFolder(const eRealPlace& place, int file) {
    const eDescriptor folder(
        Uninterrupted([&] { return ::openat(place.folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    return folder.IsOpen() ? Sync(folder.Get()) || errno == EINVAL : Uninterrupted([=] { return ::syncfs(file); }) == 0;
}

bool CloseHandle(int handle) {
    return eDescriptor(handle).Close();
}

// A device or a pipe.
class eWrittenAtOnce : public eSavedFile {
public:
    bool TakePlace(int handle, bool toDisk) override {
        const bool synced = !toDisk || Sync(handle) || errno == EINVAL || errno == EROFS;
        return (CloseHandle(handle) && synced) || Refused(errno);
    }
    const std::string& Kept() const override { return none; }

private:
    std::string none;
};

class eWrittenBeside : public eSavedFile {
public:
    // `existing` is not open where the target is missing.
    eWrittenBeside(eRealPlace target, eDescriptor existingFile, const struct stat& facts)
        : place(std::move(target)),
          existing(std::move(existingFile)),
          beside(place, existing.IsOpen() ? kOwnersAlone : kNewFileMode) {
        if (existing.IsOpen() && beside.IsOpen())
            inOneStep = facts.st_nlink == 1 && beside.Resemble(existing.Get(), facts);
    }

    int NewHandle() const {
        return beside.IsOpen() ? Uninterrupted([&] { return ::fcntl(beside.Get(), F_DUPFD_CLOEXEC, 0); }) : -1;
    }

    bool TakePlace(int handle, bool toDisk) override {
        const bool written = !toDisk || Sync(handle);
        if (!CloseHandle(handle) || !written)
            return Refused(errno);
        if (inOneStep && beside.TakePlace())
            return !toDisk || SyncFolder(place, beside.Get()) || Refused(errno);
        if (inOneStep && (!existing.IsOpen() || !MayBeWrittenOnly(errno)))
            return KeepRefused(errno);
        return WriteInPlace(toDisk);
    }

    const std::string& Kept() const override { return kept; }

private:
    // The target cannot be replaced but perhaps written: it is a mount point, or its folder may not be changed.
    static bool MayBeWrittenOnly(int error) {
        return error == EACCES || error == EPERM || error == EBUSY || error == EXDEV;
    }

    bool KeepRefused(int error) {
        Keep();
        return Refused(error);
    }

    // While the target is neither the old document nor the new one, the document has a name that no save removes.
    bool WriteInPlace(bool toDisk) {
        const bool isKept = Keep() && (!toDisk || SyncFolder(place, beside.Get()));
        if (isKept && CopyInto(existing.Get()) && (!toDisk || Sync(existing.Get())) && existing.Close()) {
            beside.Discard();
            kept.clear();
            return true;
        }
        return Refused(errno);
    }

    // The room for the name comes before the renaming, so that no file is kept that is not told of.
    bool Keep() {
        kept = FolderName();
        kept.reserve(kept.size() + NAME_MAX);
        const bool lasts = beside.Keep();
        kept += beside.Name();
        return lasts;
    }

    // The target's folder with a slash after it; empty if the system does not tell it.
    std::string FolderName() const {
        std::vector<char> name(PATH_MAX);
        const std::string link = "/proc/self/fd/" + std::to_string(place.folder.Get());
        const ssize_t length = Uninterrupted([&] { return ::readlink(link.c_str(), name.data(), name.size()); });
        return length > 0 ? std::string(name.data(), static_cast<std::size_t>(length)) + '/' : std::string();
    }

    bool CopyInto(int target) {
        struct stat own {};
        return AskFacts(beside.Get(), &own) && LetWait(existing) &&
               Uninterrupted([&] { return ::lseek(beside.Get(), 0, SEEK_SET); }) == 0 &&
               CopyContent(beside.Get(), own, target, eCopyHoles::Fill, {}) == System::eCopyEnd::Complete &&
               Uninterrupted([&] { return ::ftruncate(target, own.st_size); }) == 0;
    }

    eRealPlace place;
    eDescriptor existing;
    eReplacement beside;
    bool inOneStep = true;
    std::string kept;
};

std::unique_ptr<eSavedFile> BeginBeside(const char* target, eDescriptor existing, const struct stat& facts,
                                        int* handle) {
    auto place = RealPlace({AT_FDCWD, target});
    if (!place || (existing.IsOpen() && !StandsAt({place->folder.Get(), place->name.c_str()}, facts))) {
        Refused(place ? ESTALE : errno);
        return nullptr;
    }
    auto saved = std::make_unique<eWrittenBeside>(std::move(*place), std::move(existing), facts);
    *handle = saved->NewHandle();
    if (*handle != -1)
        return saved;
    Refused(errno);
    return nullptr;
}

std::unique_ptr<eSavedFile> BeginAtOnce(const char* target, int* handle) {
    auto saved = std::make_unique<eWrittenAtOnce>();
    *handle = OpenFile(target, kOpenCreate);
    return *handle == -1 ? nullptr : std::move(saved);
}

std::unique_ptr<eSavedFile> BeginOnce(const char* target, int* handle) {
    *handle = -1;
    eDescriptor existing = OpenAtOnce(AT_FDCWD, target, O_WRONLY);
    struct stat facts {};
    if (!existing.IsOpen() && errno == ENOENT)
        return BeginBeside(target, std::move(existing), facts, handle);
    const bool awaitsReader = !existing.IsOpen() && errno == ENXIO;
    if (!awaitsReader && (!existing.IsOpen() || !AskFacts(existing.Get(), &facts))) {
        Refused(errno);
        return nullptr;
    }
    if (awaitsReader || !S_ISREG(facts.st_mode))
        return BeginAtOnce(target, handle);
    return BeginBeside(target, std::move(existing), facts, handle);
}

// Another save may replace the target after it was opened and before its place was found.
std::unique_ptr<eSavedFile> Begin(const char* target, int* handle) {
    constexpr unsigned kMostTries = 100;
    auto saved = BeginOnce(target, handle);
    for (unsigned tries = 1; !saved && lastFailure == ESTALE && tries < kMostTries; ++tries)
        saved = BeginOnce(target, handle);
    return saved;
}

} // namespace

template <class Char>
std::unique_ptr<eSavedFile> BeginSave(const Char* target, int* handle) {
    return Begin(eNativeName(target).c_str(), handle);
}

template <class Char>
bool PrepareSave(const Char* target) {
    const eNativeName name(target);
    const int handle = OpenFile(name.c_str(), kOpenWrite);
    if (handle == -1)
        return false;
    struct stat facts {};
    const bool told = AskFacts(handle, &facts);
    CloseFile(handle);
    const auto place = told ? RealPlace({AT_FDCWD, name.c_str()}) : std::nullopt;
    const auto ask = [&] { return ::faccessat(place->folder.Get(), ".", W_OK | X_OK, AT_EACCESS); };
    const bool takesFiles = place && (!S_ISREG(facts.st_mode) || Uninterrupted(ask) == 0);
    return takesFiles || Refused(errno);
}

template std::unique_ptr<eSavedFile> BeginSave(const char* target, int* handle);
template std::unique_ptr<eSavedFile> BeginSave(const wchar_t* target, int* handle);
template bool PrepareSave(const char* target);
template bool PrepareSave(const wchar_t* target);

} // namespace IO::Platform
