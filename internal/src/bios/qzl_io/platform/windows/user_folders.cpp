// SPDX-License-Identifier: BSL-1.0
#include "platform/user_folders.h"

#include <array>

#include <windows.h>

#include "platform/pure/extended_name.h"
#include "platform/unattended.h"
#include "platform/windows/native_name.h"

namespace IO::Platform {

namespace {

constexpr GUID kRoamingAppData = {0x3eb685db, 0x65f9, 0x4cf6, {0xa0, 0x3a, 0xe3, 0xef, 0x65, 0x72, 0x9f, 0x3d}};
constexpr GUID kLocalAppData = {0xf1b32785, 0x6fba, 0x4fcf, {0x9d, 0x55, 0x7b, 0x8e, 0x7f, 0x15, 0x70, 0x91}};
constexpr GUID kDocuments = {0xfdd39ad0, 0x238f, 0x46af, {0xad, 0xb4, 0x6c, 0x85, 0x48, 0x03, 0x69, 0xc7}};

// A function of a library of the system, which stays loaded. Programs that never ask for these folders do not load the
// shell's libraries.
template <class Function>
Function SystemFunction(const wchar_t* library, const char* name) {
    const HMODULE module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC found = module ? ::GetProcAddress(module, name) : nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
}

std::wstring KnownFolder(const GUID& folder) {
    using eAsk = HRESULT(WINAPI*)(const GUID&, DWORD, HANDLE, wchar_t**);
    using eFree = void(WINAPI*)(void*);
    constexpr DWORD kNeedNotExist = 0x4000; // KF_FLAG_DONT_VERIFY
    const auto ask = SystemFunction<eAsk>(L"shell32.dll", "SHGetKnownFolderPath");
    const auto free = SystemFunction<eFree>(L"ole32.dll", "CoTaskMemFree");
    if (!ask || !free)
        return {};
    wchar_t* told = nullptr;
    const bool done = ask(folder, kNeedNotExist, nullptr, &told) >= 0 && told;
    std::wstring name = done ? told : L"";
    free(told);
    return System::PlainName(name);
}

std::wstring TemporaryFolder() {
    std::array<wchar_t, MAX_PATH + 2> name{};
    const DWORD length = ::GetTempPathW(static_cast<DWORD>(name.size()), name.data());
    return System::PlainName(length < name.size() ? std::wstring(name.data(), length) : std::wstring());
}

} // namespace

std::wstring FolderOfUser(int folder) {
    switch (folder) {
    case kSettingsFolder:
        return KnownFolder(kRoamingAppData);
    case kDataFolder:
    case kCacheFolder:
        return KnownFolder(kLocalAppData);
    case kTemporaryFolder:
        return TemporaryFolder();
    case kDocumentsFolder:
        return KnownFolder(kDocuments);
    default:
        return {};
    }
}

// The volume is that of the folder in which the name leads, mounted ones included.
template <class Char>
bool AskSpace(const Char* name, unsigned long long* free, unsigned long long* total) {
    const eUnattended unattended;
    const eNativeName native(name);
    if (::GetFileAttributesW(native.c_str()) == INVALID_FILE_ATTRIBUTES)
        return false;
    std::wstring volume(32768, L'\0');
    if (!::GetVolumePathNameW(native.c_str(), volume.data(), static_cast<DWORD>(volume.size())))
        return false;
    ULARGE_INTEGER available{};
    ULARGE_INTEGER all{};
    if (!::GetDiskFreeSpaceExW(volume.c_str(), &available, &all, nullptr))
        return false;
    *free = available.QuadPart;
    *total = all.QuadPart;
    return true;
}

template bool AskSpace(const char*, unsigned long long*, unsigned long long*);
template bool AskSpace(const wchar_t*, unsigned long long*, unsigned long long*);

} // namespace IO::Platform
