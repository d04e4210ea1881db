#include "../memory.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace IO::Platform {
namespace {

constexpr std::uintptr_t kLargePage = 2 * 1024 * 1024;

std::uintptr_t SmallPage() noexcept {
    static const auto size = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    return size;
}

std::uintptr_t RoundedDown(std::uintptr_t address, std::uintptr_t page) noexcept {
    return address / page * page;
}

std::uintptr_t RoundedUp(std::uintptr_t address, std::uintptr_t page) noexcept {
    return RoundedDown(address + page - 1, page);
}

void Advise(std::uintptr_t begin, std::uintptr_t end, int advice) noexcept {
    if (begin < end)
        ::madvise(reinterpret_cast<void*>(begin), end - begin, advice);
}

} // namespace

void PreferLargePages(void* block, std::size_t size) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    Advise(RoundedUp(address, kLargePage), RoundedDown(address + size, kLargePage), MADV_HUGEPAGE);
}

void AdviseGrowing(void* block, std::size_t size, ePages pages) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    Advise(RoundedDown(address, SmallPage()), RoundedUp(address + size, SmallPage()),
           pages == ePages::Large ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
}

void ReleasePages(void* block, std::size_t size) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    Advise(RoundedUp(address, SmallPage()), RoundedDown(address + size, SmallPage()), MADV_DONTNEED);
}

} // namespace IO::Platform
