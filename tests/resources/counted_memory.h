// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>

// Counts the heap memory of the calling thread, the libraries' blocks included, from construction to destruction. Only
// one may exist at a time.
class eCountedMemory {
public:
    eCountedMemory();
    ~eCountedMemory();
    eCountedMemory(const eCountedMemory&) = delete;
    eCountedMemory& operator=(const eCountedMemory&) = delete;

    // The most bytes that were allocated at once, and those that still are, less what was there before.
    std::size_t Peak() const;
    std::size_t Left() const;
};

// For what replaces the system's allocation.
namespace CountedMemory {
void Start() noexcept;
void Stop() noexcept;
void Add(std::size_t bytes) noexcept;
void Subtract(std::size_t bytes) noexcept;
} // namespace CountedMemory
