// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <utility>

#include <windows.h>

namespace IO::Platform {

// Others may do what they like with the file meanwhile.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Owns a handle that `CloseCall` closes; INVALID_HANDLE_VALUE is none.
template <BOOL(WINAPI* CloseCall)(HANDLE)>
class eHandleOf {
public:
    explicit eHandleOf(HANDLE opened = INVALID_HANDLE_VALUE) : handle(opened) {}
    eHandleOf(eHandleOf&& other) noexcept : handle(std::exchange(other.handle, INVALID_HANDLE_VALUE)) {}
    eHandleOf& operator=(eHandleOf&& other) noexcept {
        if (this != &other) {
            Close();
            handle = std::exchange(other.handle, INVALID_HANDLE_VALUE);
        }
        return *this;
    }
    ~eHandleOf() { Close(); }

    bool IsOpen() const { return handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return handle; }

    // Gives the handle to the caller, who must close it.
    HANDLE Release() { return std::exchange(handle, INVALID_HANDLE_VALUE); }

    void Close() {
        if (IsOpen())
            CloseCall(std::exchange(handle, INVALID_HANDLE_VALUE));
    }

private:
    HANDLE handle;
};

using eOpenHandle = eHandleOf<&CloseHandle>;
using eFindHandle = eHandleOf<&FindClose>;

} // namespace IO::Platform
