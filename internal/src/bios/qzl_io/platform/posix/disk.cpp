// SPDX-License-Identifier: BSL-1.0
#include <array>
#include <cerrno>
#include <cstddef>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "platform/machine.h"
#include "platform/posix/descriptor.h"
#include "platform/posix/entries.h"
#include "platform/pure/disk_descriptor.h"
#include "platform/pure/entry_kind.h"

namespace IO::Platform {

namespace {

// Reads a file in which the system describes a device, at most one page. Returns 0 or the error number.
unsigned int ReadShown(const std::string& name, std::string* content) {
    std::array<char, 4096> page{};
    const eDescriptor file(Uninterrupted([&] { return ::open(name.c_str(), O_RDONLY | O_CLOEXEC); }));
    const ssize_t count =
        file.IsOpen() ? Uninterrupted([&] { return ::read(file.Get(), page.data(), page.size()); }) : -1;
    if (count < 0)
        return static_cast<unsigned int>(errno);
    content->assign(page.data(), static_cast<std::size_t>(count));
    return 0;
}

std::string FirstEntryOf(const std::string& folder) {
    const eDescriptor opened(Uninterrupted([&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    eEntryReader reader;
    while (const dirent64* entry = opened.IsOpen() ? reader.Next(opened.Get()) : nullptr)
        if (!IsDots(entry->d_name))
            return entry->d_name;
    return {};
}

// The disk below a device: down through the layers on top of each other (encryption, volume groups), then from a
// partition to its disk.
std::string DiskBelow(std::string device) {
    constexpr int kMostLayers = 8;
    for (int layer = 0; layer < kMostLayers; ++layer) {
        const std::string lower = FirstEntryOf(device + "/slaves");
        if (lower.empty())
            break;
        device += "/slaves/" + lower;
    }
    const std::string partition = device + "/partition";
    const bool isPartition = Uninterrupted([&] { return ::access(partition.c_str(), F_OK); }) == 0;
    return isPartition ? device + "/.." : device;
}

void CutLineEnd(std::string* text) {
    while (!text->empty() && text->back() == '\n')
        text->pop_back();
}

unsigned int SerialShown(const std::string& disk, std::string* serial) {
    for (const char* place : {"/serial", "/device/serial"}) {
        if (ReadShown(disk + place, serial) == 0) {
            CutLineEnd(serial);
            return 0;
        }
    }
    std::string page;
    const unsigned int failure = ReadShown(disk + "/device/vpd_pg80", &page);
    if (failure == 0)
        *serial = System::SerialInPage80({reinterpret_cast<const unsigned char*>(page.data()), page.size()});
    return failure;
}

} // namespace

unsigned int AskDiskSerial(std::string* serial) {
    struct stat root {};
    if (Uninterrupted([&] { return ::stat("/", &root); }) != 0)
        return static_cast<unsigned int>(errno);
    const std::string device =
        "/sys/dev/block/" + std::to_string(major(root.st_dev)) + ":" + std::to_string(minor(root.st_dev));
    return SerialShown(DiskBelow(device), serial);
}

} // namespace IO::Platform
