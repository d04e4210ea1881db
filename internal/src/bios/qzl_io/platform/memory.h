#pragma once

#include <cstddef>

namespace IO::Platform {

// Advises the system to back the block with large pages as far as whole ones fit into it, so that filling it does not
// fault at every small page. A matter of speed alone: nothing tells whether it was done.
void PreferLargePages(void* block, std::size_t size) noexcept;

// Gives the memory behind the whole pages in the block back to the system. The block stays its owner's, but what it
// held is lost.
void ReleasePages(void* block, std::size_t size) noexcept;

} // namespace IO::Platform
