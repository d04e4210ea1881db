// SPDX-License-Identifier: BSL-1.0
#include "platform/thread_slot.h"

#include <windows.h>

namespace platform {

bool TakeThreadSlot(unsigned long* index, unsigned long* code) {
    const DWORD taken = TlsAlloc();
    if (taken == TLS_OUT_OF_INDEXES) {
        *code = GetLastError();
        return false;
    }
    *index = taken;
    return true;
}

void FreeThreadSlot(unsigned long index) {
    TlsFree(index);
}

void* ThreadSlotValue(unsigned long index) {
    // TlsGetValue clears the last-error code, which belongs to the caller.
    const DWORD code = GetLastError();
    void* const value = TlsGetValue(index);
    SetLastError(code);
    return value;
}

bool SetThreadSlotValue(unsigned long index, void* value) {
    return TlsSetValue(index, value) != 0;
}

} // namespace platform
