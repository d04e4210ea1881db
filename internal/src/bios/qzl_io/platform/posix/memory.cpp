// SPDX-License-Identifier: BSL-1.0
#include "platform/memory.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace IO::Platform {
namespace {

constexpr std::uintptr_t kLargePage = std::uintptr_t{2} * 1024 * 1024;

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

void ReleasePages(void* block, std::size_t size) noexcept {
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    Advise(RoundedUp(address, page), RoundedDown(address + size, page), MADV_DONTNEED);
}

} // namespace IO::Platform
