// SPDX-License-Identifier: BSL-1.0
#include "platform/windows/copied_bytes.h"

#include <memory>
#include <new>

#include "platform/windows/failure.h"

namespace IO::Platform {
namespace {

bool WriteAll(HANDLE target, const char* bytes, DWORD n) noexcept {
    for (DWORD written = 0; n != 0; bytes += written, n -= written) {
        if (!::WriteFile(target, bytes, n, &written, nullptr))
            return Refused(::GetLastError());
        if (written == 0)
            return Refused(ERROR_DISK_FULL);
    }
    return true;
}

} // namespace

bool CopyBytes(HANDLE source, HANDLE target) noexcept {
    constexpr DWORD kStep = 1 << 20;
    const std::unique_ptr<char[]> piece(new (std::nothrow) char[kStep]);
    if (!piece)
        return Refused(ERROR_NOT_ENOUGH_MEMORY);
    for (DWORD arrived = 1; arrived != 0;) {
        if (!::ReadFile(source, piece.get(), kStep, &arrived, nullptr))
            return Refused(::GetLastError());
        if (!WriteAll(target, piece.get(), arrived))
            return false;
    }
    return true;
}

} // namespace IO::Platform
