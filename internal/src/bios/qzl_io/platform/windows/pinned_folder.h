// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <windows.h>

#include "platform/windows/file_numbers.h"
#include "platform/windows/owned_handle.h"

namespace IO::Platform {

// Opens a folder without FILE_SHARE_DELETE: while the handle is open, nobody can remove, rename or replace the folder,
// or rename one above it. The right to read the list makes the system check the sharing.
inline eOpenHandle PinFolder(const std::wstring& name, DWORD flags) {
    return eOpenHandle(::CreateFileW(name.c_str(), FILE_LIST_DIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                     OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

// A root already has its slash.
inline std::wstring WithSlash(std::wstring name) {
    if (!name.ends_with(L'\\'))
        name += L'\\';
    return name;
}

// The name of a pinned folder with a slash after it: the final one, through which no link leads and which therefore
// stays true, or `opened` if the system tells none that leads back to the folder.
inline std::wstring PinnedName(const eOpenHandle& pin, const std::wstring& opened) {
    const std::wstring told = FinalName(pin.Get());
    const eOpenHandle there = PinFolder(told, FILE_FLAG_OPEN_REPARSE_POINT);
    const bool leadsBack = there.IsOpen() && AreOneFolder(FolderId(pin.Get()), FolderId(there.Get()));
    return WithSlash(leadsBack ? told : opened);
}

} // namespace IO::Platform
