// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/thread_storage.h>

#include <new>

#include <qzl_base/error.h>
#include <qzl_base/format.h>

#include "platform/thread_slot.h"
#include "thread_number.h"

namespace {

namespace StorageReport {
constexpr const char* kSource = "internal/include/qzl_base/thread_storage";
constexpr int kOverflowLine = 20;
} // namespace StorageReport

} // namespace

eCriticalSection::eCriticalSection() = default;

eCriticalSection::~eCriticalSection() = default;

void eCriticalSection::Enter() {
    mutex.lock();
}

void eCriticalSection::Leave() {
    mutex.unlock();
}

eThreadIndex::eThreadIndex() {
    unsigned long code = 0;
    allocated = platform::TakeThreadSlot(&index, &code);
    if (!allocated)
        xError::Error(StorageReport::kSource, StorageReport::kOverflowLine,
                      format("Thread Storage Overflow : %1%") % code, true);
}

eThreadIndex::~eThreadIndex() {
    if (allocated)
        platform::FreeThreadSlot(index);
}

void* eThreadIndex::Get() const {
    if (allocated)
        return platform::ThreadSlotValue(index);
    std::lock_guard lock(fallbackMutex);
    const auto found = fallback.find(ThreadNumber());
    return found == fallback.end() ? nullptr : found->second;
}

void eThreadIndex::Set(void* value) {
    if (allocated) {
        if (!platform::SetThreadSlotValue(index, value))
            throw std::bad_alloc();
        return;
    }
    std::lock_guard lock(fallbackMutex);
    fallback[ThreadNumber()] = value;
}
