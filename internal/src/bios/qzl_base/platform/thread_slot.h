// SPDX-License-Identifier: BSL-1.0
#pragma once

// The thread-local storage of the operating system: each index stands for one pointer in each thread, initially null.

namespace platform {

// Takes an index. False if the system has none left; *code is then its error code, and *index is unchanged.
bool TakeThreadSlot(unsigned long* index, unsigned long* code);

// Releases an index. What its pointers point to remains the caller's.
void FreeThreadSlot(unsigned long index);

// The calling thread's pointer. Cannot fail for a taken index.
void* ThreadSlotValue(unsigned long index);

// False if the system lacks memory for the pointer, which is then unchanged.
bool SetThreadSlotValue(unsigned long index, void* value);

} // namespace platform
