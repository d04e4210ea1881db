#pragma once

#include "platform/folder.h"
#include "platform/posix/real_place.h"

namespace IO::Platform {

// Copies one regular file's bytes and puts the copy in the target's place in one step, through a file beside it: until
// then the target is as it was. A new target has the source's permissions as far as the process gives them to new
// files (umask); an existing one keeps its own, with its owner. With `cancel`, as long as the byte it points to is
// zero; a stopped copy leaves no target. The source, met again as the target, is left alone.
//
// Written in place, so that what arrived before a failure stays: a target with another name besides (a hard link), one
// that is no regular file, and one that this process may write but not replace.
void CopyRegularFile(ePlace from, ePlace to, const bool* cancel);

// The same where the target is to be new and its name may not be a link: no file beside it is needed, a failure removes
// it. `link` says whether the source's name may be one.
void CopyNewFile(ePlace from, ePlace to, eNamedLink link);

} // namespace IO::Platform
