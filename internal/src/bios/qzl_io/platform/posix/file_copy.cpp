#include "file_copy.h"

#include <array>
#include <memory>

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "../../copy_steps.h"
#include "../cancel_flag.h"
#include "descriptor.h"

namespace IO::Platform {

namespace {

using System::CopyInSteps;
using System::eCopyEnd;
using System::eCopyWay;

constexpr std::size_t copyStep = std::size_t{4} << 20;
constexpr std::size_t plainStep = std::size_t{64} << 10;
constexpr mode_t permissionBits = 0777;

int LinkFlag(eCopyLinks links) {
    return links == eCopyLinks::Refuse ? O_NOFOLLOW : 0;
}

/// Never waits for the other end of a pipe.
eDescriptor Open(ePlace place, int flags, mode_t mode = 0) {
    return eDescriptor(Uninterrupted(
        [&] { return ::openat(place.folder, place.name, flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode); }));
}

bool IsRegular(const eDescriptor& file, struct stat* status) {
    return file.IsOpen() && ::fstat(file.Get(), status) == 0 && S_ISREG(status->st_mode);
}

/// Opens the existing target for writing, empty. Not open when it is the source or no regular file.
eDescriptor OpenExisting(ePlace to, eCopyLinks links, const struct stat& source) {
    eDescriptor target = Open(to, O_WRONLY | LinkFlag(links));
    struct stat status {};
    if (!IsRegular(target, &status) || (status.st_dev == source.st_dev && status.st_ino == source.st_ino))
        return eDescriptor();
    if (status.st_size != 0 && Uninterrupted([&] { return ::ftruncate(target.Get(), 0); }) != 0)
        return eDescriptor();
    return target;
}

eDescriptor OpenTarget(ePlace to, eCopyLinks links, const struct stat& source) {
    eDescriptor target = Open(to, O_WRONLY | O_CREAT | O_EXCL, source.st_mode & permissionBits);
    if (!target.IsOpen() && errno == EEXIST)
        target = OpenExisting(to, links, source);
    return target;
}

bool WriteAll(int target, const char* bytes, std::size_t count) {
    while (count != 0) {
        const ssize_t written = Uninterrupted([&] { return ::write(target, bytes, count); });
        if (written <= 0)
            return false;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

long long PlainStep(int source, int target, std::size_t limit) {
    const auto buffer = std::make_unique_for_overwrite<char[]>(plainStep);
    const std::size_t most = limit < plainStep ? limit : plainStep;
    const ssize_t count = Uninterrupted([&] { return ::read(source, buffer.get(), most); });
    if (count > 0 && !WriteAll(target, buffer.get(), static_cast<std::size_t>(count)))
        return -1;
    return count;
}

eCopyEnd CopyBytes(int source, int target, unsigned long long size, const bool* cancel) {
    const eCopyWay inKernel = [=](std::size_t limit) -> long long {
        return Uninterrupted([&] { return ::copy_file_range(source, nullptr, target, nullptr, limit, 0); });
    };
    const eCopyWay byPages = [=](std::size_t limit) -> long long {
        return Uninterrupted([&] { return ::sendfile(target, source, nullptr, limit); });
    };
    const eCopyWay plain = [=](std::size_t limit) { return PlainStep(source, target, limit); };
    const auto stop = [cancel] { return cancel && IsCancelled(cancel); };
    // The kernel's own ways cost more to set up than one read and one write.
    if (size <= plainStep)
        return CopyInSteps({plain}, plainStep, size, stop);
    return CopyInSteps({inKernel, byPages, plain}, copyStep, size, stop);
}

} // namespace

void CopyRegularFile(ePlace from, ePlace to, eCopyLinks links, const bool* cancel) {
    struct stat source {};
    const eDescriptor input = Open(from, O_RDONLY | LinkFlag(links));
    if (!IsRegular(input, &source))
        return;
    const eDescriptor output = OpenTarget(to, links, source);
    if (!output.IsOpen())
        return;
    const auto size = static_cast<unsigned long long>(source.st_size);
    if (CopyBytes(input.Get(), output.Get(), size, cancel) == eCopyEnd::Complete)
        ::fchmod(output.Get(), source.st_mode & permissionBits);
    else
        ::unlinkat(to.folder, to.name, 0);
}

} // namespace IO::Platform
