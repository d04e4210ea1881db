// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <windows.h>

#include "platform/copy_watch.h"

namespace IO::Platform {

// CopyFileExW, watched. A stopped copy leaves no target; the error is then ERROR_REQUEST_ABORTED.
BOOL CopyWatched(const wchar_t* from, const wchar_t* to, const eCopyWatch& watch);

} // namespace IO::Platform
