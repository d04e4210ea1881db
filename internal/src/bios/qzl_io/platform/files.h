#pragma once

// Single files, by the names as the application gives them.
namespace IO::Platform {

// The C run-time's access test: mode 0 existence, 2 write, 4 read, 6 both.
template <class Char>
bool MayAccess(const Char* name, int mode);

// Copies, replacing an existing target. Whether it worked nobody asks; what was half written is removed, save where a
// target can only be written in place.
template <class Char>
void CopyWhole(const Char* from, const Char* to);

// The same; ends early when it sees `*cancel` non-zero, and then no target is left, not even an old one.
template <class Char>
void CopyStoppable(const Char* from, const Char* to, const bool* cancel);

// False where the system refuses.
template <class Char>
bool EraseFile(const Char* name);

// False where the system refuses.
bool RenameFile(const char* from, const char* to);

// The length in bytes; 0 when it cannot be opened for reading.
template <class Char>
unsigned long long FileSize(const Char* name);

} // namespace IO::Platform
