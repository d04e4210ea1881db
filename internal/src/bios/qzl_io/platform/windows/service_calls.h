#pragma once

#include <windows.h>

#include <io.h>
#include <share.h>

// The system's narrow call for narrow names, its wide call for wide ones.
namespace IO::Platform::Calls {

inline errno_t Access(const char* name, int mode) {
    return ::_access_s(name, mode);
}
inline errno_t Access(const wchar_t* name, int mode) {
    return ::_waccess_s(name, mode);
}

inline errno_t Open(int* file, const char* name, int flags, int share, int mode) {
    return ::_sopen_s(file, name, flags, share, mode);
}
inline errno_t Open(int* file, const wchar_t* name, int flags, int share, int mode) {
    return ::_wsopen_s(file, name, flags, share, mode);
}

inline BOOL Copy(const char* from, const char* to) {
    return ::CopyFileA(from, to, FALSE);
}
inline BOOL Copy(const wchar_t* from, const wchar_t* to) {
    return ::CopyFileW(from, to, FALSE);
}

inline BOOL CopyWith(const char* from, const char* to, LPPROGRESS_ROUTINE progress, void* data, DWORD flags) {
    return ::CopyFileExA(from, to, progress, data, nullptr, flags);
}
inline BOOL CopyWith(const wchar_t* from, const wchar_t* to, LPPROGRESS_ROUTINE progress, void* data, DWORD flags) {
    return ::CopyFileExW(from, to, progress, data, nullptr, flags);
}

inline BOOL Erase(const char* name) {
    return ::DeleteFileA(name);
}
inline BOOL Erase(const wchar_t* name) {
    return ::DeleteFileW(name);
}

inline BOOL MakeFolder(const char* name) {
    return ::CreateDirectoryA(name, nullptr);
}
inline BOOL MakeFolder(const wchar_t* name) {
    return ::CreateDirectoryW(name, nullptr);
}

inline BOOL MakeFolderLike(const char* model, const char* name) {
    return ::CreateDirectoryExA(model, name, nullptr);
}
inline BOOL MakeFolderLike(const wchar_t* model, const wchar_t* name) {
    return ::CreateDirectoryExW(model, name, nullptr);
}

inline BOOL RemoveFolder(const char* name) {
    return ::RemoveDirectoryA(name);
}
inline BOOL RemoveFolder(const wchar_t* name) {
    return ::RemoveDirectoryW(name);
}

inline HANDLE OpenFile(const char* name, DWORD access, DWORD share, DWORD flags) {
    return ::CreateFileA(name, access, share, nullptr, OPEN_EXISTING, flags, nullptr);
}
inline HANDLE OpenFile(const wchar_t* name, DWORD access, DWORD share, DWORD flags) {
    return ::CreateFileW(name, access, share, nullptr, OPEN_EXISTING, flags, nullptr);
}

inline HANDLE FindFirst(const char* pattern, WIN32_FIND_DATAA* data) {
    return ::FindFirstFileA(pattern, data);
}
inline HANDLE FindFirst(const wchar_t* pattern, WIN32_FIND_DATAW* data) {
    return ::FindFirstFileW(pattern, data);
}
inline BOOL FindNext(HANDLE search, WIN32_FIND_DATAA* data) {
    return ::FindNextFileA(search, data);
}
inline BOOL FindNext(HANDLE search, WIN32_FIND_DATAW* data) {
    return ::FindNextFileW(search, data);
}

inline BOOL ComputerName(char* name, DWORD* size) {
    return ::GetComputerNameA(name, size);
}
inline BOOL ComputerName(wchar_t* name, DWORD* size) {
    return ::GetComputerNameW(name, size);
}
inline BOOL UserName(char* name, DWORD* size) {
    return ::GetUserNameA(name, size);
}
inline BOOL UserName(wchar_t* name, DWORD* size) {
    return ::GetUserNameW(name, size);
}
inline DWORD ModuleName(char* name, DWORD size) {
    return ::GetModuleFileNameA(nullptr, name, size);
}
inline DWORD ModuleName(wchar_t* name, DWORD size) {
    return ::GetModuleFileNameW(nullptr, name, size);
}

inline LSTATUS OpenKey(HKEY root, const char* name, REGSAM access, HKEY* key) {
    return ::RegOpenKeyExA(root, name, 0, access, key);
}
inline LSTATUS OpenKey(HKEY root, const wchar_t* name, REGSAM access, HKEY* key) {
    return ::RegOpenKeyExW(root, name, 0, access, key);
}
inline LSTATUS QueryValue(HKEY key, const char* name, void* buffer, DWORD* bytes) {
    return ::RegQueryValueExA(key, name, nullptr, nullptr, static_cast<BYTE*>(buffer), bytes);
}
inline LSTATUS QueryValue(HKEY key, const wchar_t* name, void* buffer, DWORD* bytes) {
    return ::RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(buffer), bytes);
}

template <class Char>
struct eFindDataOf;
template <>
struct eFindDataOf<char> {
    using type = WIN32_FIND_DATAA;
};
template <>
struct eFindDataOf<wchar_t> {
    using type = WIN32_FIND_DATAW;
};
template <class Char>
using eFindData = typename eFindDataOf<Char>::type;

} // namespace IO::Platform::Calls
