// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <windows.h>

namespace IO::Platform {

// Copies from the current position of a file to its end. False, with the reason noted, if a byte did not arrive.
bool CopyBytes(HANDLE source, HANDLE target) noexcept;

} // namespace IO::Platform
