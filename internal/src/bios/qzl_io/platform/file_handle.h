#pragma once

#include <string>

// Files by handle, as a stream needs them. Sizes and positions are in bytes; reads and writes of any size survive
// interruption and short counts.
namespace IO::Platform {

// A handle of the C run-time for the file, or -1 when it cannot be opened or is a folder, or a pipe to be read: nobody
// is waited for. The flags are the ones of the run-time's binary mode: 0x8000 reads; 0x8102 reads and writes, and
// creates what is missing; 0x8302 also cuts to length 0. Others may open the file meanwhile. Wide names are UTF-8 where
// names are bytes.
int OpenFile(const char* name, int openFlags);
int OpenFile(const wchar_t* name, int openFlags);

// Why the system refused the last OpenFile, ReadAt or WriteAt of this thread that it did refuse, in its own words;
// empty when it has refused none since this was asked before.
std::string TakeFailureReason();

// Never repeated: the handle is gone even when the system reports a failure.
void CloseFile(int handle) noexcept;

// Reads up to n bytes from a position on. Gives the number read; fewer than n at the end of the file or on a failure.
unsigned long long ReadAt(int handle, void* target, unsigned long long n, unsigned long long position) noexcept;

// Writes n bytes from a position on, and makes the file longer where it ends before. False when the system refused some
// of them; those before are then written. What has no positions (a terminal, a pipe) gets the bytes in order.
bool WriteAt(int handle, const void* source, unsigned long long n, unsigned long long position) noexcept;

// Copies up to n bytes from one file to another within the system, without a buffer of ours, and tells how many; 0
// where it has no way for these two files.
unsigned long long CopyBetween(int source, unsigned long long from, int target, unsigned long long to,
                               unsigned long long n) noexcept;

// True when the system says that both handles stand for one file, or does not tell.
bool MayBeOneFile(int one, int other) noexcept;

// False when the system does not tell.
bool FileLength(int handle, unsigned long long* length) noexcept;

// Cuts the file, or makes it longer with zeros. False when the system refused.
bool SetFileLength(int handle, unsigned long long length) noexcept;

} // namespace IO::Platform
