// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>

#include "platform/cancel_flag.h"

namespace IO::Platform {

// Watches the copy of one file: is told how many of its bytes have been copied, at the beginning and then at least once
// for each 4 MiB, and returns whether to go on. It must not throw, since calls of the system may be in between. An
// empty function watches nothing.
using eCopyWatch = std::function<bool(unsigned long long copied)>;

// A watch that goes on as long as the byte is zero.
inline eCopyWatch WatchFlag(const bool* cancel) {
    return [cancel](unsigned long long) { return !IsCancelled(cancel); };
}

} // namespace IO::Platform
