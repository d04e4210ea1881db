#pragma once

#include <cstddef>

namespace IO::Platform {

// Advises the system to back the block with large pages as far as whole ones fit into it, so that filling it does not
// fault at every small page. A matter of speed alone: nothing tells whether it was done.
void PreferLargePages(void* block, std::size_t size) noexcept;

enum class ePages { Small, Large };

// Advises how to back what is filled from now on of a block that realloc goes on extending. It reaches every page that
// the block touches: only memory under one advice is extended without a copy.
void AdviseGrowing(void* block, std::size_t size, ePages pages) noexcept;

// Gives the memory behind the whole pages in the block back to the system. The block stays its owner's, but what it
// held is lost.
void ReleasePages(void* block, std::size_t size) noexcept;

} // namespace IO::Platform
