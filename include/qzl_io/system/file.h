#pragma once

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

// Single files. Names go to the system as they stand, with forward slashes: a back slash in a name counts as one, also
// in a value that was read from a stream. On Linux wide names are UTF-8 on disk. On Windows names may have any length
// and end in dots and blanks; short names of devices ("nul", "aux.txt") are devices. Nothing here throws or reports:
// every failure is a false or zero result. No state is kept, so any thread may call.

namespace IO::System::File {

// What Access asks for.
enum eAccessMode : int {
    Exist = 0,
    Write = 2,
    Read = 4,
    ReadWrite = 6,
};

// True when the file or folder exists and, for the other modes, this process may use it in that way.
QZL_IO_API bool Access(const eFileName& name, eAccessMode mode);

// Copies a file, replacing an existing target; of a target that is a link, the file behind it, which is made where it
// is missing. Copying a file onto itself leaves it as it is. The result tells only whether `from` exists: a copy that
// fails afterwards (the target's folder is missing, the disk is full, the target is locked) still gives true. Callers
// that must know look at the target. No half-written target stays behind.
//
// The copy has the source's time of the last write, but on Linux not where the target belongs to another user and is
// written in place. On Windows the target gets the source's attributes, too. On Linux a new target gets the source's
// permissions under the umask and an existing one keeps its own, with its owner; the copy is made beside the target
// and takes its place in one step, so that a target that could not be replaced is as it was. Three kinds of targets
// are written in place, and keep what arrived before a failure: a file with another name besides (a hard link), a
// device or pipe, and a file that this process may write but not replace. Only files are copied: a device or pipe as
// source is left, and a pipe that nobody reads is not waited for.
QZL_IO_API bool Copy(const eFileName& from, const eFileName& to);

// Copy that another thread can stop: the copy ends at its next look at `*cancel` after that byte became non-zero.
// It looks when the target has been opened and again at least once for each 4 MiB; on Windows whenever the system
// reports progress. A stopped copy leaves no target, not even the one that stood there before; of a target that is a
// link, the file behind it goes. What could not be opened (a missing source, a target that may not be written) stays as
// it is, and so does a source that is its own target. `cancel` must stay valid during the call and must not be null.
// The result is that of Copy, whether stopped or not.
QZL_IO_API bool CopyEx(const eFileName& from, const eFileName& to, bool* cancel);

// True when the file has been removed. A folder is not; of a link to a file, the link itself is removed. A link to a
// folder is removed on Linux and refused on Windows, where Path::Delete removes it.
QZL_IO_API bool Delete(const eFileName& name);

// Renames or moves a file, or a folder with all in it, by the C run-time's `rename`; true when that succeeded.
// The target's folder must exist; of a link, the link itself is moved.
//
// | the target                             | Windows                          | Linux                     |
// |----------------------------------------|----------------------------------|---------------------------|
// | is an existing file                    | refused                          | replaced, by files        |
// | is an existing folder                  | refused                          | an empty one, by folders  |
// | is the source in another letter case   | the case is changed              | is another name           |
// | lies on another volume                 | files are moved, folders refused | refused                   |
// | lies below the source                  | refused                          | refused                   |
//
// On Windows a file that is open is as a rule refused, too.
QZL_IO_API bool Rename(const eFileName& from, const eFileName& to);

// The file's length in bytes. 0 when it is missing, may not be read, or is a folder or a device.
QZL_IO_API unsigned long long Size(const eFileName& name);

} // namespace IO::System::File

// The same over wide names; there is no wide Rename.
namespace IO::System::FileW {

// What Access asks for.
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
QZL_IO_API unsigned long long Size(const eFileNameW& name);

} // namespace IO::System::FileW
