// SPDX-License-Identifier: BSL-1.0
#include "platform/files.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include "platform/cancel_flag.h"
#include "platform/unattended.h"
#include "platform/windows/native_name.h"

namespace IO::Platform {

namespace {

DWORD CALLBACK LookAtFlag(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE, HANDLE,
                          void* flag) {
    return IsCancelled(static_cast<const bool*>(flag)) ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

} // namespace

template <class Char>
bool MayAccess(const Char* name, int mode) {
    const eUnattended unattended;
    return ::_waccess_s(eNativeName(name).c_str(), mode) == 0;
}

template <class Char>
void CopyWhole(const Char* from, const Char* to) {
    const eUnattended unattended;
    ::CopyFileW(eNativeName(from).c_str(), eNativeName(to).c_str(), FALSE);
}

template <class Char>
void CopyStoppable(const Char* from, const Char* to, const bool* cancel) {
    const eUnattended unattended;
    ::CopyFileExW(eNativeName(from).c_str(), eNativeName(to).c_str(), &LookAtFlag, const_cast<bool*>(cancel), nullptr,
                  COPY_FILE_NO_BUFFERING);
}

template <class Char>
bool EraseFile(const Char* name) {
    const eUnattended unattended;
    return ::DeleteFileW(eNativeName(name).c_str()) != FALSE;
}

template <class Char>
bool RenameFile(const Char* from, const Char* to) {
    const eUnattended unattended;
    return ::_wrename(eNativeName(from).c_str(), eNativeName(to).c_str()) == 0;
}

// Access is denied for good where the target may not be written or is a folder.
template <class Char>
eAnswer RenameOver(const Char* from, const Char* to) {
    constexpr DWORD kDenying = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY;
    const eUnattended unattended;
    const eNativeName target(to);
    if (::MoveFileExW(eNativeName(from).c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return eAnswer::Done;
    const DWORD error = ::GetLastError();
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    return AnswerTo(error, attributes != INVALID_FILE_ATTRIBUTES && (attributes & kDenying) != 0);
}

template <class Char>
unsigned long long FileSize(const Char* name) {
    const eUnattended unattended;
    int file = -1;
    ::_wsopen_s(&file, eNativeName(name).c_str(), _O_RDONLY, _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (file == -1)
        return 0;
    const long long length = ::_filelengthi64(file);
    ::_close(file);
    return length > 0 ? static_cast<unsigned long long>(length) : 0;
}

template bool MayAccess(const char*, int);
template bool MayAccess(const wchar_t*, int);
template void CopyWhole(const char*, const char*);
template void CopyWhole(const wchar_t*, const wchar_t*);
template void CopyStoppable(const char*, const char*, const bool*);
template void CopyStoppable(const wchar_t*, const wchar_t*, const bool*);
template bool EraseFile(const char*);
template bool EraseFile(const wchar_t*);
template bool RenameFile(const char*, const char*);
template bool RenameFile(const wchar_t*, const wchar_t*);
template eAnswer RenameOver(const char*, const char*);
template eAnswer RenameOver(const wchar_t*, const wchar_t*);
template unsigned long long FileSize(const char*);
template unsigned long long FileSize(const wchar_t*);

} // namespace IO::Platform
