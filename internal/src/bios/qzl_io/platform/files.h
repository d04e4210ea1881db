// SPDX-License-Identifier: BSL-1.0
#pragma once

#include "platform/pure/answer.h"

// Single files, by names as the application gives them.

namespace IO::Platform {

// The C run-time's access test: mode 0 existence, 2 write, 4 read, 6 both.
template <class Char>
bool MayAccess(const Char* name, int mode);

// Copies a file and replaces an existing target. Does not tell whether it worked; a half-written target is removed,
// unless the target can only be written in place.
template <class Char>
void CopyWhole(const Char* from, const Char* to);

// Copies like CopyFile, but ends early when `*cancel` is non-zero; then no target is left, not even an old one.
template <class Char>
void CopyStoppable(const Char* from, const Char* to, const bool* cancel);

// False if the system refuses.
template <class Char>
bool EraseFile(const Char* name);

// False if the system refuses.
template <class Char>
bool RenameFile(const Char* from, const Char* to);

// Renames likewise and replaces an existing file in one step. Busy as long as somebody else has one of them open.
template <class Char>
eAnswer RenameOver(const Char* from, const Char* to);

// The length in bytes; 0 if the file cannot be opened for reading.
template <class Char>
unsigned long long FileSize(const Char* name);

} // namespace IO::Platform
