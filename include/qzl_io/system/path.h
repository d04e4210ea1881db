#pragma once

#include <string>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>

// Whole folders. A back slash in a folder's name counts as a slash. Only Create tells of failure; the other tree
// operations skip what the system refuses and go on.
//
// Links (symbolic links and junctions: what eSearch::IsLink tells) never lead a tree operation out of the tree, not
// even when somebody exchanges a folder for a link while it runs.
//
// What Windows refuses because somebody has it open, or because a deletion is not through yet, is tried again for up to
// a quarter of a second. When a second of such waiting has been in vain the operation waits no more. A read-only file
// or folder is not waited for and stays.

namespace IO::System::Path {

// Creates the folder with all its missing parents. True when the name is empty or already exists, or when every part
// of the walk was created or existed before; false at the first part that the system refuses.
//
// | folder         | parts created, in order                      |
// |----------------|----------------------------------------------|
// | "c:/a/b/"      | Windows: "c:/a", "c:/a/b", "c:/a/b/"         |
// | "x/y"          | "x", "x/y"                                   |
// | "x/a:b/c"      | Linux: "x", "x/a:b", "x/a:b/c"               |
// | "/x/y"         | Linux: "/x", "/x/y"; Windows: refused        |
// | "//server/s/x" | Windows: refused unless it exists            |
QZL_IO_API bool Create(const eFileName& folder);

// Copies a folder tree. FIRST DELETES `to` WITH EVERYTHING IN IT, whatever it held; afterwards `to` holds what `from`
// held. Links are recreated; where the system refuses that, a link to a file becomes a copy of that file, and any
// other link is left out. Devices and pipes are left out, too. An empty name or a bare drive ("q:") on either side
// does nothing. On Linux what is made has the source's permissions under the umask, folders and files alike.
//
// Do not copy a folder onto itself, into one of its own subfolders or over a folder that contains it: the deletion
// comes first and destroys what was to be copied.
// - Onto itself, or over a folder that contains it: everything is gone, `to` is an empty folder.
// - Into a subfolder of its own: that subfolder's content is gone, and it holds a copy of the rest.
QZL_IO_API void Copy(const eFileName& from, const eFileName& to);

// Removes the folder. Recursive: everything in it goes first; a link is removed and what it points to stays; what the
// system refuses to remove stays, and so do the folders above it. Not recursive: the folder goes only if it is empty.
// `folder` may itself be a link to a folder: then the link goes and nothing else. An empty name and a bare drive
// ("q:") name nothing: nothing is done.
QZL_IO_API void Delete(const eFileName& folder, bool recursive);

// Removes every folder below `folder` that holds no file anywhere below it, deepest first. `folder` itself stays,
// links stay and count as content; a `folder` that is itself a link is left alone. The name is used as given and so
// must end in "/": without it, the folders named by the pattern `folder` + "*.*" are meant, and with an empty name
// those in the current folder.
QZL_IO_API void PurgeEmpty(const eFileName& folder);

// Cuts a path into drive, folder, name and extension, by the same rules on both systems, and returns `path`. A part
// whose pointer is null is skipped; an empty path leaves all of them as they were. Both slashes count. The
// concatenated parts are the path again. Room is 2 characters for the drive and 255 for each other part: when one part
// is longer, all outputs are emptied.
//
// | path               | drive | folder    | name    | extension |
// |--------------------|-------|-----------|---------|-----------|
// | "c:/dir/file.txt"  | "c:"  | "/dir/"   | "file"  | ".txt"    |
// | "dir\\a.tar.gz"    | ""    | "dir\\"   | "a.tar" | ".gz"     |
// | "/home/me/.rc"     | ""    | "/home/me/" | ""    | ".rc"     |
// | "c:name"           | "c:"  | ""        | "name"  | ""        |
// | "a.b/c"            | ""    | "a.b/"    | "c"     | ""        |
QZL_IO_API std::string SplitPath(const std::string& path, std::string* drive, std::string* dir, std::string* name,
                                 std::string* ext);

// The folder of the running program's executable, with forward slashes and a trailing "/": "C:/Prog/". Empty when the
// system does not tell it, or when it exceeds 519 characters in all or 255 for the folder. On Windows the narrow text
// holds short names where the code page lacks a character; it is empty where there are none.
QZL_IO_API std::string WorkingDir();

} // namespace IO::System::Path

// The same over wide names.
namespace IO::System::PathW {

QZL_IO_API bool Create(const eFileNameW& folder);
QZL_IO_API void Copy(const eFileNameW& from, const eFileNameW& to);
QZL_IO_API void Delete(const eFileNameW& folder, bool recursive);
QZL_IO_API void PurgeEmpty(const eFileNameW& folder);
QZL_IO_API std::wstring SplitPath(const std::wstring& path, std::wstring* drive, std::wstring* dir, std::wstring* name,
                                  std::wstring* ext);
QZL_IO_API std::wstring WorkingDir();

} // namespace IO::System::PathW
