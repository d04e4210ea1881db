#pragma once

#include <string>

// Files by handle, as streams need them. Sizes and positions are in bytes. Reads and writes have any size and continue
// after interruptions and short counts.

namespace IO::Platform {

// Returns a handle of the C run-time for the file; -1 if it cannot be opened, is a folder, or is a pipe to be read
// (opening would wait). The flags are those of the run-time's binary mode: 0x8000 reads; 0x8102 reads and writes, and
// creates a missing file; 0x8302 also truncates to length 0. Other processes may open the file meanwhile. Where names
// are bytes, wide names are UTF-8.
int OpenFile(const char* name, int openFlags);
int OpenFile(const wchar_t* name, int openFlags);

// The system's own words for why it refused this thread's last failed OpenFile, ReadAt or WriteAt; empty if none has
// failed since the last call of this function.
std::string TakeFailureReason();

// Closes the file. Never repeated: the handle is invalid even if the system reports a failure.
void CloseFile(int handle) noexcept;

// Reads up to n bytes from a position on. Returns the number read, which is less than n at the end of the file or on a
// failure.
unsigned long long ReadAt(int handle, void* target, unsigned long long n, unsigned long long position) noexcept;

// Writes n bytes from a position on, and extends the file where needed. False if the system refused some of them; the
// bytes before those are then written. A file without positions (a terminal, a pipe) gets the bytes in order.
bool WriteAt(int handle, const void* source, unsigned long long n, unsigned long long position) noexcept;

// Copies up to n bytes from one file to another within the system, without a buffer of ours, and returns their number;
// 0 if the system cannot do this for these two files.
unsigned long long CopyBetween(int source, unsigned long long from, int target, unsigned long long to,
                               unsigned long long n) noexcept;

// True if the system says that both handles are of one file, or does not tell.
bool MayBeOneFile(int one, int other) noexcept;

// False if the system does not tell the length.
bool FileLength(int handle, unsigned long long* length) noexcept;

// Truncates the file or extends it with zeros. False if the system refused.
bool SetFileLength(int handle, unsigned long long length) noexcept;

} // namespace IO::Platform
