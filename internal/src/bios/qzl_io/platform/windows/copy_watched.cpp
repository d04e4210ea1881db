// SPDX-License-Identifier: BSL-1.0
#include "platform/windows/copy_watched.h"

namespace IO::Platform {

namespace {

DWORD CALLBACK AskWatch(LARGE_INTEGER, LARGE_INTEGER copied, LARGE_INTEGER, LARGE_INTEGER, DWORD, DWORD, HANDLE, HANDLE,
                        void* watch) {
    const bool goesOn = (*static_cast<const eCopyWatch*>(watch))(static_cast<unsigned long long>(copied.QuadPart));
    return goesOn ? PROGRESS_CONTINUE : PROGRESS_CANCEL;
}

} // namespace

BOOL CopyWatched(const wchar_t* from, const wchar_t* to, const eCopyWatch& watch) {
    return ::CopyFileExW(from, to, &AskWatch, const_cast<eCopyWatch*>(&watch), nullptr, 0);
}

} // namespace IO::Platform
