#pragma once

#include <optional>
#include <string>

#include "platform/posix/descriptor.h"

namespace IO::Platform {

// A file's place: a name within an open folder, or AT_FDCWD for one that stands alone.
struct ePlace {
    int folder;
    const char* name;
};

// What happens to links in the last component of a name.
enum class eLastLinks { Follow, Refuse };

// A place that no link leads away from: a single name, in a folder that is held open. Whatever becomes of the folder's
// own name meanwhile, this is the place.
struct eRealPlace {
    eDescriptor folder;
    std::string name;
};

// Follows the links of a name to their end, where something may be or not. Nothing where the folder there is missing,
// or where a link is refused.
std::optional<eRealPlace> RealPlace(ePlace place, eLastLinks links);

} // namespace IO::Platform
