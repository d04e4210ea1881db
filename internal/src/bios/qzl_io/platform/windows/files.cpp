#include "../files.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>

#include "../cancel_flag.h"
#include "service_calls.h"

namespace IO::Platform {

namespace {

DWORD CALLBACK LookAtFlag(LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE, HANDLE,
                          void* flag) {
    return IsCancelled(static_cast<const bool*>(flag)) ? PROGRESS_CANCEL : PROGRESS_CONTINUE;
}

} // namespace

template <class Char>
bool MayAccess(const Char* name, int mode) {
    return Calls::Access(name, mode) == 0;
}

template <class Char>
void CopyWhole(const Char* from, const Char* to) {
    Calls::Copy(from, to);
}

template <class Char>
void CopyStoppable(const Char* from, const Char* to, const bool* cancel) {
    Calls::CopyWith(from, to, &LookAtFlag, const_cast<bool*>(cancel), COPY_FILE_NO_BUFFERING);
}

template <class Char>
bool EraseFile(const Char* name) {
    return Calls::Erase(name) != FALSE;
}

bool RenameFile(const char* from, const char* to) {
    return std::rename(from, to) == 0;
}

template <class Char>
unsigned long long FileSize(const Char* name) {
    int file = -1;
    Calls::Open(&file, name, _O_RDONLY, _SH_DENYNO, _S_IREAD | _S_IWRITE);
    if (file == -1)
        return 0;
    const long long length = ::_filelengthi64(file);
    ::_close(file);
    return static_cast<unsigned long long>(length);
}

template bool MayAccess(const char*, int);
template bool MayAccess(const wchar_t*, int);
template void CopyWhole(const char*, const char*);
template void CopyWhole(const wchar_t*, const wchar_t*);
template void CopyStoppable(const char*, const char*, const bool*);
template void CopyStoppable(const wchar_t*, const wchar_t*, const bool*);
template bool EraseFile(const char*);
template bool EraseFile(const wchar_t*);
template unsigned long long FileSize(const char*);
template unsigned long long FileSize(const wchar_t*);

} // namespace IO::Platform
