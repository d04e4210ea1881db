// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

namespace IO::Platform {

// Advises the system to back the whole large pages in the block with large pages, so that filling it does not fault at
// every small page. This affects only speed and does not tell whether it worked.
void PreferLargePages(void* block, std::size_t size) noexcept;

// Returns the memory of the whole pages in the block to the system. The block remains its owner's, but its content is
// lost.
void ReleasePages(void* block, std::size_t size) noexcept;

} // namespace IO::Platform
