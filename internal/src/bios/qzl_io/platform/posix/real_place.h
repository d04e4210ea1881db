// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <optional>
#include <string>

#include <sys/stat.h>

#include "platform/posix/descriptor.h"

namespace IO::Platform {

// A file's place: a name in an open folder, or AT_FDCWD for a name by itself.
struct ePlace {
    int folder;
    const char* name;
};

// A place that no link leads away from: a single name, in a folder that is held open. It stays the same place whatever
// happens to the folder's own name.
struct eRealPlace {
    eDescriptor folder;
    std::string name;
};

// Opens a folder as a place for names, which needs no permission to list it.
eDescriptor OpenPlace(int folder, const char* name);

// Follows the links of a name to their end, where a file may exist or not. Empty if the folder there is missing.
std::optional<eRealPlace> RealPlace(ePlace place);

// Whether the file that the facts tell of is the one at the place, and no link to it.
bool StandsAt(ePlace place, const struct stat& facts);

} // namespace IO::Platform
