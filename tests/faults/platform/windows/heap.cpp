// SPDX-License-Identifier: BSL-1.0
#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include <malloc.h>

#include "faults/injection.h"
#include "faults/platform/windows/calls.h"
#include "support/platform/windows/import_table.h"

// The functions of the heap as the libraries call them, and as the run-time library calls them for operator new.

namespace {

void* (*systemsMalloc)(std::size_t);
void* (*systemsCalloc)(std::size_t, std::size_t);
void* (*systemsRealloc)(void*, std::size_t);
void (*systemsFree)(void*);
void* (*systemsAlignedMalloc)(std::size_t, std::size_t);
void (*systemsAlignedFree)(void*);

void* Counted(void* block) {
    eBlocks::Count(block ? 1 : 0);
    return block;
}

void* Refused() {
    errno = ENOMEM;
    return nullptr;
}

void* Malloc(std::size_t size) {
    return eInjection::TakesAllocation() ? Refused() : Counted(systemsMalloc(size));
}
void* Calloc(std::size_t count, std::size_t size) {
    return eInjection::TakesAllocation() ? Refused() : Counted(systemsCalloc(count, size));
}
void* AlignedMalloc(std::size_t size, std::size_t alignment) {
    return eInjection::TakesAllocation() ? Refused() : Counted(systemsAlignedMalloc(size, alignment));
}

// With a size of 0 the block is freed.
void* Realloc(void* block, std::size_t size) {
    if (eInjection::TakesAllocation())
        return Refused();
    void* const resized = systemsRealloc(block, size);
    if (!block)
        return Counted(resized);
    eBlocks::Count(size == 0 && !resized ? -1 : 0);
    return resized;
}

void Free(void* block) {
    eBlocks::Count(block ? -1 : 0);
    systemsFree(block);
}
void AlignedFree(void* block) {
    eBlocks::Count(block ? -1 : 0);
    systemsAlignedFree(block);
}

} // namespace

void InstallHeap() {
    struct eHeap {
        explicit eHeap(const char* module)
            : a(module, "malloc", &Malloc, &systemsMalloc),
              b(module, "calloc", &Calloc, &systemsCalloc),
              c(module, "realloc", &Realloc, &systemsRealloc),
              d(module, "free", &Free, &systemsFree) {}

        eReplacedCall<decltype(systemsMalloc)> a;
        eReplacedCall<decltype(systemsCalloc)> b;
        eReplacedCall<decltype(systemsRealloc)> c;
        eReplacedCall<decltype(systemsFree)> d;
    };
    constexpr const char* kRunTime = "libstdc++-6.dll";
    static const eHeap ours("qzl_io.dll");
    static const eHeap theirs(kRunTime);
    static const eReplacedCall aligned(kRunTime, "_aligned_malloc", &AlignedMalloc, &systemsAlignedMalloc);
    static const eReplacedCall alignedFree(kRunTime, "_aligned_free", &AlignedFree, &systemsAlignedFree);
}
