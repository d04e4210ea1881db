// SPDX-License-Identifier: BSL-1.0
#include "platform/posix/copy_content.h"

#include <cerrno>
#include <cstddef>
#include <memory>
#include <new>

#include <sys/sendfile.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"

namespace IO::Platform {

namespace {

using System::CopyInSteps;
using System::eCopyEnd;
using System::eCopyWay;

constexpr std::size_t kCopyStep = std::size_t{4} << 20;
constexpr std::size_t kPlainStep = std::size_t{64} << 10;
constexpr blkcnt_t kBlockSize = 512;

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
    const std::size_t most = limit < kPlainStep ? limit : kPlainStep;
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[most]);
    if (!buffer) {
        errno = ENOMEM;
        return -1;
    }
    const ssize_t count = Uninterrupted([&] { return ::read(source, buffer.get(), most); });
    if (count > 0 && !WriteAll(target, buffer.get(), static_cast<std::size_t>(count)))
        return -1;
    return count;
}

// Copies from the current positions of both files; a size of 0 means unknown. `before` is what the watch takes for
// copied.
eCopyEnd CopyRun(int source, int target, unsigned long long size, const eCopyWatch& watch,
                 unsigned long long before = 0) {
    const eCopyWay inKernel = [=](std::size_t limit) -> long long {
        return Uninterrupted([&] { return ::copy_file_range(source, nullptr, target, nullptr, limit, 0); });
    };
    const eCopyWay byPages = [=](std::size_t limit) -> long long {
        return Uninterrupted([&] { return ::sendfile(target, source, nullptr, limit); });
    };
    const eCopyWay plain = [=](std::size_t limit) { return PlainStep(source, target, limit); };
    const auto stop = [&](unsigned long long arrived) { return watch && !watch(before + arrived); };
    // The kernel's copying calls cost more to set up than one read and one write.
    if (size <= kPlainStep)
        return CopyInSteps({plain}, kPlainStep, size, stop);
    return CopyInSteps({inKernel, byPages, plain}, kCopyStep, size, stop);
}

off_t MoveTo(int file, off_t position, int from = SEEK_SET) {
    return Uninterrupted([&] { return ::lseek(file, position, from); });
}

eCopyEnd CopyPart(int source, int target, off_t begin, off_t end, const eCopyWatch& watch) {
    if (MoveTo(source, begin) < 0 || MoveTo(target, begin) < 0)
        return eCopyEnd::Failed;
    return CopyRun(source, target, static_cast<unsigned long long>(end - begin), watch,
                   static_cast<unsigned long long>(begin));
}

// If the system does not tell where holes are, the rest counts as data.
eCopyEnd CopyAroundHoles(int source, int target, off_t size, const eCopyWatch& watch) {
    if (watch && !watch(0))
        return eCopyEnd::Stopped;
    for (off_t end = 0; end < size;) {
        off_t begin = MoveTo(source, end, SEEK_DATA);
        if (begin < 0 && errno == ENXIO)
            break;
        off_t next = begin < 0 ? -1 : MoveTo(source, begin, SEEK_HOLE);
        if (next < 0 || next > size) {
            begin = end;
            next = size;
        }
        const eCopyEnd part = CopyPart(source, target, begin, next, watch);
        if (part != eCopyEnd::Complete)
            return part;
        end = next;
    }
    const bool sized = Uninterrupted([&] { return ::ftruncate(target, size); }) == 0;
    return sized ? eCopyEnd::Complete : eCopyEnd::Failed;
}

} // namespace

eCopyEnd CopyContent(int source, const struct stat& facts, int target, eCopyHoles holes, const eCopyWatch& watch) {
    const bool hasHoles = facts.st_blocks < facts.st_size / kBlockSize;
    if (hasHoles && holes == eCopyHoles::Keep)
        return CopyAroundHoles(source, target, facts.st_size, watch);
    return CopyRun(source, target, static_cast<unsigned long long>(facts.st_size), watch);
}

} // namespace IO::Platform
