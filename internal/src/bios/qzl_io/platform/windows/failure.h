// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::Platform {

// The system's error number for TakeRefusal; 0 for none.
inline thread_local unsigned long lastFailure = 0;

// Notes why the system refused a call. Always false, so that a caller can return it.
inline bool Refused(unsigned long error) noexcept {
    lastFailure = error;
    return false;
}

} // namespace IO::Platform
