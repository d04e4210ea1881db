// SPDX-License-Identifier: BSL-1.0
#include "platform/unattended.h"

#include <windows.h>

namespace IO::Platform {

eUnattended::eUnattended() noexcept : before(::GetThreadErrorMode()) {
    ::SetThreadErrorMode(before | SEM_FAILCRITICALERRORS, nullptr);
}

eUnattended::~eUnattended() {
    ::SetThreadErrorMode(before, nullptr);
}

} // namespace IO::Platform
