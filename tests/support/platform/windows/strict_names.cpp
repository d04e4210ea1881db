// SPDX-License-Identifier: BSL-1.0
#include "support/platform/windows/strict_names.h"

#include <cerrno>
#include <cstddef>
#include <string_view>

#include <windows.h>

#include <io.h>

#include "support/platform/windows/import_table.h"

namespace {

constexpr char kLibrary[] = "qzl_io.dll";
constexpr char kRunTime[] = "msvcrt.dll"; // contains the access test, which is not called through an import table
constexpr std::size_t kFileRoom = 260;    // with the terminating zero
constexpr std::size_t kFolderRoom = 248;  // with the terminating zero

std::vector<std::wstring> given;

std::wstring Absolute(const wchar_t* name) {
    std::wstring full(40'000, L'\0');
    full.resize(::GetFullPathNameW(name, static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

bool IsOnDiskForm(std::wstring_view extended) {
    extended.remove_prefix(4);
    for (const wchar_t* foreign : {L"/", L"\\\\", L"\\.\\", L"\\..\\"})
        if (extended.find(foreign) != extended.npos)
            return false;
    return extended.size() > 2 && !extended.ends_with(L"\\.") && !extended.ends_with(L"\\..");
}

bool Passes(const wchar_t* name, std::size_t room = kFileRoom) {
    given.emplace_back(name);
    const bool extended = given.back().starts_with(L"\\\\?\\");
    const bool passes = extended ? IsOnDiskForm(given.back()) : Absolute(name).size() < room;
    if (!passes) {
        ::SetLastError(ERROR_PATH_NOT_FOUND);
        errno = ENOENT;
    }
    return passes;
}

// Each system call as it was before, and its replacement.
decltype(&::CreateDirectoryW) makeFolder;
decltype(&::RemoveDirectoryW) removeFolder;
decltype(&::CreateFileW) createFile;
decltype(&::DeleteFileW) deleteFile;
decltype(&::CopyFileW) copyFile;
decltype(&::CopyFileExW) copyFileEx;
decltype(&::FindFirstFileW) findFirst;
decltype(&::GetFileAttributesW) askAttributes;
decltype(&::_wrename) renameFile;
decltype(&::_wsopen_s) openFile;

BOOL WINAPI CreateDirectoryIn(LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
    return Passes(name, kFolderRoom) && makeFolder(name, security);
}
BOOL WINAPI RemoveDirectoryIn(LPCWSTR name) {
    return Passes(name) && removeFolder(name);
}
HANDLE WINAPI CreateFileIn(LPCWSTR name, DWORD rights, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                           DWORD flags, HANDLE model) {
    return Passes(name) ? createFile(name, rights, share, security, how, flags, model) : INVALID_HANDLE_VALUE;
}
BOOL WINAPI DeleteFileIn(LPCWSTR name) {
    return Passes(name) && deleteFile(name);
}
BOOL WINAPI CopyFileIn(LPCWSTR from, LPCWSTR to, BOOL refuseExisting) {
    return Passes(from) && Passes(to) && copyFile(from, to, refuseExisting);
}
BOOL WINAPI CopyFileExIn(LPCWSTR from, LPCWSTR to, LPPROGRESS_ROUTINE progress, LPVOID data, LPBOOL cancel,
                         DWORD flags) {
    return Passes(from) && Passes(to) && copyFileEx(from, to, progress, data, cancel, flags);
}
HANDLE WINAPI FindFirstFileIn(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    return Passes(pattern) ? findFirst(pattern, found) : INVALID_HANDLE_VALUE;
}
DWORD WINAPI GetFileAttributesIn(LPCWSTR name) {
    return Passes(name) ? askAttributes(name) : INVALID_FILE_ATTRIBUTES;
}
int __cdecl RenameIn(const wchar_t* from, const wchar_t* to) {
    return Passes(from) && Passes(to) ? renameFile(from, to) : -1;
}
errno_t __cdecl OpenIn(int* file, const wchar_t* name, int flags, int share, int mode) {
    *file = -1;
    return Passes(name) ? openFile(file, name, flags, share, mode) : ENOENT;
}

} // namespace

struct eStrictNames::eReplacements {
    eReplacedCall<decltype(makeFolder)> a{kLibrary, "CreateDirectoryW", &CreateDirectoryIn, &makeFolder};
    eReplacedCall<decltype(removeFolder)> b{kLibrary, "RemoveDirectoryW", &RemoveDirectoryIn, &removeFolder};
    eReplacedCall<decltype(createFile)> c{kLibrary, "CreateFileW", &CreateFileIn, &createFile};
    eReplacedCall<decltype(deleteFile)> d{kLibrary, "DeleteFileW", &DeleteFileIn, &deleteFile};
    eReplacedCall<decltype(copyFile)> e{kLibrary, "CopyFileW", &CopyFileIn, &copyFile};
    eReplacedCall<decltype(copyFileEx)> f{kLibrary, "CopyFileExW", &CopyFileExIn, &copyFileEx};
    eReplacedCall<decltype(findFirst)> g{kLibrary, "FindFirstFileW", &FindFirstFileIn, &findFirst};
    eReplacedCall<decltype(askAttributes)> h{kRunTime, "GetFileAttributesW", &GetFileAttributesIn, &askAttributes};
    eReplacedCall<decltype(renameFile)> i{kLibrary, "_wrename", &RenameIn, &renameFile};
    eReplacedCall<decltype(openFile)> j{kLibrary, "_wsopen_s", &OpenIn, &openFile};
};

eStrictNames::eStrictNames() : replacements(std::make_unique<eReplacements>()) {
    given.clear();
}

eStrictNames::~eStrictNames() = default;

const std::vector<std::wstring>& eStrictNames::Given() const {
    return given;
}
