// SPDX-License-Identifier: BSL-1.0
#pragma once

#include "platform/copy_watch.h"
#include "platform/folder.h"
#include "platform/posix/real_place.h"

namespace IO::Platform {

// Copies one regular file's bytes to a file beside the target, which then replaces the target in one step; until then
// the target is unchanged. A new target has the source's permissions as far as the process gives them to new files
// (umask); an existing one keeps its permissions and owner. A copy that the watch stops leaves no target. If source and
// target are one file, it is left alone.
//
// A target is written in place, so that what was written before a failure stays, if it has another name (a hard link),
// is not a regular file, or may be written by this process but not replaced.
void CopyRegularFile(ePlace from, ePlace to, const eCopyWatch& watch);

// Copies to a target that is to be new: no file beside it is needed, and a failure removes it. If something has the
// name, a link or a second name of another file perhaps, it is replaced in one step and never written through. `link`
// says whether the source's name may be a link. False, with the reason noted, if there is no complete copy afterwards.
bool CopyNewFile(ePlace from, ePlace to, eNamedLink link, const eCopyWatch& watch);

} // namespace IO::Platform
