#pragma once

namespace IO::Platform {

/// A file's place: a name within an open folder, or AT_FDCWD for one that stands alone.
struct ePlace {
    int folder;
    const char* name;
};

/// What happens to links in the last component of either name.
enum class eCopyLinks { Follow, Refuse };

/// Copies one regular file's bytes and permissions; with `cancel`, as long as the byte it points to is zero. A target
/// that could not be completed is removed; the source, met again as the target, is left alone.
void CopyRegularFile(ePlace from, ePlace to, eCopyLinks links, const bool* cancel);

} // namespace IO::Platform
