// SPDX-License-Identifier: BSL-1.0
#include <array>
#include <string>
#include <vector>

#include <windows.h>

#include <winioctl.h>

#include "platform/machine.h"
#include "platform/pure/disk_descriptor.h"
#include "platform/windows/owned_handle.h"

namespace IO::Platform {

namespace {

// "C" for "C:\\Windows"; empty if the system does not tell.
std::string SystemDrive() {
    std::array<char, 260> folder{};
    if (::GetWindowsDirectoryA(folder.data(), folder.size()) == 0)
        return {};
    const std::string text(folder.data());
    return text.substr(0, text.find(':'));
}

// 0, or the system's error number.
DWORD QueryDevice(HANDLE device, void* answer, DWORD size) {
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    DWORD returned = 0;
    const BOOL answered = ::DeviceIoControl(device, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof(query), answer, size,
                                            &returned, nullptr);
    return answered ? 0 : ::GetLastError();
}

} // namespace

unsigned int AskDiskSerial(std::string* serial) {
    constexpr DWORD kMostBytes = 1 << 20;
    const std::string name = R"(\\.\)" + SystemDrive() + ":";
    const eOpenHandle device(
        ::CreateFileA(name.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!device.IsOpen())
        return ::GetLastError();
    STORAGE_DESCRIPTOR_HEADER header{};
    if (const DWORD failure = QueryDevice(device.Get(), &header, sizeof(header)))
        return failure;
    if (header.Size > kMostBytes)
        return ERROR_INVALID_DATA;
    std::vector<unsigned char> descriptor(header.Size);
    if (const DWORD failure = QueryDevice(device.Get(), descriptor.data(), header.Size))
        return failure;
    *serial = System::SerialInDescriptor(descriptor);
    return 0;
}

} // namespace IO::Platform
