// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>

// Files by handle, as streams need them. Sizes and positions are in bytes. Reads and writes have any size and continue
// after interruptions and short counts.

namespace IO::Platform {

// How a file is opened, in the flags of the run-time.
inline constexpr int kOpenRead = 0x8000;   // binary, read only
inline constexpr int kOpenWrite = 0x8102;  // binary, read and write; a missing file is created
inline constexpr int kOpenCreate = 0x8302; // the same, and the file is truncated to length 0

// Returns a handle of the C run-time for the file; -1 if it cannot be opened, is a folder, or is a pipe to be read
// (opening would wait). Other processes may open the file meanwhile. Where names are bytes, wide names are UTF-8.
int OpenFile(const char* name, int openFlags);
int OpenFile(const wchar_t* name, int openFlags);

// The system's number for why it refused this thread's last failed call of a function of this header; 0 if none has
// failed since the last call of this function, or if the system gave no reason.
QZL_IO_API int TakeRefusal() noexcept;

// The system's own words for such a number; empty for 0.
std::string RefusalText(int refusal);

// Closes the file. False if the system could not keep what was written. Never repeated: the handle is invalid even so.
bool CloseFile(int handle) noexcept;

// Reads up to n bytes from a position on and tells how many arrived: fewer than n at the end of the file, or with false
// if the system refused the rest.
bool ReadAt(int handle, void* target, unsigned long long n, unsigned long long position,
            unsigned long long* arrived) noexcept;

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
