// SPDX-License-Identifier: BSL-1.0
#include "platform/windows/file_numbers.h"

#include <cstring>
#include <string>

namespace IO::Platform {

namespace {

eFileId LargeId(HANDLE file) noexcept {
    eFileId id;
    FILE_ID_INFO told{};
    if (::GetFileInformationByHandleEx(file, FileIdInfo, &told, sizeof(told))) {
        id.volume = told.VolumeSerialNumber;
        std::memcpy(&id.low, told.FileId.Identifier, sizeof(id.low));
        std::memcpy(&id.high, told.FileId.Identifier + sizeof(id.low), sizeof(id.high));
    }
    return id;
}

eFileId SmallId(HANDLE file) noexcept {
    eFileId id;
    BY_HANDLE_FILE_INFORMATION told{};
    if (::GetFileInformationByHandle(file, &told)) {
        id.volume = told.dwVolumeSerialNumber;
        id.low = static_cast<unsigned long long>(told.nFileIndexHigh) << 32 | told.nFileIndexLow;
    }
    return id;
}

// Empty if the system does not tell it in this form.
std::wstring NameInForm(HANDLE folder, DWORD form) {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const auto room = static_cast<DWORD>(name.size());
        const DWORD length = ::GetFinalPathNameByHandleW(folder, name.data(), room, form);
        name.resize(length);
        if (length < room)
            return name;
    }
}

} // namespace

eFileId NumberedId(HANDLE file) noexcept {
    eFileId id = LargeId(file);
    return id.IsNumbered() ? id : SmallId(file);
}

eFileId FolderId(HANDLE folder) {
    eFileId id = NumberedId(folder);
    if (!id.IsNumbered())
        id.finalName = FinalName(folder);
    // Some network drives have no letter that the system knows, or do not tell the names above a folder.
    if (!id.IsNumbered() && id.finalName.empty())
        id.finalName = NameInForm(folder, FILE_NAME_OPENED | VOLUME_NAME_NT);
    return id;
}

std::wstring FinalName(HANDLE file) {
    return NameInForm(file, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
}

} // namespace IO::Platform
