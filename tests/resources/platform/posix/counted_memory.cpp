// SPDX-License-Identifier: BSL-1.0
#include "resources/counted_memory.h"

#include <cstdlib>
#include <new>

#include <malloc.h>

// These operators serve the whole program, the libraries included.

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* const block = std::malloc(size > 0 ? size : 1);
    CountedMemory::Add(::malloc_usable_size(block));
    return block;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (!block)
        throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept {
    CountedMemory::Subtract(::malloc_usable_size(block));
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

[[gnu::noinline]] void operator delete(void* block, const std::nothrow_t&) noexcept {
    operator delete(block);
}

eCountedMemory::eCountedMemory() {
    CountedMemory::Start();
}

eCountedMemory::~eCountedMemory() {
    CountedMemory::Stop();
}
