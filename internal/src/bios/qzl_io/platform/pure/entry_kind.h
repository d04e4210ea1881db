// SPDX-License-Identifier: BSL-1.0
#pragma once

// The kind of a listed entry.

namespace IO::Platform {

// The kind of a folder's entry, for walks over a tree. A link leads elsewhere (a symbolic link, a junction) and is
// never entered.
enum class eEntryKind : unsigned char { File, Folder, Link };

// Whether the name stands for the folder that lists it, or for the folder above.
template <class Char>
constexpr bool IsDots(const Char* name) {
    return name[0] == Char('.') && (name[1] == 0 || (name[1] == Char('.') && name[2] == 0));
}

// The kind by the attributes of an entry and the tag of its reparse point, as Windows lists them.

// A link is a reparse point whose tag says that it stands for another name (a symbolic link, a junction). Any other
// reparse point is the file or folder that it looks like, stored in a special way: in the cloud, deduplicated,
// compressed, in a layer. A reparse point with an unknown tag (0) counts as a link, so that nothing leads out of a
// tree.
constexpr bool IsListedLink(unsigned long attributes, unsigned long tag) {
    constexpr unsigned long kReparsePoint = 0x400;
    constexpr unsigned long kNameSurrogate = 0x20000000;
    return (attributes & kReparsePoint) != 0 && (tag == 0 || (tag & kNameSurrogate) != 0);
}

constexpr eEntryKind ListedKind(unsigned long attributes, unsigned long tag) {
    constexpr unsigned long kDirectory = 0x10;
    if (IsListedLink(attributes, tag))
        return eEntryKind::Link;
    return (attributes & kDirectory) != 0 ? eEntryKind::Folder : eEntryKind::File;
}

} // namespace IO::Platform
