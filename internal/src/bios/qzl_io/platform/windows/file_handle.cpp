// SPDX-License-Identifier: BSL-1.0
#include "platform/file_handle.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>
#include <utility>

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include "platform/unattended.h"
#include "platform/windows/failure.h"
#include "platform/windows/file_numbers.h"
#include "platform/windows/native_name.h"

namespace IO::Platform {
namespace {

// The run-time's counts are ints: larger requests are split.
constexpr unsigned long long kLargestPiece = 1u << 30;

unsigned int Piece(unsigned long long n) {
    return static_cast<unsigned int>(std::min(n, kLargestPiece));
}

bool MoveTo(int handle, unsigned long long position) {
    return _lseeki64(handle, static_cast<long long>(position), SEEK_SET) >= 0 || _isatty(handle) != 0;
}

int Open(const eNativeName& name, int openFlags) {
    const eUnattended unattended;
    int handle = -1;
    if (_wsopen_s(&handle, name.c_str(), openFlags, _SH_DENYNO, _S_IREAD | _S_IWRITE) == 0)
        return handle;
    Refused(_doserrno);
    return -1;
}

HANDLE SystemHandle(int handle) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(handle));
}

} // namespace

int OpenFile(const char* name, int openFlags) {
    return Open(eNativeName(name), openFlags);
}

int OpenFile(const wchar_t* name, int openFlags) {
    return Open(eNativeName(name), openFlags);
}

int TakeRefusal() noexcept {
    return static_cast<int>(std::exchange(lastFailure, 0));
}

std::string RefusalText(int refusal) {
    return refusal != 0 ? std::system_category().message(refusal) : std::string();
}

bool CloseFile(int handle) noexcept {
    return _close(handle) == 0 || Refused(_doserrno);
}

bool ReadAt(int handle, void* target, unsigned long long n, unsigned long long position,
            unsigned long long* arrived) noexcept {
    *arrived = 0;
    if (!MoveTo(handle, position))
        return Refused(_doserrno);
    while (*arrived < n) {
        const int read = _read(handle, static_cast<char*>(target) + *arrived, Piece(n - *arrived));
        if (read < 0)
            return Refused(_doserrno);
        if (read == 0)
            break;
        *arrived += static_cast<unsigned long long>(read);
    }
    return true;
}

bool WriteAt(int handle, const void* source, unsigned long long n, unsigned long long position) noexcept {
    unsigned long long done = 0;
    if (!MoveTo(handle, position))
        return Refused(_doserrno);
    while (done < n) {
        const int written = _write(handle, static_cast<const char*>(source) + done, Piece(n - done));
        if (written <= 0)
            return Refused(written < 0 ? _doserrno : ERROR_DISK_FULL);
        done += static_cast<unsigned long long>(written);
    }
    return true;
}

unsigned long long CopyBetween(int, unsigned long long, int, unsigned long long, unsigned long long) noexcept {
    return 0;
}

bool MayBeOneFile(int one, int other) noexcept {
    return IO::MayBeOneFile(NumberedId(SystemHandle(one)), NumberedId(SystemHandle(other)));
}

// A console or other device has no length; that is not a failure.
bool FileLength(int handle, unsigned long long* length) noexcept {
    const long long told = _filelengthi64(handle);
    *length = told > 0 ? static_cast<unsigned long long>(told) : 0;
    const DWORD kind = told < 0 ? GetFileType(SystemHandle(handle)) : FILE_TYPE_DISK;
    return told >= 0 || kind == FILE_TYPE_CHAR || kind == FILE_TYPE_PIPE || Refused(_doserrno);
}

bool SetFileLength(int handle, unsigned long long length) noexcept {
    return _chsize_s(handle, static_cast<long long>(length)) == 0 || Refused(_doserrno);
}

} // namespace IO::Platform
