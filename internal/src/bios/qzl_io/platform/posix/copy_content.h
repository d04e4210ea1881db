// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <sys/stat.h>

#include "platform/copy_watch.h"
#include "platform/pure/copy_steps.h"

namespace IO::Platform {

// How a copy treats the holes of a file: a new target can have them, too; a target that contains something cannot.
enum class eCopyHoles { Keep, Fill };

// Copies a file's bytes, from the start, to the current position of the target, which must be its start if holes are
// kept. Copies within the system if it can do so for these two files. Ends early when the watch says so. If it fails,
// errno tells why.
System::eCopyEnd CopyContent(int source, const struct stat& facts, int target, eCopyHoles holes,
                             const eCopyWatch& watch);

} // namespace IO::Platform
