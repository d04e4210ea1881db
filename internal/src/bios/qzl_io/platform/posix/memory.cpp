#include "../memory.h"

#include <cstdint>

#include <sys/mman.h>

namespace IO::Platform {

void PreferLargePages(void* block, std::size_t size) noexcept {
    constexpr std::uintptr_t page = 2 * 1024 * 1024;
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t begin = (address + page - 1) / page * page;
    const std::uintptr_t end = (address + size) / page * page;
    if (begin < end)
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

} // namespace IO::Platform
