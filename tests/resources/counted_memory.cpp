// SPDX-License-Identifier: BSL-1.0
#include "counted_memory.h"

#include <algorithm>

namespace {

thread_local bool counting = false;
thread_local long long current = 0;
thread_local long long most = 0;

} // namespace

void CountedMemory::Add(std::size_t bytes) noexcept {
    if (!counting)
        return;
    current += static_cast<long long>(bytes);
    most = std::max(most, current);
}

void CountedMemory::Subtract(std::size_t bytes) noexcept {
    if (counting)
        current -= static_cast<long long>(bytes);
}

std::size_t eCountedMemory::Peak() const {
    return static_cast<std::size_t>(most);
}

std::size_t eCountedMemory::Left() const {
    return static_cast<std::size_t>(std::max(current, 0LL));
}

void CountedMemory::Start() noexcept {
    current = most = 0;
    counting = true;
}

void CountedMemory::Stop() noexcept {
    counting = false;
}
