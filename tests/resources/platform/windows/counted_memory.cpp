// SPDX-License-Identifier: BSL-1.0
#include "resources/counted_memory.h"

#include <cstddef>
#include <memory>

#include <malloc.h>

#include "support/platform/windows/import_table.h"

// The operators new and delete of all modules are those of the run-time DLL, so what that imports is replaced.

namespace {

constexpr char kModule[] = "libstdc++-6.dll";

using eMalloc = void* (*)(std::size_t);
using eFree = void (*)(void*);

eMalloc systemsMalloc;
eFree systemsFree;

void* Allocate(std::size_t size) {
    void* const block = systemsMalloc(size);
    if (block)
        CountedMemory::Add(::_msize(block));
    return block;
}

void Release(void* block) {
    if (block)
        CountedMemory::Subtract(::_msize(block));
    systemsFree(block);
}

struct eReplacements {
    eReplacedCall<eMalloc> allocating{kModule, "malloc", &Allocate, &systemsMalloc};
    eReplacedCall<eFree> releasing{kModule, "free", &Release, &systemsFree};
};

std::unique_ptr<eReplacements> replacements;

} // namespace

eCountedMemory::eCountedMemory() {
    replacements = std::make_unique<eReplacements>();
    CountedMemory::Start();
}

eCountedMemory::~eCountedMemory() {
    CountedMemory::Stop();
    replacements.reset();
}
