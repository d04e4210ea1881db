// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

// Single files. Names are passed to the system unchanged, with forward slashes: a backslash in a name counts as a
// slash, even in a name that was read from a stream. On Linux wide names are UTF-8 on disk. On Windows names may have
// any length and may end in dots and blanks; short names of devices ("nul", "aux.txt") are devices. A name that
// contains a NUL names nothing. Nothing here throws or reports: every failure is a false or zero result. The functions
// keep no state, so any thread may call them.

namespace IO::System::File {

// The kinds of access that Access checks.
enum eAccessMode : int {
    Exist = 0,
    Write = 2,
    Read = 4,
    ReadWrite = 6,
};

// True if the file or folder exists and, for the modes other than Exist, this process may use it in that way.
QZL_IO_API bool Access(const eFileName& name, eAccessMode mode);

// Copies a file and replaces an existing target. If the target is a link, the file that it points to is replaced, or
// created if missing. Copying a file onto itself leaves it unchanged. The result only tells whether `from` exists: it
// is true even if the copy then fails (the target's folder is missing, the disk is full, the target is locked). Callers
// that must know check the target. No half-written target remains.
//
// The copy has the source's time of the last write, except on Linux if the target belongs to another user and is
// written in place. On Windows the target also gets the source's attributes. On Linux a new target gets the source's
// permissions under the umask, and an existing target keeps its permissions and owner. There the copy is made beside
// the target and replaces it in one step, so a target that could not be replaced is unchanged. Three kinds of targets
// are written in place and keep what was written before a failure: a file with a second name (a hard link), a device or
// pipe, and a file that this process may write but not replace. Only files are copied: a device or pipe as source is
// ignored, and the call does not wait for a pipe that has no reader.
QZL_IO_API bool Copy(const eFileName& from, const eFileName& to);

// Copies like Copy, but another thread can stop it: the copy ends at its next check of `*cancel` after that byte has
// become non-zero. It checks after opening the target and then at least once for each 4 MiB; on Windows, whenever the
// system reports progress. A stopped copy leaves no target, not even the one that was there before; if the target is a
// link, the file that it points to is removed. What could not be opened (a missing source, a target that may not be
// written) is unchanged, and so is a source that is its own target. `cancel` must not be null and must stay valid
// during the call. The result is that of Copy, whether stopped or not.
QZL_IO_API bool CopyEx(const eFileName& from, const eFileName& to, bool* cancel);

// Removes a file; true if it has been removed. Folders are not removed. If the name is a link to a file, the link
// itself is removed. A link to a folder is removed on Linux and refused on Windows, where Path::Delete removes it.
QZL_IO_API bool Delete(const eFileName& name);

// Renames or moves a file, or a folder with everything in it, by the C run-time's `rename`; true if that succeeded. The
// target's folder must exist. If the source is a link, the link itself is moved.
//
// | the target                             | Windows                          | Linux                     |
// |----------------------------------------|----------------------------------|---------------------------|
// | is an existing file                    | refused                          | replaced, by files        |
// | is an existing folder                  | refused                          | an empty one, by folders  |
// | is the source in another letter case   | the case is changed              | is another name           |
// | is on another volume                   | files are moved, folders refused | refused                   |
// | is below the source                    | refused                          | refused                   |
//
// On Windows an open file is usually refused, too.
QZL_IO_API bool Rename(const eFileName& from, const eFileName& to);

// Renames or moves a file like Rename, and replaces an existing file in one step: at every moment `to` is the old file
// or the new one. True if that succeeded; otherwise both are as they were. What Windows refuses because a file is open
// elsewhere is tried again for up to a quarter of a second.
//
// | the target                             | Windows                          | Linux                     |
// |----------------------------------------|----------------------------------|---------------------------|
// | is an existing file                    | replaced, unless it is read-only | replaced, by files        |
// | is an existing folder                  | refused                          | an empty one, by folders  |
// | is another name of the same file       | replaced                         | both names stay; true     |
// | is on another volume                   | refused                          | refused                   |
QZL_IO_API bool Replace(const eFileName& from, const eFileName& to);

// The file's length in bytes; 0 if it is missing, may not be read, or is a folder or a device.
QZL_IO_API unsigned long long Size(const eFileName& name);

} // namespace IO::System::File

// The functions of File for wide names.
namespace IO::System::FileW {

// The kinds of access that Access checks.
enum eAccessMode : int {
    Exist = 0,
    Write = 2,
    Read = 4,
    ReadWrite = 6,
};

QZL_IO_API bool Access(const eFileNameW& name, eAccessMode mode);
QZL_IO_API bool Copy(const eFileNameW& from, const eFileNameW& to);
QZL_IO_API bool CopyEx(const eFileNameW& from, const eFileNameW& to, bool* cancel);
QZL_IO_API bool Delete(const eFileNameW& name);
QZL_IO_API bool Rename(const eFileNameW& from, const eFileNameW& to);
QZL_IO_API bool Replace(const eFileNameW& from, const eFileNameW& to);
QZL_IO_API unsigned long long Size(const eFileNameW& name);

} // namespace IO::System::FileW
