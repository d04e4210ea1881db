// SPDX-License-Identifier: BSL-1.0
#include "platform/thread_slot.h"

#include <pthread.h>

namespace platform {

bool TakeThreadSlot(unsigned long* index, unsigned long* code) {
    pthread_key_t key;
    if (const int failure = pthread_key_create(&key, nullptr); failure != 0) {
        *code = static_cast<unsigned long>(failure);
        return false;
    }
    *index = key;
    return true;
}

void FreeThreadSlot(unsigned long index) {
    pthread_key_delete(static_cast<pthread_key_t>(index));
}

void* ThreadSlotValue(unsigned long index) {
    return pthread_getspecific(static_cast<pthread_key_t>(index));
}

bool SetThreadSlotValue(unsigned long index, void* value) {
    return pthread_setspecific(static_cast<pthread_key_t>(index), value) == 0;
}

} // namespace platform
