// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/system/tree.h>

// Whole folders. A backslash in a folder's name counts as a slash. A name that contains a NUL names nothing. Copy,
// Delete and PurgeEmpty skip what the system refuses and continue; CopyTree, DeleteTree and PurgeTree do the same work
// and tell what has become of it.
//
// Links (symbolic links and junctions, as eSearch::IsLink tells) never lead a tree operation out of the tree, even if a
// folder is replaced by a link while the operation runs.
//
// What Windows refuses because it is open elsewhere, or because a deletion is not complete, is tried again for up to a
// quarter of a second. Once an operation has waited a second in total without success, it waits no more. It does not
// wait for a read-only file or folder, which stays.

namespace IO::System::Path {

// Creates the folder with all its missing parents. True if the name is empty or exists already, or if every part of the
// walk existed or was created; false at the first part that the system refuses.
//
// | folder         | parts created, in order                      |
// |----------------|----------------------------------------------|
// | "c:/a/b/"      | Windows: "c:/a", "c:/a/b", "c:/a/b/"         |
// | "x/y"          | "x", "x/y"                                   |
// | "x/a:b/c"      | Linux: "x", "x/a:b", "x/a:b/c"               |
// | "/x/y"         | Linux: "/x", "/x/y"; Windows: refused        |
// | "//server/s/x" | Windows: refused unless it exists            |
QZL_IO_API bool Create(const eFileName& folder);

// Copies a folder tree. FIRST DELETES `to` WITH EVERYTHING IN IT; afterwards `to` contains what `from` contained. Links
// are recreated; where the system refuses that, a link to a file becomes a copy of that file, and any other link is
// left out. Devices and pipes are left out, too. If either name is empty or a bare drive ("q:"), nothing is done. On
// Linux new files and folders get the permissions of the source under the umask.
//
// Do not copy a folder onto itself, into one of its subfolders or over a folder that contains it: the deletion comes
// first and destroys what was to be copied.
// - Onto itself, or over a folder that contains it: everything is lost, and `to` is an empty folder.
// - Into one of its subfolders: the content of that subfolder is lost; it then holds a copy of the rest.
QZL_IO_API void Copy(const eFileName& from, const eFileName& to);

// Removes the folder. With `recursive`, everything in it is removed first: a link is removed, but not what it points
// to; what the system refuses to remove stays, and so do the folders above it. Without `recursive`, the folder is
// removed only if it is empty. If `folder` is itself a link to a folder, only the link is removed. An empty name and a
// bare drive ("q:") name nothing, so nothing is done.
QZL_IO_API void Delete(const eFileName& folder, bool recursive);

// Removes every folder below `folder` that contains no file at any depth, deepest first. `folder` itself stays; links
// stay and count as content; if `folder` is itself a link, nothing is done. The name is used unchanged and must end in
// "/": without the "/", the pattern `folder` + "*.*" selects the folders, and an empty name selects those in the
// current folder.
QZL_IO_API void PurgeEmpty(const eFileName& folder);

// Copies like Copy, and tells what could not be copied, or not be removed from `to`, and why. Devices and pipes cannot
// be copied. Before anything in `to` is removed, `from` is opened: if that fails, `to` stays as it is. A cancelled copy
// leaves a part of the tree, in which every file is complete.
QZL_IO_API eTreeResult CopyTree(const eFileName& from, const eFileName& to, const eTreeTask& task = {});

// Deletes like Delete with `recursive`, and tells what could not be removed, and why. The folders that stay above such
// an entry are no failures of their own. A missing folder is a failure.
QZL_IO_API eTreeResult DeleteTree(const eFileName& folder, const eTreeTask& task = {});

// Removes empty folders like PurgeEmpty, and tells which of them could not be removed, or not be looked into, and why.
// `folder` is a folder with or without "/" at its end. Sizes of files are not asked for.
QZL_IO_API eTreeResult PurgeTree(const eFileName& folder, const eTreeTask& task = {});

// Cuts a path into drive, folder, name and extension, by the same rules on both systems, and returns `path`. A null
// pointer skips its part; an empty path leaves all outputs unchanged. Both kinds of slash separate folders. The parts,
// joined, are the path again. The drive may have 2 characters and every other part 255: if one part is longer, all
// outputs are emptied.
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

// The folder of the running program's executable, with forward slashes and a trailing "/": "C:/Prog/". Empty if the
// system does not tell it, or if it exceeds 519 characters in all or 255 for the folder. On Windows the narrow text
// contains short names where the code page lacks a character, and is empty where there are no short names.
QZL_IO_API std::string WorkingDir();

} // namespace IO::System::Path

// The functions of Path for wide names.
namespace IO::System::PathW {

QZL_IO_API bool Create(const eFileNameW& folder);
QZL_IO_API void Copy(const eFileNameW& from, const eFileNameW& to);
QZL_IO_API void Delete(const eFileNameW& folder, bool recursive);
QZL_IO_API void PurgeEmpty(const eFileNameW& folder);
QZL_IO_API eTreeResultW CopyTree(const eFileNameW& from, const eFileNameW& to, const eTreeTask& task = {});
QZL_IO_API eTreeResultW DeleteTree(const eFileNameW& folder, const eTreeTask& task = {});
QZL_IO_API eTreeResultW PurgeTree(const eFileNameW& folder, const eTreeTask& task = {});
QZL_IO_API std::wstring SplitPath(const std::wstring& path, std::wstring* drive, std::wstring* dir, std::wstring* name,
                                  std::wstring* ext);
QZL_IO_API std::wstring WorkingDir();

} // namespace IO::System::PathW
