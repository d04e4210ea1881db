// SPDX-License-Identifier: BSL-1.0
#include "platform/memory.h"

namespace IO::Platform {

// Large pages need a privilege here that applications do not have.
void PreferLargePages(void*, std::size_t) noexcept {}

// The heap's own blocks can only be returned by the heap.
void ReleasePages(void*, std::size_t) noexcept {}

} // namespace IO::Platform
