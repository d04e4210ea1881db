// SPDX-License-Identifier: BSL-1.0
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "faults/injection.h"

// The functions of the heap, for the whole process. They count, fail on demand, and leave the rest to the C library's
// heap or, if there is one, to that of a sanitizer.

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
[[gnu::weak]] void* __interceptor_malloc(std::size_t size);
[[gnu::weak]] void* __interceptor_calloc(std::size_t count, std::size_t size);
[[gnu::weak]] void* __interceptor_realloc(void* block, std::size_t size);
[[gnu::weak]] void* __interceptor_memalign(std::size_t alignment, std::size_t size);
[[gnu::weak]] void __interceptor_free(void* block);
}

namespace {

void* Counted(void* block) {
    eBlocks::Count(block ? 1 : 0);
    return block;
}

void* Refused() {
    errno = ENOMEM;
    return nullptr;
}

void* Aligned(std::size_t alignment, std::size_t size) {
    if (eInjection::TakesAllocation())
        return Refused();
    return Counted((__interceptor_memalign ? __interceptor_memalign : __libc_memalign)(alignment, size));
}

void* Given(void* block) {
    if (!block)
        throw std::bad_alloc();
    return block;
}

void Free(void* block) {
    eBlocks::Count(block ? -1 : 0);
    (__interceptor_free ? __interceptor_free : __libc_free)(block);
}

} // namespace

#define DEFINED [[gnu::visibility("default"), gnu::noinline]]

extern "C" {

DEFINED void* malloc(std::size_t size) noexcept {
    if (eInjection::TakesAllocation())
        return Refused();
    return Counted((__interceptor_malloc ? __interceptor_malloc : __libc_malloc)(size));
}

DEFINED void* calloc(std::size_t count, std::size_t size) noexcept {
    if (eInjection::TakesAllocation())
        return Refused();
    return Counted((__interceptor_calloc ? __interceptor_calloc : __libc_calloc)(count, size));
}

// With a size of 0 the block is freed.
DEFINED void* realloc(void* block, std::size_t size) noexcept {
    if (eInjection::TakesAllocation())
        return Refused();
    void* const resized = (__interceptor_realloc ? __interceptor_realloc : __libc_realloc)(block, size);
    if (!block)
        Counted(resized);
    else if (size == 0 && !resized)
        eBlocks::Count(-1);
    return resized;
}

DEFINED void free(void* block) noexcept {
    Free(block);
}

DEFINED void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return Aligned(alignment, size);
}

DEFINED void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return Aligned(alignment, size);
}

DEFINED int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
    void* const made = Aligned(alignment, size);
    if (made)
        *block = made;
    return made ? 0 : ENOMEM;
}

} // extern "C"

// The run-time library's own operators call the functions above, those of a sanitizer do not.

DEFINED void* operator new(std::size_t size) {
    return Given(malloc(size > 0 ? size : 1));
}
DEFINED void* operator new(std::size_t size, std::align_val_t alignment) {
    return Given(Aligned(static_cast<std::size_t>(alignment), size));
}
DEFINED void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return malloc(size > 0 ? size : 1);
}
DEFINED void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return Aligned(static_cast<std::size_t>(alignment), size);
}
DEFINED void* operator new[](std::size_t size) {
    return operator new(size);
}
DEFINED void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return operator new(size, nothrow);
}
DEFINED void operator delete(void* block) noexcept {
    Free(block);
}
DEFINED void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
DEFINED void operator delete(void* block, std::align_val_t) noexcept {
    Free(block);
}
DEFINED void operator delete(void* block, std::size_t, std::align_val_t) noexcept {
    Free(block);
}
DEFINED void operator delete(void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
DEFINED void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept {
    Free(block);
}
DEFINED void operator delete[](void* block) noexcept {
    Free(block);
}
DEFINED void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
DEFINED void operator delete[](void* block, const std::nothrow_t&) noexcept {
    Free(block);
}
