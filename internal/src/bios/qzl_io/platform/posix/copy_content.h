#pragma once

#include <sys/stat.h>

#include "platform/pure/copy_steps.h"

namespace IO::Platform {

// What a copy is to do with the holes of a file: a new file can have them too, one that holds something cannot.
enum class eCopyHoles { Keep, Fill };

// Copies a file's bytes from its start to where the target stands, which for holes to be kept is its start, too.
// Within the system where it has a way for these two files. Ends early when the byte that `cancel` points to becomes
// non-zero; `cancel` may be null.
System::eCopyEnd CopyContent(int source, const struct stat& facts, int target, eCopyHoles holes, const bool* cancel);

} // namespace IO::Platform
