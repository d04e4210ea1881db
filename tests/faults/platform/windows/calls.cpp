// SPDX-License-Identifier: BSL-1.0
#include "faults/platform/windows/calls.h"

#include <windows.h>

#include <aclapi.h>
#include <io.h>
#include <winreg.h>

#include "faults/platform/windows/stand_in.h"

namespace {

constexpr const char* kLibrary = "qzl_io.dll";
constexpr const char* kBase = "qzl_base.dll";

#define STAND_IN(call, ...) const eStandIn<#call, decltype(&::call), __VA_ARGS__> stand_in_##call

// The calls that move bytes may move fewer.
template <eCallName name, class Call>
class eSystemsTransfer;

template <eCallName name, class Buffer>
class eSystemsTransfer<name, BOOL (*)(HANDLE, Buffer, DWORD, DWORD*, OVERLAPPED*)> {
public:
    explicit eSystemsTransfer(const char* module)
        : import(module, name.text, reinterpret_cast<void*>(&Instead), reinterpret_cast<void**>(&systems)) {}

private:
    static BOOL Instead(HANDLE file, Buffer buffer, DWORD n, DWORD* done, OVERLAPPED* how) {
        std::size_t bytes = n;
        const int failure = eInjection::TakesCall({.function = name.text,
                                                   .handles = {HandleIn(file), -1},
                                                   .takesRoom = true,
                                                   .interruptible = false,
                                                   .bytes = &bytes});
        return failure != 0 ? Fails::WithZero(failure) : systems(file, buffer, static_cast<DWORD>(bytes), done, how);
    }

    static inline BOOL (*systems)(HANDLE, Buffer, DWORD, DWORD*, OVERLAPPED*) = nullptr;
    const eReplacedImport import;
};

template <eCallName name, class Buffer>
class eSystemsTransfer<name, int (*)(int, Buffer, unsigned)> {
public:
    explicit eSystemsTransfer(const char* module)
        : import(module, name.text, reinterpret_cast<void*>(&Instead), reinterpret_cast<void**>(&systems)) {}

private:
    static int Instead(int file, Buffer buffer, unsigned n) {
        std::size_t bytes = n;
        const int failure = eInjection::TakesCall({.function = name.text,
                                                   .handles = {HandleIn(file), -1},
                                                   .takesRoom = true,
                                                   .interruptible = false,
                                                   .bytes = &bytes});
        return failure != 0 ? Fails::WithMinusOne(failure) : systems(file, buffer, static_cast<unsigned>(bytes));
    }

    static inline int (*systems)(int, Buffer, unsigned) = nullptr;
    const eReplacedImport import;
};

// A failing close still closes.
class eClose {
public:
    explicit eClose(const char* module) : call(module, "_close", &Instead, &systems) {}

private:
    static int Instead(int file) {
        const int failure = eInjection::TakesCall({.function = "_close",
                                                   .handles = {HandleIn(file), -1},
                                                   .takesRoom = true,
                                                   .interruptible = false,
                                                   .bytes = nullptr});
        const int result = systems(file);
        return failure != 0 ? Fails::WithMinusOne(failure) : result;
    }

    static inline decltype(&::_close) systems = nullptr;
    const eReplacedCall<decltype(systems)> call;
};

struct eFileCalls {
    STAND_IN(CopyFileW, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(CopyFileExW, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(CreateDirectoryW, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(CreateDirectoryExW, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(CreateFileA, Fails::WithoutHandle){kLibrary};
    STAND_IN(CreateFileW, Fails::WithoutHandle){kLibrary};
    STAND_IN(DeleteFileW, Fails::WithZero){kLibrary};
    STAND_IN(DeviceIoControl, Fails::WithZero){kLibrary};
    STAND_IN(FindFirstFileW, Fails::WithoutHandle){kLibrary};
    STAND_IN(FindFirstStreamW, Fails::WithoutHandle){kLibrary};
    STAND_IN(FindNextFileW, Fails::WithZero){kLibrary};
    STAND_IN(FindNextStreamW, Fails::WithZero){kLibrary};
    STAND_IN(FlushFileBuffers, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(GetFileAttributesW, Fails::WithMinusOne){kLibrary};
    STAND_IN(GetFileInformationByHandle, Fails::WithZero){kLibrary};
    STAND_IN(GetFileInformationByHandleEx, Fails::WithZero){kLibrary};
    STAND_IN(GetFileType, Fails::WithZero){kLibrary};
    STAND_IN(GetFinalPathNameByHandleW, Fails::WithZero){kLibrary};
    STAND_IN(MoveFileExW, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(RemoveDirectoryW, Fails::WithZero){kLibrary};
    STAND_IN(SetEndOfFile, Fails::WithZero, eRoom::May){kLibrary};
    STAND_IN(SetFileTime, Fails::WithZero){kLibrary};
    STAND_IN(GetNamedSecurityInfoW, Fails::WithSystemsError){kLibrary};
    STAND_IN(GetSecurityDescriptorControl, Fails::WithZero){kLibrary};
    STAND_IN(SetNamedSecurityInfoW, Fails::WithSystemsError){kLibrary};
    const eSystemsTransfer<"ReadFile", decltype(&::ReadFile)> reading{kLibrary};
    const eSystemsTransfer<"WriteFile", decltype(&::WriteFile)> writing{kLibrary};
};

struct eRunTimeCalls {
    STAND_IN(_chsize, Fails::WithMinusOne, eRoom::May){kLibrary};
    STAND_IN(_commit, Fails::WithMinusOne, eRoom::May){kLibrary};
    STAND_IN(_filelengthi64, Fails::WithMinusOne){kLibrary};
    STAND_IN(_get_osfhandle, Fails::WithMinusOne){kLibrary};
    STAND_IN(_lseeki64, Fails::WithMinusOne){kLibrary};
    STAND_IN(_open_osfhandle, Fails::WithMinusOne){kLibrary};
    STAND_IN(_waccess, Fails::WithMinusOne){kLibrary};
    STAND_IN(_wrename, Fails::WithMinusOne){kLibrary};
    const eSystemsTransfer<"_read", decltype(&::_read)> reading{kLibrary};
    const eSystemsTransfer<"_write", decltype(&::_write)> writing{kLibrary};
    const eClose closing{kLibrary};
};

struct eMachineCalls {
    STAND_IN(GetComputerNameA, Fails::WithZero){kLibrary};
    STAND_IN(GetComputerNameW, Fails::WithZero){kLibrary};
    STAND_IN(GetUserNameA, Fails::WithZero){kLibrary};
    STAND_IN(GetUserNameW, Fails::WithZero){kLibrary};
    STAND_IN(GetCurrentDirectoryW, Fails::WithZero){kLibrary};
    STAND_IN(GetModuleFileNameW, Fails::WithZero){kLibrary};
    STAND_IN(GetShortPathNameW, Fails::WithZero){kLibrary};
    STAND_IN(GetWindowsDirectoryA, Fails::WithZero){kLibrary};
    STAND_IN(RegOpenKeyExA, Fails::WithSystemsError){kLibrary};
    STAND_IN(RegOpenKeyExW, Fails::WithSystemsError){kLibrary};
    STAND_IN(RegQueryValueExA, Fails::WithSystemsError){kLibrary};
    STAND_IN(RegQueryValueExW, Fails::WithSystemsError){kLibrary};
    STAND_IN(VerifyVersionInfoW, Fails::WithZero){kLibrary};
};

struct eTextCalls {
    explicit eTextCalls(const char* module)
        : stand_in_MultiByteToWideChar(module), stand_in_WideCharToMultiByte(module) {}

    STAND_IN(MultiByteToWideChar, Fails::WithZero);
    STAND_IN(WideCharToMultiByte, Fails::WithZero);
};

struct eThreadCalls {
    STAND_IN(TlsAlloc, Fails::WithMinusOne){kBase};
    STAND_IN(TlsSetValue, Fails::WithZero){kBase};
};

} // namespace

void InstallCalls() {
    static const eFileCalls files;
    static const eRunTimeCalls runTime;
    static const eMachineCalls machine;
    static const eTextCalls texts(kLibrary);
    static const eTextCalls pages(kBase);
    static const eThreadCalls threads;
}
