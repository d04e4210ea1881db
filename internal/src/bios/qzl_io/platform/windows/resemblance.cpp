// SPDX-License-Identifier: BSL-1.0
#include "platform/windows/resemblance.h"

#include <memory>
#include <string_view>

#include <windows.h>

#include <aclapi.h>

#include "platform/windows/copied_bytes.h"
#include "platform/windows/failure.h"
#include "platform/windows/owned_handle.h"

namespace IO::Platform {
namespace {

bool IsUnknown(DWORD error) {
    return error == ERROR_NOT_SUPPORTED || error == ERROR_INVALID_FUNCTION || error == ERROR_CALL_NOT_IMPLEMENTED;
}

bool Told(DWORD error) {
    return error == ERROR_SUCCESS || IsUnknown(error) || Refused(error);
}

struct eFreeLocal {
    void operator()(void* block) const { ::LocalFree(block); }
};

// Rights that are inherited from the folder stay inherited.
bool TakeRights(std::wstring from, std::wstring to) {
    PACL rights = nullptr;
    PSECURITY_DESCRIPTOR described = nullptr;
    const DWORD asked = ::GetNamedSecurityInfoW(from.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                                nullptr, &rights, nullptr, &described);
    const std::unique_ptr<void, eFreeLocal> owned(described);
    if (asked != ERROR_SUCCESS)
        return Told(asked);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!::GetSecurityDescriptorControl(described, &control, &revision))
        return Refused(::GetLastError());
    const SECURITY_INFORMATION inheritance = (control & SE_DACL_PROTECTED) != 0 ? PROTECTED_DACL_SECURITY_INFORMATION
                                                                                : UNPROTECTED_DACL_SECURITY_INFORMATION;
    return Told(::SetNamedSecurityInfoW(to.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance, nullptr,
                                        nullptr, rights, nullptr));
}

bool CopyStream(const std::wstring& from, const std::wstring& to) {
    const eOpenHandle source(::CreateFileW(from.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    const eOpenHandle target(
        ::CreateFileW(to.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    if (!source.IsOpen() || !target.IsOpen())
        return Refused(::GetLastError());
    return CopyBytes(source.Get(), target.Get());
}

// On a volume without streams the search finds nothing.
bool TakeStreams(const std::wstring& from, const std::wstring& to) {
    constexpr std::wstring_view kContent = L"::$DATA";
    WIN32_FIND_STREAM_DATA stream;
    const eFindHandle list(::FindFirstStreamW(from.c_str(), FindStreamInfoStandard, &stream, 0));
    for (bool more = list.IsOpen(); more; more = ::FindNextStreamW(list.Get(), &stream))
        if (stream.cStreamName != kContent && !CopyStream(from + stream.cStreamName, to + stream.cStreamName))
            return false;
    return true;
}

} // namespace

bool TakeRightsAndStreams(const std::wstring& from, const std::wstring& to) {
    return TakeRights(from, to) && TakeStreams(from, to);
}

} // namespace IO::Platform
