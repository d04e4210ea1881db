// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <atomic>

namespace IO::Platform {

// Reads a flag that another thread sets, as one byte of any value.
inline bool IsCancelled(const bool* flag) {
    auto* byte = const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(flag));
    return std::atomic_ref<unsigned char>(*byte).load(std::memory_order_relaxed) != 0;
}

} // namespace IO::Platform
