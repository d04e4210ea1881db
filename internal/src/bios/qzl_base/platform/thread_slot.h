#pragma once

// The operating system's thread-local storage: indices that name one pointer for each thread, null at first.
namespace platform {

// Takes an index. False when the system has none left: *code is then its error code, and *index is unchanged.
bool TakeThreadSlot(unsigned long* index, unsigned long* code);

// Gives an index back. What its pointers point to is the caller's affair.
void FreeThreadSlot(unsigned long index);

// The calling thread's pointer. Cannot fail for an index that is taken.
void* ThreadSlotValue(unsigned long index);

// False when the system lacks memory for the pointer, which then is unchanged.
bool SetThreadSlotValue(unsigned long index, void* value);

} // namespace platform
