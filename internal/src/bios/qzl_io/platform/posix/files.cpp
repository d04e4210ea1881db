// SPDX-License-Identifier: BSL-1.0
#include "platform/files.h"

#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/file_copy.h"
#include "platform/posix/native_name.h"

namespace IO::Platform {

namespace {

template <class Char>
void CopyNamed(const Char* from, const Char* to, const eCopyWatch& watch) {
    const eNativeName source(from);
    const eNativeName target(to);
    CopyRegularFile({AT_FDCWD, source.c_str()}, {AT_FDCWD, target.c_str()}, watch);
}

} // namespace

template <class Char>
bool MayAccess(const Char* name, int mode) {
    const eNativeName native(name);
    return Uninterrupted([&] { return ::faccessat(AT_FDCWD, native.c_str(), mode, AT_EACCESS); }) == 0;
}

template <class Char>
void CopyWhole(const Char* from, const Char* to) {
    CopyNamed(from, to, {});
}

template <class Char>
void CopyStoppable(const Char* from, const Char* to, const bool* cancel) {
    CopyNamed(from, to, WatchFlag(cancel));
}

template <class Char>
bool EraseFile(const Char* name) {
    const eNativeName native(name);
    return Uninterrupted([&] { return ::unlink(native.c_str()); }) == 0;
}

template <class Char>
bool RenameFile(const Char* from, const Char* to) {
    const eNativeName source(from);
    const eNativeName target(to);
    return Uninterrupted([&] { return std::rename(source.c_str(), target.c_str()); }) == 0;
}

template <class Char>
eAnswer RenameOver(const Char* from, const Char* to) {
    return RenameFile(from, to) ? eAnswer::Done : eAnswer::Refused;
}

// Asks without opening, since opening a device or a pipe has effects.
template <class Char>
unsigned long long FileSize(const Char* name) {
    struct stat status {};
    const eNativeName native(name);
    const bool told = Uninterrupted([&] { return ::stat(native.c_str(), &status); }) == 0;
    if (!told || !S_ISREG(status.st_mode) || !MayAccess(native.c_str(), R_OK))
        return 0;
    return static_cast<unsigned long long>(status.st_size);
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
