#pragma once

#include "platform/folder.h"

namespace IO {

// What the attributes of an entry and the tag of its reparse point, as Windows lists them, say of it.

// A link is a reparse point whose tag says that it stands for another name (a symbolic link, a junction). Any other is
// the file or folder that it looks like, kept in a special way: in the cloud, deduplicated, compressed, in a layer.
// One whose tag is not told (0) is taken for a link, so that nothing leads out of a tree.
constexpr bool IsListedLink(unsigned long attributes, unsigned long tag) {
    constexpr unsigned long kReparsePoint = 0x400, kNameSurrogate = 0x20000000;
    return (attributes & kReparsePoint) != 0 && (tag == 0 || (tag & kNameSurrogate) != 0);
}

constexpr Platform::eEntryKind ListedKind(unsigned long attributes, unsigned long tag) {
    constexpr unsigned long kDirectory = 0x10;
    if (IsListedLink(attributes, tag))
        return Platform::eEntryKind::Link;
    return (attributes & kDirectory) != 0 ? Platform::eEntryKind::Folder : Platform::eEntryKind::File;
}

} // namespace IO
